#include "page/turn.h"

#include <vemoprepro/geometry.h>

#include <utility>

namespace tool {
namespace {

int as_int(std::size_t size) {
    return static_cast<int>(size);
}

// Quarter turns clockwise, 1 .. 3, as the library counts them.
int rotation_code(int quarter_turns) {
    constexpr int kCodes[] = {0, PREPRO_TURN_CLOCKWISE, PREPRO_TURN_HALF,
                              PREPRO_TURN_COUNTER_CLOCKWISE};
    return kCodes[quarter_turns];
}

bool turn_bits(const Page& page, int quarter_turns, PixelBlock& to) {
    const std::size_t words = page.stride() / 4;
    const std::size_t bands = (static_cast<std::size_t>(page.height) + 31) / 32;
    const std::size_t size = quarter_turns == 2 ? page.size() : words * bands * 128;
    to = allocate_pixels(size);
    unsigned int stride = 0;
    return kyd_rotate_bitmap(rotation_code(quarter_turns), page.bytes.get(), page.height,
                             page.width, as_int(page.stride()), to.get(), as_int(size),
                             &stride) == 0;
}

bool turn_pixels(const Page& page, int quarter_turns, PixelBlock& to) {
    to = allocate_pixels(page.size());
    int height = 0, width = 0;
    return kyd_rotate_color(rotation_code(quarter_turns), page.kind == PageKind::kGrey ? 1 : 3,
                            page.bytes.get(), page.height, page.width, to.get(), &height,
                            &width) == 0;
}

}  // namespace

void turn(Page& page, int quarter_turns) {
    PixelBlock turned;
    const bool good = page.kind == PageKind::kBitonal ? turn_bits(page, quarter_turns, turned)
                                                      : turn_pixels(page, quarter_turns, turned);
    if (!good) throw PageError("the page cannot be turned");
    page.bytes = std::move(turned);
    if (quarter_turns != 2) {
        std::swap(page.width, page.height);
        std::swap(page.dpi.x, page.dpi.y);
        std::swap(page.scale.x, page.scale.y);
    }
}

}  // namespace tool
