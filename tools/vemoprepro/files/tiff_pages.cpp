#include "files/tiff_pages.h"

#include <cstring>

#include "files/orientation.h"

namespace tool::files {
namespace {

bool is_thumbnail(TIFF* tiff) {
    std::uint32_t type = 0;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SUBFILETYPE, &type);
    return (type & (FILETYPE_REDUCEDIMAGE | FILETYPE_MASK)) != 0;
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

std::vector<PagePlace> list_tiff_pages(TIFF* tiff) {
    std::vector<PagePlace> places;
    do {
        if (!is_thumbnail(tiff)) places.push_back(place_of(tiff));
    } while (TIFFReadDirectory(tiff) != 0);
    return places;
}

std::optional<Page> read_packed_tiff(TIFF* tiff) {
    if (!is_packed(tiff)) return std::nullopt;
    Page page = frame_of(tiff);
    page.kind = tag_of(tiff, TIFFTAG_SAMPLESPERPIXEL) == 3 ? PageKind::kColour : PageKind::kGrey;
    if (static_cast<std::size_t>(TIFFScanlineSize(tiff)) != page.stride()) return std::nullopt;
    page.bytes = allocate_pixels(page.size());
    for (int y = 0; y < page.height; ++y) {
        if (TIFFReadScanline(tiff, page.row(y), static_cast<std::uint32_t>(y), 0) != 1) break;
    }
    orient(page, tag_of(tiff, TIFFTAG_ORIENTATION));
    return page;
}

}  // namespace tool::files
