/* Walks the chain of directories of a TIFF file once. The decoder goes on after many errors and
 * would deliver a page that ends grey; so its errors are collected per thread through the extended
 * handler, the only one that Leptonica leaves in place. */
#include "tiff_pages.h"

#include <tiffio.h>

#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <memory>

#include "orientation.h"

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

/* True when scan lines are packed grey or red, green, blue bytes. JPEG data becomes so on request.
 */
bool is_packed(TIFF* tiff) {
    int colours = tag_of(tiff, TIFFTAG_PHOTOMETRIC);
    const int samples = tag_of(tiff, TIFFTAG_SAMPLESPERPIXEL);
    const int compression = tag_of(tiff, TIFFTAG_COMPRESSION);
    if (TIFFIsTiled(tiff) || compression == COMPRESSION_OJPEG ||
        tag_of(tiff, TIFFTAG_BITSPERSAMPLE) != 8 ||
        tag_of(tiff, TIFFTAG_PLANARCONFIG) != PLANARCONFIG_CONTIG)
        return false;
    if (compression == COMPRESSION_JPEG && colours == PHOTOMETRIC_YCBCR) {
        TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        colours = PHOTOMETRIC_RGB;
    }
    return (colours == PHOTOMETRIC_RGB && samples == 3) ||
           (colours == PHOTOMETRIC_MINISBLACK && samples == 1);
}

int dots_per_inch(TIFF* tiff, std::uint32_t tag) {
    float value = 0;
    if (TIFFGetField(tiff, tag, &value) != 1 || !(value > 0 && value < 1e6F)) return 0;
    const bool metric = tag_of(tiff, TIFFTAG_RESOLUTIONUNIT) == RESUNIT_CENTIMETER;
    return static_cast<int>(value * (metric ? 2.54F : 1.0F) + 0.5F);
}

}  // namespace

bool starts_as_tiff(std::FILE* file) {
    static constexpr char kStarts[4][5] = {"II\x2A\0", "MM\0\x2A", "II\x2B\0", "MM\0\x2B"};
    char start[4] = {};
    if (std::fread(start, 1, sizeof start, file) != sizeof start) return false;
    for (const char* known : kStarts)
        if (std::memcmp(start, known, sizeof start) == 0) return true;
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
    if (!tiff) return {};
    std::vector<PagePlace> places;
    do {
        if (!is_thumbnail(tiff)) places.push_back(place_of(tiff));
    } while (TIFFReadDirectory(tiff));
    TIFFClose(tiff);
    if (!errors.first().empty()) places.clear();
    return places;
}

std::optional<Page> read_packed_tiff(const std::string& path, std::size_t offset) {
    const TiffFile tiff(TIFFOpen(path.c_str(), "rm"));
    if (!tiff || !TIFFSetSubDirectory(tiff.get(), offset) || !is_packed(tiff.get()))
        return std::nullopt;
    const PagePlace place = place_of(tiff.get());
    Page page;
    page.kind =
        tag_of(tiff.get(), TIFFTAG_SAMPLESPERPIXEL) == 3 ? PageKind::colour : PageKind::grey;
    page.width = place.width;
    page.height = place.height;
    page.dpi = {dots_per_inch(tiff.get(), TIFFTAG_XRESOLUTION),
                dots_per_inch(tiff.get(), TIFFTAG_YRESOLUTION)};
    if (static_cast<std::size_t>(TIFFScanlineSize(tiff.get())) != page.stride())
        return std::nullopt;
    page.bytes = allocate_pixels(page.size());
    for (int y = 0; y < page.height; ++y)
        if (TIFFReadScanline(tiff.get(), page.row(y), static_cast<std::uint32_t>(y), 0) != 1) break;
    orient(page, tag_of(tiff.get(), TIFFTAG_ORIENTATION));
    return page;
}

}  // namespace tool
