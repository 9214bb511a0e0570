// libtiff makes 32-bit words of nearly every shape. Two it gets wrong, in tiles beside the right
// edge: greys of 16 bits are read tile by tile, and transparent ones are not read.
#include "files/tiff_unusual.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <vector>

#include "files/orientation.h"
#include "files/word_rows.h"

namespace tool::files {
namespace {

// Colour maps are of 16 bits, but some programs wrote values of 8.
bool has_narrow_palette(TIFF* tiff) {
    std::uint16_t* maps[3] = {};
    const int bits = tag_of(tiff, TIFFTAG_BITSPERSAMPLE);
    if (tag_of(tiff, TIFFTAG_PHOTOMETRIC) != PHOTOMETRIC_PALETTE || bits > 8 ||
        TIFFGetField(tiff, TIFFTAG_COLORMAP, &maps[0], &maps[1], &maps[2]) != 1) {
        return false;
    }
    for (const std::uint16_t* map : maps) {
        if (std::any_of(map, map + (std::ptrdiff_t{1} << bits), [](int v) { return v > 255; })) {
            return false;
        }
    }
    return true;
}

// What the file says of the first sample behind the colours.
int extra_sample(TIFF* tiff) {
    std::uint16_t count = 0, *kinds = nullptr;
    const bool stated = TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds) == 1 && count > 0;
    return stated ? kinds[0] : EXTRASAMPLE_UNSPECIFIED;
}

// Decoders take a fourth sample for alpha whatever it is.
bool has_unknown_sample(TIFF* tiff) {
    return tag_of(tiff, TIFFTAG_PHOTOMETRIC) == PHOTOMETRIC_RGB &&
           tag_of(tiff, TIFFTAG_SAMPLESPERPIXEL) > 3 &&
           extra_sample(tiff) == EXTRASAMPLE_UNSPECIFIED;
}

bool is_in_planes(TIFF* tiff) {
    return tag_of(tiff, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE &&
           tag_of(tiff, TIFFTAG_SAMPLESPERPIXEL) > 1;
}

bool is_unusual(TIFF* tiff) {
    const int bits = tag_of(tiff, TIFFTAG_BITSPERSAMPLE);
    const bool inverted = tag_of(tiff, TIFFTAG_PHOTOMETRIC) == PHOTOMETRIC_MINISWHITE;
    return TIFFIsTiled(tiff) != 0 || is_in_planes(tiff) || (inverted && bits != 1 && bits != 8) ||
           tag_of(tiff, TIFFTAG_SAMPLESPERPIXEL) == 2 || has_unknown_sample(tiff) ||
           has_narrow_palette(tiff);
}

// libtiff's words have red at the bottom, those of pack_colour() at the top.
void turn_words(unsigned char* words, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i, words += 4) {
        std::uint32_t word;
        std::memcpy(&word, words, 4);
        word = TIFFGetR(word) << 24 | TIFFGetG(word) << 16 | TIFFGetB(word) << 8 | TIFFGetA(word);
        std::memcpy(words, &word, 4);
    }
}

// All pixels as words, in the order of the file; false when that fails.
bool read_words(TIFF* tiff, Page& page) {
    const std::size_t count =
        static_cast<std::size_t>(page.width) * static_cast<std::size_t>(page.height);
    page.bytes = allocate_pixels(count * 4);
    auto* words = reinterpret_cast<std::uint32_t*>(page.bytes.get());
    const int as_stored = tag_of(tiff, TIFFTAG_ORIENTATION);
    if (TIFFReadRGBAImageOriented(tiff, static_cast<std::uint32_t>(page.width),
                                  static_cast<std::uint32_t>(page.height), words, as_stored,
                                  1) != 1) {
        return false;
    }
    turn_words(page.bytes.get(), count);
    return true;
}

// libtiff multiplies colours by their alpha, but no greys.
void pack_words(TIFF* tiff, Page& page) {
    const int extra = extra_sample(tiff);
    const bool grey = tag_of(tiff, TIFFTAG_SAMPLESPERPIXEL) == 2;
    pack_colour(page, extra != EXTRASAMPLE_UNSPECIFIED, !grey || extra == EXTRASAMPLE_ASSOCALPHA);
}

// Greys of 16 bits in tiles: libtiff's words of them are wrong beside the right edge.
bool has_deep_grey_tiles(TIFF* tiff) {
    return TIFFIsTiled(tiff) != 0 && tag_of(tiff, TIFFTAG_BITSPERSAMPLE) == 16 &&
           tag_of(tiff, TIFFTAG_SAMPLESPERPIXEL) == 1;
}

// The upper bytes of such tiles as rows of greys. False when that fails.
bool read_deep_grey_tiles(TIFF* tiff, Page& page) {
    std::uint32_t tile_width = 0, tile_height = 0;
    TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &tile_width);
    TIFFGetField(tiff, TIFFTAG_TILELENGTH, &tile_height);
    const int inverted = tag_of(tiff, TIFFTAG_PHOTOMETRIC) == PHOTOMETRIC_MINISWHITE ? 255 : 0;
    const auto width = static_cast<std::uint32_t>(page.width);
    const auto height = static_cast<std::uint32_t>(page.height);
    page.kind = PageKind::kGrey;
    page.bytes = allocate_pixels(page.size());
    std::vector<std::uint16_t> tile(static_cast<std::size_t>(TIFFTileSize(tiff)) / 2);
    for (std::uint32_t top = 0; top < height; top += tile_height) {
        for (std::uint32_t left = 0; left < width; left += tile_width) {
            if (TIFFReadTile(tiff, tile.data(), left, top, 0, 0) < 0) return false;
            for (std::uint32_t y = 0; y < std::min(tile_height, height - top); ++y) {
                for (std::uint32_t x = 0; x < std::min(tile_width, width - left); ++x) {
                    page.row(static_cast<int>(top + y))[left + x] = static_cast<unsigned char>(
                        tile[std::size_t{y} * tile_width + x] >> 8 ^ inverted);
                }
            }
        }
    }
    return true;
}

}  // namespace

std::string unread_kind(TIFF* tiff) {
    const int bits = tag_of(tiff, TIFFTAG_BITSPERSAMPLE);
    const int numbers = tag_of(tiff, TIFFTAG_SAMPLEFORMAT);
    if (bits > 16 || !std::has_single_bit(static_cast<unsigned>(bits))) {
        return std::to_string(bits) + "-bit samples";
    }
    if (bits >= 8 && numbers != SAMPLEFORMAT_UINT && numbers != SAMPLEFORMAT_VOID) {
        return "signed or floating-point samples";
    }
    const bool plain = bits == 8 && !is_in_planes(tiff) && TIFFIsTiled(tiff) == 0;
    if (tag_of(tiff, TIFFTAG_SAMPLESPERPIXEL) == 2 && !plain) {
        return "transparent greys in tiles, in planes or of other than 8 bits";
    }
    char reason[1024] = "";
    if (TIFFRGBAImageOK(tiff, reason) != 0) return {};
    return "unusual pixels (" + std::string(reason) + ")";
}

std::optional<Page> read_unusual_tiff(TIFF* tiff) {
    if (!is_unusual(tiff)) return std::nullopt;
    Page page = frame_of(tiff);
    const bool deep = has_deep_grey_tiles(tiff);
    if (!(deep ? read_deep_grey_tiles(tiff, page) : read_words(tiff, page))) {
        TiffErrors::note("it cannot be decoded");
        return page;
    }
    if (!deep) pack_words(tiff, page);
    orient(page, tag_of(tiff, TIFFTAG_ORIENTATION));
    return page;
}

}  // namespace tool::files
