// Border cropping beside its slow models, with sizes, strides and limits from the input, on buffers
// of exactly the size that the functions may touch.
//
// Input: 12 bytes of arguments, then pixels, repeated over the page.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "models/crop_comparison.h"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

int limit(std::uint8_t value) {
    constexpr int kOdd[] = {INT32_MIN, -1, 0, 256, 257, INT32_MAX};
    return value < 6 ? kOdd[value] : value;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kArguments = 12;
    if (size <= kArguments) return 0;
    const int height = data[0] % 100 - 2;
    const int width = data[1] - 2;
    const int type = data[2] % 6;
    const int padding = data[3] % 2 * (data[3] % 70);
    const int columns = std::max(width, 1);
    // Rows of `row` bytes, the last of which ends the buffer; `stride` counts units of `unit`
    // bytes.
    const auto page = [&](int row, int stride, int unit = 1) {
        model::CropPage made{{}, height, width, stride};
        made.bytes.resize(height < 1 ? 0 : model::offset(height - 1, stride * unit, row));
        for (std::size_t i = 0; i < made.bytes.size(); ++i)
            made.bytes[i] = data[kArguments + i % (size - kArguments)];
        return made;
    };

    const int bit_stride = (columns + 7) / 8 + padding;
    require(model::bitonal_crops_agree(page(bit_stride, bit_stride), data[7] / 200));
    const int row = columns * model::crop_pixel_size(type);
    require(model::image_crops_agree(page(row, row + padding), type,
                                     {limit(data[4]), limit(data[5]), limit(data[6])}));
    const int pitch = columns + padding;
    require(model::grey_values_agree(page(columns, pitch), data[8], data[8] + 1));
    const model::CropPage colour = page(3 * columns, pitch, 3);
    const std::vector<std::uint8_t> from(colour.bytes.begin(),
                                         colour.bytes.begin() + (height < 1 ? 0 : 3 * columns));
    require(model::colours_agree(colour, from, std::vector<std::uint8_t>(from.size(), data[9])));
    return 0;
}
