#include "steps/ink_removal.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <utility>

#include "page/ink.h"
#include "steps/number_text.h"

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

InkCount count_ink(const Page& before, const Page& after, const Box& box) {
    InkCount count;
    const int end = (box.x + box.width + 31) / 32;
    for (int y = box.y; y < box.y + box.height; ++y) {
        for (int i = box.x / 32; i < end; ++i) {
            const std::uint32_t ink = ink_word(before, y, i);
            count.before += count_bits(ink);
            count.lost += count_bits(ink & ~ink_word(after, y, i));
        }
    }
    return count;
}

}  // namespace

// Looks no further than to the first ink that is enough.
bool is_nearly_blank(const Page& bits) {
    const std::int64_t enough = (std::int64_t{bits.width} * bits.height - 1) / kNearlyBlank;
    std::int64_t ink = 0;
    for (int y = 0; y < bits.height && ink <= enough; ++y) {
        for (int i = 0; i < static_cast<int>(bits.stride() / 4); ++i) {
            ink += count_bits(ink_word(bits, y, i));
        }
    }
    return ink <= enough;
}

Box inner_part(const Page& page) {
    const int side = page.width / 256 * 32;
    const int end = page.height / 8;
    return {side, end, page.width - 2 * side, page.height - 2 * end};
}

void require_bitonal(const Page& page, const char* step) {
    if (page.kind != PageKind::kBitonal) {
        throw PageError(std::string(step) + " takes bitonal pages, this one is " +
                        name_of(page.kind) + " (clean binarizes first)");
    }
}

Outcome remove_ink(Page& page, Excess excess, const Box& counted, const std::string& what,
                   const std::function<void(Page&)>& change) {
    Page changed = copy_of(page);
    change(changed);
    const double share = count_ink(page, changed, counted).share();
    const bool allowed = excess == Excess::kAllowed;
    const bool much = share > kMostInk && !allowed;
    if (much && excess == Excess::kHeldBack) {
        return {false, "would take " + percent(share) + " of the ink", share, true};
    }
    if (!allowed && is_nearly_blank(changed) && !is_nearly_blank(page)) {
        return {false, "would leave the page nearly blank", share, true};
    }
    page = std::move(changed);
    return {true, what + ", " + percent(share) + " of the ink", share, much};
}

}  // namespace tool::steps
