// Rotation by any angle beside its slow models, with sizes, strides and angles from the input, and
// images that end with their last row.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "models/any_angle_comparison.h"

namespace {

struct Input {
    const std::uint8_t* data;
    std::size_t size;

    int next() {
        if (size == 0) return 0;
        --size;
        return *data++;
    }
    // A right angle, one near it, or any bits at all.
    double angle() {
        const int kind = next();
        if (kind % 4 == 0) return 90 * (next() % 10 - 5);
        if (kind % 4 == 1) return 90 * (next() % 10 - 5) + (next() - 128) / 1024.0;
        if (kind % 4 == 2) return (next() * 256 + next() - 32768) / 64.0;
        double any = 0;
        std::uint8_t bits[sizeof any];
        for (auto& byte : bits) byte = static_cast<std::uint8_t>(next());
        std::memcpy(&any, bits, sizeof any);
        return any;
    }
    // Repeats what is left of the input.
    std::vector<std::uint8_t> image(std::size_t bytes) const {
        std::vector<std::uint8_t> result(bytes, 0xA6);
        for (std::size_t i = 0; size > 0 && i < bytes; ++i) result[i] = data[i % size];
        return result;
    }
};

void check(bool holds) {
    if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input{data, size};
    const bool bitonal = input.next() % 2 == 0;
    const int pixel_bytes = bitonal ? 1 : 1 + input.next() % 5;
    const double angle = input.angle();
    model::AngleSizes s{};
    s.height = 1 + input.next();
    s.width = 1 + input.next();
    const auto least_stride = [&](int width) {
        return bitonal ? model::word_stride(width) : pixel_bytes * width;
    };
    s.stride = least_stride(s.width) + input.next() % 12 - 1;
    check(model::angle_sizes_agree(s.height, s.width, angle));
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
        input.image(static_cast<std::size_t>(s.height) * static_cast<std::size_t>(s.stride));
    if (bitonal) {
        check(model::bitonal_angles_agree(src, s, angle));
    } else {
        const std::uint8_t background[] = {1, 20, 200, 255, 7};
        check(model::colour_angles_agree(pixel_bytes, background, src, s, angle));
    }
    return 0;
}
