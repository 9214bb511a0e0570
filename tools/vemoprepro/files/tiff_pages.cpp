// Walks the chain of directories of a TIFF file once. The decoder goes on after many errors and
// would deliver a page that ends grey; so its errors are collected per thread through the extended
// handler, the only one that Leptonica leaves in place.
#include "files/tiff_pages.h"

#include <tiffio.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <memory>

#include "files/decode.h"
#include "files/orientation.h"

namespace tool {
namespace {

thread_local std::string first_error;
thread_local int first_system_error = 0;

void keep_error(thandle_t, const char*, const char* format, va_list arguments) {
    if (!first_error.empty()) return;
    first_system_error = errno;
    char text[256];
    std::vsnprintf(text, sizeof text, format, arguments);
    first_error = text;
    if (first_error.empty()) first_error = "unknown error";
}

bool is_thumbnail(TIFF* tiff) {
    std::uint32_t type = 0;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SUBFILETYPE, &type);
    return (type & (FILETYPE_REDUCEDIMAGE | FILETYPE_MASK)) != 0;
}

PagePlace place_of(TIFF* tiff) {
    std::uint32_t width = 0, height = 0;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
    const auto clamped = [](std::uint32_t side) {
        return side > INT32_MAX ? INT32_MAX : static_cast<int>(side);
    };
    return {static_cast<std::size_t>(TIFFCurrentDirOffset(tiff)), clamped(width), clamped(height)};
}

struct CloseTiff {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffFile = std::unique_ptr<TIFF, CloseTiff>;

int tag_of(TIFF* tiff, std::uint32_t tag) {
    std::uint16_t value = 0;
    TIFFGetFieldDefaulted(tiff, tag, &value);
    return value;
}

// True when scan lines are packed grey or red, green, blue bytes. JPEG data becomes so on request.
bool is_packed(TIFF* tiff) {
    int colours = tag_of(tiff, TIFFTAG_PHOTOMETRIC);
    const int samples = tag_of(tiff, TIFFTAG_SAMPLESPERPIXEL);
    const int compression = tag_of(tiff, TIFFTAG_COMPRESSION);
    if (TIFFIsTiled(tiff) != 0 || compression == COMPRESSION_OJPEG ||
        tag_of(tiff, TIFFTAG_BITSPERSAMPLE) != 8 ||
        tag_of(tiff, TIFFTAG_PLANARCONFIG) != PLANARCONFIG_CONTIG) {
        return false;
    }
    if (compression == COMPRESSION_JPEG && colours == PHOTOMETRIC_YCBCR) {
        TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        colours = PHOTOMETRIC_RGB;
    }
    return (colours == PHOTOMETRIC_RGB && samples == 3) ||
           (colours == PHOTOMETRIC_MINISBLACK && samples == 1);
}

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

bool is_unusual(TIFF* tiff) {
    const int bits = tag_of(tiff, TIFFTAG_BITSPERSAMPLE);
    const bool in_planes = tag_of(tiff, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE &&
                           tag_of(tiff, TIFFTAG_SAMPLESPERPIXEL) > 1;
    const bool inverted = tag_of(tiff, TIFFTAG_PHOTOMETRIC) == PHOTOMETRIC_MINISWHITE;
    return TIFFIsTiled(tiff) != 0 || in_planes || (inverted && bits != 1 && bits != 8) ||
           bits > 16 || has_narrow_palette(tiff);
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
    char reason[1024] = "";
    if (TIFFRGBAImageOK(tiff, reason) == 0) {
        if (first_error.empty()) first_error = reason;
        return false;
    }
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

int dots_per_inch(TIFF* tiff, std::uint32_t tag) {
    float value = 0;
    if (TIFFGetField(tiff, tag, &value) != 1 || !(value > 0 && value < 1e6F)) return 0;
    const bool metric = tag_of(tiff, TIFFTAG_RESOLUTIONUNIT) == RESUNIT_CENTIMETER;
    return static_cast<int>(value * (metric ? 2.54F : 1.0F) + 0.5F);
}

// Size and resolution.
Page frame_of(TIFF* tiff) {
    const PagePlace place = place_of(tiff);
    Page page;
    page.width = place.width;
    page.height = place.height;
    page.dpi = {dots_per_inch(tiff, TIFFTAG_XRESOLUTION), dots_per_inch(tiff, TIFFTAG_YRESOLUTION)};
    return page;
}

}  // namespace

bool starts_as_tiff(std::FILE* file) {
    static constexpr char kStarts[4][5] = {"II\x2A\0", "MM\0\x2A", "II\x2B\0", "MM\0\x2B"};
    char start[4] = {};
    if (std::fread(start, 1, sizeof start, file) != sizeof start) return false;
    for (const char* known : kStarts) {
        if (std::memcmp(start, known, sizeof start) == 0) return true;
    }
    return false;
}

void collect_tiff_errors() {
    TIFFSetWarningHandler(nullptr);
    TIFFSetErrorHandler(nullptr);
    TIFFSetErrorHandlerExt(keep_error);
}

TiffErrors::TiffErrors() {
    first_error.clear();
    first_system_error = 0;
}

const std::string& TiffErrors::first() const {
    return first_error;
}

int TiffErrors::system_error() const {
    return first_system_error;
}

std::vector<PagePlace> list_tiff_pages(const std::string& path) {
    const TiffErrors errors;
    TIFF* tiff = TIFFOpen(path.c_str(), "rm");
    if (tiff == nullptr) return {};
    std::vector<PagePlace> places;
    do {
        if (!is_thumbnail(tiff)) places.push_back(place_of(tiff));
    } while (TIFFReadDirectory(tiff) != 0);
    TIFFClose(tiff);
    if (!errors.first().empty()) places.clear();
    return places;
}

// The file is mapped into memory here: else libtiff refuses tiles that are not compressed.
std::optional<Page> read_unusual_tiff(const std::string& path, std::size_t offset) {
    const TiffFile tiff(TIFFOpen(path.c_str(), "r"));
    if (!tiff || (TIFFSetSubDirectory(tiff.get(), offset) == 0) || !is_unusual(tiff.get())) {
        return std::nullopt;
    }
    Page page = frame_of(tiff.get());
    if (tag_of(tiff.get(), TIFFTAG_SAMPLESPERPIXEL) == 2) {
        first_error = "transparent greys in tiles or planes are not supported";
        return page;
    }
    const bool deep = has_deep_grey_tiles(tiff.get());
    if (!(deep ? read_deep_grey_tiles(tiff.get(), page) : read_words(tiff.get(), page))) {
        if (first_error.empty()) first_error = "it cannot be decoded";
        return page;
    }
    if (!deep) pack_colour(page, true, true);
    orient(page, tag_of(tiff.get(), TIFFTAG_ORIENTATION));
    return page;
}

std::optional<Page> read_packed_tiff(const std::string& path, std::size_t offset) {
    const TiffFile tiff(TIFFOpen(path.c_str(), "rm"));
    if (!tiff || (TIFFSetSubDirectory(tiff.get(), offset) == 0) || !is_packed(tiff.get())) {
        return std::nullopt;
    }
    Page page = frame_of(tiff.get());
    page.kind =
        tag_of(tiff.get(), TIFFTAG_SAMPLESPERPIXEL) == 3 ? PageKind::kColour : PageKind::kGrey;
    if (static_cast<std::size_t>(TIFFScanlineSize(tiff.get())) != page.stride()) {
        return std::nullopt;
    }
    page.bytes = allocate_pixels(page.size());
    for (int y = 0; y < page.height; ++y) {
        if (TIFFReadScanline(tiff.get(), page.row(y), static_cast<std::uint32_t>(y), 0) != 1) break;
    }
    orient(page, tag_of(tiff.get(), TIFFTAG_ORIENTATION));
    return page;
}

}  // namespace tool
