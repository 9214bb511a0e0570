#include "files/tiff_pages.h"

#include "files/bit_rows.h"
#include "files/orientation.h"
#include "files/tiff_chain.h"

namespace tool::files {
namespace {

bool is_thumbnail(TIFF* tiff) {
    std::uint32_t type = 0;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SUBFILETYPE, &type);
    return (type & (FILETYPE_REDUCEDIMAGE | FILETYPE_MASK)) != 0;
}

bool has_upright_bits(TIFF* tiff) {
    std::uint16_t colours = 0;
    return tag_of(tiff, TIFFTAG_BITSPERSAMPLE) == 1 && tag_of(tiff, TIFFTAG_SAMPLESPERPIXEL) == 1 &&
           TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &colours) == 1 &&
           (colours == PHOTOMETRIC_MINISWHITE || colours == PHOTOMETRIC_MINISBLACK) &&
           tag_of(tiff, TIFFTAG_ORIENTATION) == kUprightTag;
}

// True when scan lines are packed grey or red, green, blue bytes. JPEG data becomes so on request.
bool has_packed_bytes(TIFF* tiff) {
    int colours = tag_of(tiff, TIFFTAG_PHOTOMETRIC);
    const int samples = tag_of(tiff, TIFFTAG_SAMPLESPERPIXEL);
    const int compression = tag_of(tiff, TIFFTAG_COMPRESSION);
    if (compression == COMPRESSION_OJPEG || tag_of(tiff, TIFFTAG_BITSPERSAMPLE) != 8 ||
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

// False when that fails.
bool read_rows(TIFF* tiff, Page& page) {
    for (int y = 0; y < page.height; ++y) {
        if (TIFFReadScanline(tiff, page.row(y), static_cast<std::uint32_t>(y), 0) != 1) {
            return false;
        }
    }
    return true;
}

// From the file's bits to words with 1 = black and nothing behind the width.
void settle_bits(Page& page, bool inverted) {
    for (int y = 0; y < page.height; ++y) {
        unsigned char* row = page.row(y);
        for (std::size_t i = 0; inverted && i < page.stride(); ++i) {
            row[i] = static_cast<unsigned char>(~row[i]);
        }
        clear_padding(row, page.width);
    }
}

}  // namespace

std::vector<PagePlace> list_tiff_pages(const SeekableFile& file) {
    std::vector<PagePlace> pages, thumbnails;
    for (const std::size_t directory : list_directories(file)) {
        const TiffFile tiff = open_tiff(file, TiffAccess::kRead, directory);
        if (!tiff) return {};
        (is_thumbnail(tiff.get()) ? thumbnails : pages).push_back(place_of(tiff.get()));
    }
    return pages.empty() ? thumbnails : pages;
}

std::optional<Page> read_packed_tiff(TIFF* tiff) {
    if (TIFFIsTiled(tiff) != 0) return std::nullopt;
    const bool bits = has_upright_bits(tiff);
    if (!bits && !has_packed_bytes(tiff)) return std::nullopt;
    Page page = frame_of(tiff);
    page.kind = bits                                         ? PageKind::kBitonal
                : tag_of(tiff, TIFFTAG_SAMPLESPERPIXEL) == 3 ? PageKind::kColour
                                                             : PageKind::kGrey;
    const std::size_t row_size = bits ? bytes_of_bits(page.width) : page.stride();
    if (static_cast<std::size_t>(TIFFScanlineSize(tiff)) != row_size) return std::nullopt;
    page.bytes = allocate_pixels(page.size());
    if (!read_rows(tiff, page)) TiffErrors::note("it cannot be decoded");
    if (bits) settle_bits(page, tag_of(tiff, TIFFTAG_PHOTOMETRIC) == PHOTOMETRIC_MINISBLACK);
    orient(page, tag_of(tiff, TIFFTAG_ORIENTATION));
    return page;
}

}  // namespace tool::files
