#include "files/tiff_bounds.h"

#include <cstdint>

#include "files/proportion.h"
#include "files/tiff_file.h"

namespace tool::files {

std::string excessive_blocks(TIFF* tiff) {
    const PagePlace page = place_of(tiff);
    const bool tiled = TIFFIsTiled(tiff) != 0;
    const std::uint64_t block = tiled ? TIFFTileSize64(tiff) : TIFFStripSize64(tiff);
    if (in_proportion(block, page)) return {};
    return std::string(tiled ? "tiles of " : "strips of ") + std::to_string(block >> 20) +
           " MB are too large for a page of " + std::to_string(page.width) + " x " +
           std::to_string(page.height) + " pixels";
}

}  // namespace tool::files
