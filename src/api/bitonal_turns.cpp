#include "api/bitonal_turns.h"

#include "api/guard.h"
#include "common/views.h"

namespace api {
namespace {

using geometry::Turn;

// Bytes that the caller must have at dst. The quarter turns ask for a result row for every bit of
// a source row, padding included.
std::int64_t demanded_size(Turn turn, std::int64_t height, std::int64_t bytes_per_line) {
    if (turn == Turn::kHalf) return height * bytes_per_line;
    return 8 * bytes_per_line * common::bitonal_stride(height);
}

}  // namespace

int turn_bitonal(Turn turn, const unsigned char* src, int width, int height, int bytes_per_line,
                 unsigned char* dst, std::int64_t dst_size, unsigned int* out_bytes_per_line) {
    if (src == nullptr || dst == nullptr || out_bytes_per_line == nullptr) return kFailure;
    if (width < 1 || height < 1) return kFailure;
    if (bytes_per_line % 4 != 0) return kFailure;
    if (demanded_size(turn, height, bytes_per_line) > dst_size) return kFailure;
    if (bytes_per_line < common::bitonal_bytes(width)) return kFailure;
    return guarded([&] {
        const common::BitonalView page{src, height, width, bytes_per_line};
        geometry::turn_bitonal(turn, page, dst);
        *out_bytes_per_line = static_cast<unsigned int>(geometry::turned_stride(turn, page));
        return kSuccess;
    });
}

}  // namespace api
