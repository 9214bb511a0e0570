// Rotation by any angle beside its slow models, with sizes, strides and angles from the input, and
// images that end with their last row.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "input.h"
#include "models/any_angle_comparison.h"

namespace {

using fuzz::Input;

// A right angle, one near it, or any bits at all.
double angle_from(Input& input) {
    const int kind = input.next();
    if (kind % 4 == 0) return 90 * (input.next() % 10 - 5);
    if (kind % 4 == 1) return 90 * (input.next() % 10 - 5) + (input.next() - 128) / 1024.0;
    if (kind % 4 == 2) return (input.next() * 256 + input.next() - 32768) / 64.0;
    double any = 0;
    std::uint8_t bits[sizeof any];
    for (auto& byte : bits) byte = static_cast<std::uint8_t>(input.next());
    std::memcpy(&any, bits, sizeof any);
    return any;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input{data, size};
    const bool bitonal = input.next() % 2 == 0;
    const int pixel_bytes = bitonal ? 1 : 1 + input.next() % 5;
    const double angle = angle_from(input);
    model::AngleSizes s{};
    s.height = 1 + input.next();
    s.width = 1 + input.next();
    const auto least_stride = [&](int width) {
        return bitonal ? model::word_stride(width) : pixel_bytes * width;
    };
    s.stride = least_stride(s.width) + input.next() % 12 - 1;
    fuzz::check(model::angle_sizes_agree(s.height, s.width, angle));
    if (rotate_image_dim(s.height, s.width, &s.dst_height, &s.dst_width, angle) != 0) return 0;
    s.dst_height += input.next() % 8 - 4;
    s.dst_width += input.next() % 8 - 4;
    if (input.next() % 4 == 0) s.dst_width = input.next() * 4 - 2;
    s.dst_stride = least_stride(std::max(s.dst_width, 0)) + input.next() % 12 - 1;
    if (input.next() % 2 == 0) {  // what the right angles ask for
        rotate_image_dim(s.height, s.width, &s.dst_height, &s.dst_width, angle);
        s.dst_stride = s.dst_width == s.width ? s.stride : least_stride(s.dst_width);
    }
    const auto src =
        input.repeat(static_cast<std::size_t>(s.height) * static_cast<std::size_t>(s.stride));
    if (bitonal) {
        fuzz::check(model::bitonal_angles_agree(src, s, angle));
    } else {
        const std::uint8_t background[] = {1, 20, 200, 255, 7};
        fuzz::check(model::colour_angles_agree(pixel_bytes, background, src, s, angle));
    }
    return 0;
}
