// Right-angle turns with sizes, strides and rotation codes from the input, on buffers of exactly
// the size that the functions ask for. A turn that succeeds must come back by the turns that
// complete the circle.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "vemoprepro/geometry.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

struct Input {
    const std::uint8_t* data;
    std::size_t size;

    int next() {
        if (size == 0) return 0;
        --size;
        return *data++;
    }
    Bytes image(std::size_t bytes) {
        Bytes result(bytes);
        for (auto& value : result) value = static_cast<std::uint8_t>(next());
        return result;
    }
};

void require(bool held) {
    if (!held) std::abort();
}

bool ink(const Bytes& rows, std::size_t stride, std::size_t x, std::size_t y) {
    return (rows[y * stride + x / 8] >> (7 - x % 8) & 1) != 0;
}

void turn_bitonal(Input& input) {
    const int mode = input.next() % 6;
    const int width = input.next() * (input.next() % 5);
    const int height = input.next() - 2;
    const int stride = (width + 31) / 32 * 4 + input.next() % 16 - 4;
    const int shortage = input.next() % 8 == 0 ? 1 : 0;
    const int rows = height > 0 ? height : 0;
    const int row_bytes = stride > 0 ? stride : 0;
    const int size =
        mode == PREPRO_TURN_HALF ? rows * row_bytes : row_bytes / 4 * ((rows + 31) / 32) * 128;
    const Bytes src = input.image(static_cast<std::size_t>(rows * row_bytes));
    const int dst_size = size > shortage ? size - shortage : 0;
    Bytes dst(static_cast<std::size_t>(dst_size));
    unsigned out = 0;
    const int status =
        kyd_rotate_bitmap(mode, src.data(), height, width, stride, dst.data(), dst_size, &out);
    if (status != 0 || mode < 1 || mode > 3) {
        require(out == 0 && dst == Bytes(dst.size()));
        return;
    }
    require(out == static_cast<unsigned>(mode == 2 ? stride : (height + 31) / 32 * 4));
    const auto h = static_cast<std::size_t>(height);
    const auto w = static_cast<std::size_t>(width);
    const std::size_t out_width = mode == 2 ? w : h;
    const std::size_t out_height = mode == 2 ? h : w;
    for (std::size_t y = 0; y < out_height; ++y) {
        for (std::size_t x = 0; x < out * std::size_t{8}; ++x) {
            const std::size_t from_x = mode == 1 ? w - 1 - y : mode == 2 ? w - 1 - x : y;
            const std::size_t from_y = mode == 1 ? x : mode == 2 ? h - 1 - y : h - 1 - x;
            const bool expected =
                x < out_width && ink(src, static_cast<std::size_t>(stride), from_x, from_y);
            require(ink(dst, out, x, y) == expected);
        }
    }
}

void turn_packed(Input& input) {
    const int mode = input.next() % 5;
    const int pixel_bytes = input.next() % 7;
    const int height = input.next() - 2;
    const int width = input.next() - 2;
    const bool empty = height < 1 || width < 1;
    const Bytes src =
        input.image(empty ? 0 : static_cast<std::size_t>(height * width * pixel_bytes));
    Bytes turned(src.size());
    int out_height = 0;
    int out_width = 0;
    const int status = kyd_rotate_color(mode, pixel_bytes, src.data(), height, width, turned.data(),
                                        &out_height, &out_width);
    require(status == 0 || status == -1);
    if (status != 0 || empty) return;
    Bytes back(src.size());
    require(kyd_rotate_color(4 - mode, pixel_bytes, turned.data(), out_height, out_width,
                             back.data(), &out_height, &out_width) == 0);
    require(out_height == height && out_width == width && back == src);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input{data, size};
    if (input.next() % 2 == 0) {
        turn_bitonal(input);
    } else {
        turn_packed(input);
    }
    return 0;
}
