#include "deskew/bitonal_rotation.h"

#include <cstdlib>
#include <cstring>

namespace deskew {

void copy_page(common::BitonalView source, common::MutableBitonalView destination,
               const Progress& progress) {
    progress(0, 1);
    const auto used = static_cast<std::size_t>(common::bitonal_bytes(source.width));
    const auto stride = static_cast<std::size_t>(destination.stride);
    for (std::int32_t y = 0; y < destination.height; ++y) {
        std::uint8_t* row = destination.row(y);
        const std::size_t copied = y < source.height ? used : 0;
        if (copied != 0) std::memcpy(row, source.row(y), copied);
        std::memset(row + copied, 0, stride - copied);
    }
    progress(1, 1);
}

void straighten(common::BitonalView source, int yskew, common::MutableBitonalView destination,
                const Progress& progress, diag::LoggerSlot logger) {
    std::memset(destination.data, 0,
                static_cast<std::size_t>(destination.height) *
                    static_cast<std::size_t>(destination.stride));
    if (std::abs(yskew) <= kMaxComponentSkew) {
        component_shear(source, yskew, destination, progress, logger);
    } else {
        plain_shear(source, yskew, destination, progress);
    }
}

}  // namespace deskew
