// The eleven scaling functions beside their slow models, with sizes, strides, threads and pixels
// from the input; sides that fit one of the exact ratios come up often.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "input.h"
#include "models/scaling_comparison.h"

namespace {

using fuzz::Input;

int target_of(int source, Input& input) {
    switch (input.next_below(5)) {
        case 0:
            return 2 * source;
        case 1:
            return std::max(1, 3 * source / 2);
        case 2:
            return std::max(1, 4 * source / 3);
        case 3:
            return std::max(1, source / (1 + input.next_below(4)));
        default:
            return 1 + input.next();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input{data, size};
    const auto& kinds = model::kScalingKinds;
    const model::ScalingKind& kind = kinds[input.next_below(static_cast<int>(std::size(kinds)))];
    model::ScalingSizes sizes{};
    // Bands need 100 rows and more; wide pages of as many rows would take too long.
    const bool tall = input.next_below(4) == 0;
    sizes.height = 1 + (tall ? input.next() : input.next_below(40));
    sizes.width = 1 + (tall ? input.next_below(8) : input.next());
    sizes.dst_height = target_of(sizes.height, input);
    sizes.dst_width = target_of(sizes.width, input);
    sizes.stride = kind.row_bytes(sizes.width) + input.next_below(8) - 1;
    sizes.dst_stride = kind.row_bytes(sizes.dst_width) + input.next_below(8) - 1;
    const int threads = input.next_below(9);
    // Sources end with their last pixel.
    const auto rows = static_cast<std::size_t>(sizes.height - 1);
    const fuzz::Bytes src =
        input.repeat(rows * static_cast<std::size_t>(std::max(sizes.stride, 0)) +
                     static_cast<std::size_t>(kind.row_bytes(sizes.width)));
    fuzz::check(model::scalings_agree(kind, src, sizes, threads));
    return 0;
}
