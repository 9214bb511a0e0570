// Border cropping beside its slow models, with sizes, strides and limits from the input, on buffers
// of exactly the size that the functions may touch.
//
// Input: 12 bytes of arguments, then pixels, repeated over the page.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "models/crop_model.h"
#include "vemoprepro/cleaning.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kArguments = 12;

int limit(std::uint8_t value) {
    constexpr int kOdd[] = {INT32_MIN, -1, 0, 256, 257, INT32_MAX};
    return value < 6 ? kOdd[value] : value;
}

// Calls both on pages of their own: results and pages must agree.
template <class Function, class Model, class Call>
void compare(const Bytes& page, Function function, Model theirs, Call call) {
    Bytes image = page;
    Bytes expected = page;
    if (call(function, image) != call(theirs, expected) || image != expected) std::abort();
}

struct Page {
    Bytes bytes;
    int height, width, stride;  // in pixels for colours
};

void crop_bitonal(const Page& page, int ink_value) {
    compare(Bytes(page.bytes.size(), 0x5C), cropbmp, model::cropbmp, [&](auto crop, Bytes& target) {
        return crop(ink_value, page.bytes.data(), page.height, page.width, page.stride,
                    target.data());
    });
}

void crop_image(const Page& page, int type, const std::uint8_t* limits) {
    compare(page.bytes, cropimg, model::cropimg, [&](auto crop, Bytes& image) {
        std::array<int, 5> results{-7, -7, -7, -7, -7};
        results[4] = crop(image.data(), type, page.height, page.width, page.stride,
                          limit(limits[0]), limit(limits[1]), limit(limits[2]), &results[0],
                          &results[1], &results[2], &results[3]);
        return results;
    });
}

// Measures one byte of grey or three of colour.
template <class Function>
void measure(const Page& page, Function function, Function theirs) {
    compare({7, 7, 7}, function, theirs, [&](auto get, Bytes& value) {
        return get(value.data(), page.bytes.data(), page.height, page.width, page.stride);
    });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size <= kArguments) return 0;
    const int height = data[0] % 100 - 2;
    const int width = data[1] - 2;
    const int type = data[2] % 6;
    const int padding = data[3] % 2 * (data[3] % 70);
    const int columns = std::max(width, 1);
    // With rows of `row` bytes, the last of which ends the buffer.
    const auto page_of = [&](int row, int stride) {
        Bytes bytes(height < 1 ? 0 : model::offset(height - 1, stride, row));
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = data[kArguments + i % (size - kArguments)];
        return bytes;
    };

    const int bit_stride = (columns + 7) / 8 + padding;
    crop_bitonal({page_of(bit_stride, bit_stride), height, width, bit_stride}, data[7] / 200);
    const int row = columns * model::crop_pixel_size(type);
    crop_image({page_of(row, row + padding), height, width, row + padding}, type, data + 4);

    const int pitch = columns + padding;
    const Page grey{page_of(columns, pitch), height, width, pitch};
    const Page colour{page_of(3 * columns, 3 * pitch), height, width, pitch};
    measure(grey, cropgrey_get, model::cropgrey_get);
    measure(colour, cropcolor_get, model::cropcolor_get);
    const int from = data[8];
    compare(grey.bytes, cropgrey_replace, model::cropgrey_replace, [&](auto replace, Bytes& page) {
        return replace(from, from + 1, page.data(), height, width, pitch);
    });
    const Bytes wanted = page_of(3 * columns, 0);
    const Bytes painted(wanted.size(), data[9]);
    if (height < 1) return 0;
    compare(colour.bytes, cropcolor_replace, model::cropcolor_replace,
            [&](auto replace, Bytes& page) {
                return replace(wanted.data(), painted.data(), page.data(), height, width, pitch);
            });
    return 0;
}
