// Right-angle turns beside their slow models, with sizes, strides and rotation codes from the
// input, on buffers of exactly the size that the functions ask for.
#include <cstddef>
#include <cstdint>

#include "input.h"
#include "models/rotation_comparison.h"
#include "vemoprepro/geometry.h"

namespace {

using fuzz::Bytes;
using fuzz::check;
using fuzz::Input;

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
    const Bytes src = input.take(static_cast<std::size_t>(rows * row_bytes));
    const int dst_size = size > shortage ? size - shortage : 0;
    check(model::bitonal_turns_agree(mode, src, height, width, stride, dst_size));
}

void turn_packed(Input& input) {
    const int mode = input.next() % 5;
    const int pixel_bytes = input.next() % 7;
    const int height = input.next() - 2;
    const int width = input.next() - 2;
    const bool empty = height < 1 || width < 1;
    const Bytes src =
        input.take(empty ? 0 : static_cast<std::size_t>(height * width * pixel_bytes));
    check(model::packed_turns_agree(mode, pixel_bytes, src, height, width));
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
