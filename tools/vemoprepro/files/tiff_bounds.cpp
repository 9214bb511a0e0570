#include "files/tiff_bounds.h"

#include <algorithm>
#include <cstdint>

#include "files/tiff_file.h"

namespace tool::files {

std::string excessive_blocks(TIFF* tiff) {
    constexpr std::uint64_t kAlwaysTaken = 16 << 20;
    constexpr std::uint64_t kBytesPerPixel = 8;  // four samples of 16 bits
    const PagePlace page = place_of(tiff);
    const bool tiled = TIFFIsTiled(tiff) != 0;
    const std::uint64_t block = tiled ? TIFFTileSize64(tiff) : TIFFStripSize64(tiff);
    const std::uint64_t pixels =
        static_cast<std::uint64_t>(page.width) * static_cast<std::uint64_t>(page.height);
    if (block <= std::max(kAlwaysTaken, kBytesPerPixel * pixels)) return {};
    return std::string(tiled ? "tiles of " : "strips of ") + std::to_string(block >> 20) +
           " MB are too large for a page of " + std::to_string(page.width) + " x " +
           std::to_string(page.height) + " pixels";
}

}  // namespace tool::files
