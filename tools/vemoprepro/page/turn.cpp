#include "page/turn.h"

#include <vemoprepro/geometry.h>

#include <string>
#include <utility>

#include "page/negative.h"

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

// What a turn does not cover of a bitonal page becomes white.
bool turn_bits_by_degrees(const Page& page, double clockwise, Page& turned) {
    return rotate_bitonal(page.bytes.get(), page.height, page.width, as_int(page.stride()),
                          turned.bytes.get(), turned.height, turned.width, as_int(turned.stride()),
                          clockwise) == 0;
}

bool turn_pixels_by_degrees(const Page& page, double clockwise, const PixelColour& background,
                            Page& turned) {
    return rotate_color(page.kind == PageKind::kGrey ? 1 : 3, background.data(), page.bytes.get(),
                        page.height, page.width, as_int(page.stride()), turned.bytes.get(),
                        turned.height, turned.width, as_int(turned.stride()), clockwise) == 0;
}

// A page of the size that holds all of the turned one.
Page frame_of_turned(const Page& page, double clockwise) {
    int height = 0, width = 0;
    if (rotate_image_dim(page.height, page.width, &height, &width, clockwise) != 0 || height < 1 ||
        width < 1) {
        throw PageError("the page cannot be turned");
    }
    if (height > kLongestSide || width > kLongestSide) {
        throw PageError("turned it would be " + std::to_string(width) + " x " +
                        std::to_string(height) + " pixels, the most is 32767 a side");
    }
    Page turned = make_page(page.kind, width, height, page.dpi);
    turned.scale = page.scale;
    return turned;
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

void turn_by_degrees(Page& page, double clockwise, const PixelColour& background) {
    Page turned = frame_of_turned(page, clockwise);
    const bool on_ink = page.kind == PageKind::kBitonal && background[0] == 0;
    if (on_ink) complement(page);
    const bool good = page.kind == PageKind::kBitonal
                          ? turn_bits_by_degrees(page, clockwise, turned)
                          : turn_pixels_by_degrees(page, clockwise, background, turned);
    if (!good) throw PageError("the page cannot be turned");
    if (on_ink) complement(turned);
    page = std::move(turned);
}

}  // namespace tool
