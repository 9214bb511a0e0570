#include "steps/ink_removal.h"
#include "steps/number_text.h"

#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <utility>

namespace tool::steps {
namespace {

struct InkCount {
    std::int64_t before = 0;
    std::int64_t lost = 0;  // ink that is gone, not ink that was added elsewhere

    double share() const {
        return before > 0 ? static_cast<double>(lost) / static_cast<double>(before) : 0;
    }
};

std::uint32_t ink_word(const Page& page, int y, int index) {
    std::uint32_t word;
    std::memcpy(&word, page.row(y) + std::ptrdiff_t{4} * index, sizeof word);
    return word;
}

InkCount count_ink(const Page& before, const Page& after, const InkWindow& window) {
    InkCount count;
    for (int y = window.y0; y < window.y1; ++y) {
        for (int i = window.x0 / 32; i < window.x1 / 32; ++i) {
            const std::uint32_t ink = ink_word(before, y, i);
            count.before += std::popcount(ink);
            count.lost += std::popcount(ink & ~ink_word(after, y, i));
        }
    }
    return count;
}

}  // namespace

InkWindow whole(const Page& page) {
    return {0, static_cast<int>(page.stride()) * 8, 0, page.height};
}

InkWindow inner_part(const Page& page) {
    const int side = page.width / 256 * 32;
    const int end = page.height / 8;
    return {side, static_cast<int>(page.stride()) * 8 - side, end, page.height - end};
}

void require_bitonal(const Page& page, const char* step) {
    if (page.kind != PageKind::kBitonal) {
        throw PageError(std::string(step) + " takes bitonal pages, this one is " +
                        name_of(page.kind) + " (clean binarizes first)");
    }
}

Outcome remove_ink(Page& page, bool force, const InkWindow& window, const std::string& what,
                   const std::function<void(Page&)>& change) {
    Page changed = copy_of(page);
    change(changed);
    const double share = count_ink(page, changed, window).share();
    if (!force && share > kMostInk) {
        return {false, "would take " + percent(share) + " of the ink (--force does it)", share};
    }
    page = std::move(changed);
    return {true, what + ", " + percent(share) + " of the ink", share};
}

}  // namespace tool::steps
