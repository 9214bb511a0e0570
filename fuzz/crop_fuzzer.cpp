// Border cropping with sizes, strides and limits from the input, on buffers of exactly the size
// that the functions may touch.
//
// Input: 12 bytes of arguments, then pixels, repeated over the page.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "vemoprepro/cleaning.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kArguments = 12;

void require(bool held) {
    if (!held) std::abort();
}

Bytes repeated(const std::uint8_t* data, std::size_t size, std::size_t bytes) {
    Bytes result(bytes);
    for (std::size_t i = 0; i < bytes; ++i) result[i] = data[i % size];
    return result;
}

// Bytes up to the last pixel of the last row.
std::size_t extent(int height, int row_bytes, int stride) {
    if (height < 1 || row_bytes < 1) return 0;
    return static_cast<std::size_t>(height - 1) * static_cast<std::size_t>(stride) +
           static_cast<std::size_t>(row_bytes);
}

int limit(std::uint8_t value) {
    constexpr int kOdd[] = {INT32_MIN, -1, 0, 256, 257, INT32_MAX};
    return value < 6 ? kOdd[value] : value;
}

// Only ink goes, and the first and the last row have none left.
void crop_bitonal(const Bytes& page, int ink_value, int height, int width, int stride) {
    Bytes target(page.size(), 0x5C);
    require(cropbmp(ink_value, page.data(), height, width, stride, target.data()) == 0);
    for (std::size_t i = 0; i < page.size(); ++i) require((target[i] & ~page[i]) == 0);
    if (ink_value != 0) require(target == page);
    if (ink_value != 0 || height < 1) return;
    for (int x = 0; x < width; ++x) {
        const int last = (height - 1) * stride + x / 8;
        const int bit = 0x80 >> (x % 8);
        require((target[static_cast<std::size_t>(x / 8)] & bit) == 0);
        require((target[static_cast<std::size_t>(last)] & bit) == 0);
    }
}

// Bytes stay or become white; the frame is white; bytes that are no pixels stay.
void crop_image(const Bytes& page, int type, int height, int width, int stride,
                const std::uint8_t* limits) {
    Bytes image = page;
    int box[4] = {-7, -7, -7, -7};
    const int status = cropimg(image.data(), type, height, width, stride, limit(limits[0]),
                               limit(limits[1]), limit(limits[2]), box, box + 1, box + 2, box + 3);
    require(status == (type < 1 || type > 4 ? -1 : 0));
    if (status != 0) require(box[0] == -7 && box[3] == -7);
    if (status != 0 || height < 24 || width < 24) return require(image == page);
    require(0 < box[0] && box[0] <= box[1] && box[1] < width);
    require(0 < box[2] && box[2] <= box[3] && box[3] < height);
    const int bytes = type == 1 ? 1 : type == 4 ? 4 : 3;
    for (std::size_t i = 0; i < page.size(); ++i) {
        const int x = static_cast<int>(i) % stride;
        const bool fixed = x >= width * bytes || (type == 4 && x % 4 == 0);
        require(image[i] == page[i] || (image[i] == 255 && !fixed));
        if (!fixed && x < 8 * bytes) require(image[i] == 255);
    }
}

void colours(const Bytes& page, int height, int width, int stride, int from) {
    Bytes grey(page.begin(),
               page.begin() + static_cast<std::ptrdiff_t>(extent(height, width, stride)));
    std::uint8_t mean = 0;
    require(cropgrey_get(&mean, grey.data(), height, width, stride) == 0);
    require(cropgrey_replace(from, from + 1, grey.data(), height, width, stride) == 0);
    const auto wanted = static_cast<std::uint8_t>(from);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            require(grey[static_cast<std::size_t>(y * stride + x)] != wanted);

    const int pixels = stride / 3;
    const int columns = std::min(width, pixels);
    Bytes colour(page.begin(), page.begin() + static_cast<std::ptrdiff_t>(
                                                  extent(height, 3 * columns, 3 * pixels)));
    std::uint8_t value[3];
    require(cropcolor_get(value, colour.data(), height, columns, pixels) == 0);
    const Bytes row(static_cast<std::size_t>(3 * std::max(columns, 0)), wanted);
    const Bytes before = colour;
    require(cropcolor_replace(row.data(), row.data(), colour.data(), height, columns, pixels) == 0);
    require(colour == before);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size <= kArguments) return 0;
    const int height = data[0] % 100 - 2;
    const int width = data[1] - 2;
    const int type = data[2] % 6;
    const int padding = data[3] % 2 * (data[3] % 70);
    const std::uint8_t* const pixels = data + kArguments;
    const std::size_t count = size - kArguments;

    const int columns = std::max(width, 1);
    const auto rows = static_cast<std::size_t>(std::max(height, 0));
    const int bit_stride = (columns + 7) / 8 + padding;
    crop_bitonal(repeated(pixels, count, rows * static_cast<std::size_t>(bit_stride)),
                 data[7] / 200, height, width, bit_stride);
    const int bytes = type == 1 ? 1 : type == 4 ? 4 : 3;
    const int stride = columns * bytes + padding;
    crop_image(repeated(pixels, count, extent(height, columns * bytes, stride)), type, height,
               width, stride, data + 4);
    colours(repeated(pixels, count, rows * static_cast<std::size_t>(stride)), height, width, stride,
            data[8]);
    return 0;
}
