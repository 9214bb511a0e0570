// Straightening of a bitonal page beside Leptonica: the whole step, skew search included, beside
// pixDeskew, which rotates by shears as well; and each rotation alone beside pixRotateShear.
#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

#include "harness.h"
#include "leptonica_page.h"
#include "vemoprepro/deskew.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kPageBytes = 2480 / 8 * 3508;
constexpr int kScale = 512;
constexpr int kDefaultReduction = 0;

int word_stride(int width) {
    return (width + 31) / 32 * 4;
}

// The destination is allocated in every call, as Leptonica does for its result.
void straighten(const bench::Page& page, int yskew, int height, int width) {
    const int stride = word_stride(width);
    const std::unique_ptr<std::uint8_t[]> result(
        new std::uint8_t[static_cast<std::size_t>(height) * static_cast<std::size_t>(stride)]);
    skrotbmp_mem(yskew, kScale, page.data.data(), page.height, page.width, page.stride,
                 result.get(), height, width, stride, nullptr);
}

bench::Sides find_and_straighten() {
    const bench::Page& page = bench::skewed_bitonal_page();
    return {.ours =
                [&page] {
                    int yskew, scale, height, width;
                    skbitmap_mem(page.data.data(), page.height, page.width, page.stride, &yskew,
                                 &scale, &height, &width);
                    straighten(page, yskew, height, width);
                },
            .theirs =
                [pix = bench::to_leptonica(page)] {
                    PIX* result = pixDeskew(pix.get(), kDefaultReduction);
                    pixDestroy(&result);
                }};
}

std::function<void()> rotate_in_leptonica(const bench::Page& page, int yskew) {
    const auto angle = static_cast<float>(std::atan(yskew / 512.0));
    return [pix = bench::to_leptonica(page), angle] {
        PIX* result = pixRotateShear(pix.get(), 0, 0, angle, L_BRING_IN_WHITE);
        pixDestroy(&result);
    };
}

bench::Sides rotate_alone(int yskew) {
    const bench::Page& page = bench::skewed_bitonal_page();
    return {.ours =
                [&page, yskew] {
                    int height, width;
                    skrotbmp_dim(yskew, kScale, page.height, page.width, &height, &width);
                    straighten(page, yskew, height, width);
                },
            .theirs = rotate_in_leptonica(page, yskew)};
}

bench::Sides rotate_aligned(int yskew) {
    const bench::Page& page = bench::skewed_bitonal_page();
    return {.ours =
                [&page, yskew] {
                    const int height = page.height + page.width / 4;
                    const int width = page.width + page.height / 4;
                    const int stride = word_stride(width);
                    const std::unique_ptr<std::uint8_t[]> result(
                        new std::uint8_t[static_cast<std::size_t>(height) *
                                         static_cast<std::size_t>(stride)]);
                    skew_binary_image_aligned_with_skrotimg_mem(
                        yskew, kScale, page.data.data(), page.height, page.width, page.stride,
                        result.get(), height, width, stride, nullptr);
                },
            .theirs = rotate_in_leptonica(page, yskew)};
}

bool add_rotation(const char* name, bench::Sides (*prepare)(int), int yskew,
                  double required = 1.0) {
    return bench::add({.name = name,
                       .peer = "Leptonica pixRotateShear",
                       .required = required,
                       .floor_bytes = 2 * kPageBytes,
                       .prepare = [prepare, yskew] { return prepare(yskew); }});
}

const bool whole_step =
    bench::add({.name = "skew and straighten a bitonal page (components kept whole)",
                .peer = "Leptonica pixDeskew",
                .required = 2.0,
                .floor_bytes = 2 * kPageBytes,
                .prepare = find_and_straighten});
// Labels the page and moves piece by piece, where the peer shears all ink: for comparison only.
const bool components = add_rotation("straighten, bitonal, 13 units", rotate_alone, 13, 0);
const bool plain = add_rotation("straighten, bitonal, 40 units", rotate_alone, 40);
const bool two_shears = add_rotation("straighten, bitonal aligned, 13 units", rotate_aligned, 13);
const bool three_shears = add_rotation("straighten, bitonal aligned, 40 units", rotate_aligned, 40);

}  // namespace
