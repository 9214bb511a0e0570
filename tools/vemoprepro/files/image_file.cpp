// Lists the pages of a file and hands each one to its decoder.
//
// The decoders are Leptonica's. Two things are kept away from it: a page that is too large is
// refused from its header, before anything is allocated for it; and damage that it passes over is
// looked for, since half a page must never look like a whole one: warnings of the JPEG decoder and
// errors of the TIFF decoder both count as damage.
#include "files/image_file.h"

#include <leptonica/allheaders.h>

#include <cstdio>
#include <new>

#include "files/bmp_file.h"
#include "files/exif_orientation.h"
#include "files/file_error.h"
#include "files/file_view.h"
#include "files/gif_file.h"
#include "files/jpeg2000_file.h"
#include "files/jpeg_file.h"
#include "files/least_kind.h"
#include "files/orientation.h"
#include "files/png_file.h"
#include "files/pnm_pages.h"
#include "files/tiff_bounds.h"
#include "files/tiff_pages.h"
#include "files/tiff_unusual.h"
#include "files/webp_file.h"

namespace tool::files {
namespace {

constexpr char kNoMemory[] = "not enough memory";

std::vector<PagePlace> one_page(const std::optional<PagePlace>& place) {
    if (!place) return {};
    return {*place};
}

// The two ways round Leptonica: a short one for the most common shapes, and one for shapes that it
// cannot read. None for all others.
std::optional<Page> read_raw_tiff(const SeekableFile& file, std::size_t directory, TIFF* tiff) {
    if (std::optional<Page> page = read_packed_tiff(tiff)) return page;
    if (TIFFIsTiled(tiff) == 0) return read_unusual_tiff(tiff);
    const TiffFile mapped = open_tiff(file, TiffAccess::kMapped, directory);
    return mapped ? read_unusual_tiff(mapped.get()) : std::nullopt;
}

}  // namespace

void prepare_decoders() {
    setMsgSeverity(L_SEVERITY_NONE);
    collect_tiff_errors();
}

ImageFile::ImageFile(const std::string& name) : name_(name), file_(name) {
    const TiffErrors errors;
    try {
        format_ = format_of(file_);
        places_ = list_pages();
    } catch (const std::bad_alloc&) {
        throw FileError(name_, kNoMemory);
    }
    if (!errors.first().empty()) places_.clear();
    if (places_.empty()) throw FileError(name_, damaged_file(errors.first()));
}

std::vector<PagePlace> ImageFile::list_pages() const {
    switch (format_) {
        case FileFormat::kTiff:
            return list_tiff_pages(file_);
        case FileFormat::kPng:
            return one_page(png_page(file_));
        case FileFormat::kJpeg:
            return one_page(jpeg_page(file_));
        case FileFormat::kJpeg2000:
            return one_page(jpeg2000_page(file_));
        case FileFormat::kWebp:
            return one_page(webp_page(file_));
        case FileFormat::kGif:
            return one_page(gif_page(file_));
        case FileFormat::kBmp:
            return one_page(bmp_page(file_));
        case FileFormat::kPnm:
            break;
    }
    return list_pnm_pages(open_stream(file_).get());
}

std::string ImageFile::page_prefix(std::size_t index) const {
    return places_.size() == 1 ? "" : "page " + std::to_string(index + 1) + ": ";
}

void ImageFile::check_size(std::size_t index) const {
    const PagePlace& place = places_[index];
    const std::string size = std::to_string(place.width) + " x " + std::to_string(place.height);
    if (place.width < 1 || place.height < 1) {
        throw FileError(name_, page_prefix(index) + "impossible size of " + size + " pixels");
    }
    if (place.width > kLongestSide || place.height > kLongestSide) {
        throw FileError(name_, page_prefix(index) + size + " pixels are too large, the limit is " +
                                   std::to_string(kLongestSide) + " a side");
    }
}

std::string ImageFile::damaged_file(const std::string& reason) const {
    return std::string("damaged or truncated ") + name_of(format_) + " file" +
           (reason.empty() ? "" : " (" + reason + ")");
}

FileError ImageFile::damage(std::size_t index, const std::string& reason) const {
    return {name_, page_prefix(index) + damaged_file(reason)};
}

std::optional<Page> ImageFile::read_raw_tiff_page(std::size_t index) const {
    const std::size_t directory = places_[index].offset;
    const TiffErrors errors;
    const TiffFile tiff = open_tiff(file_, TiffAccess::kRead, directory);
    if (!tiff) throw damage(index, errors.first());
    const std::string excess = excessive_blocks(tiff.get());
    if (!excess.empty()) throw FileError(name_, page_prefix(index) + excess);
    const std::string kind = unread_kind(tiff.get());
    if (!kind.empty()) {
        throw FileError(name_, page_prefix(index) + "TIFF with " + kind +
                                   " is not read; make a PNG file of it first");
    }
    std::optional<Page> page = read_raw_tiff(file_, directory, tiff.get());
    if (page && !errors.first().empty()) throw damage(index, errors.first());
    return page;
}

std::optional<Page> ImageFile::read_raw_page(std::size_t index) const {
    switch (format_) {
        case FileFormat::kTiff:
            return read_raw_tiff_page(index);
        case FileFormat::kPnm:
            return read_pnm(open_stream(file_).get(), places_[index]);
        case FileFormat::kBmp:
            return read_bmp(file_);
        default:
            return std::nullopt;
    }
}

Decoded ImageFile::decode(std::size_t index) const {
    switch (format_) {
        case FileFormat::kTiff:
            return decode_tiff(file_, places_[index].offset);
        case FileFormat::kPng:
            return decode_png(file_);
        case FileFormat::kJpeg:
            return decode_jpeg(file_);
        case FileFormat::kJpeg2000:
            return decode_jpeg2000(file_);
        case FileFormat::kWebp:
            return decode_webp(file_);
        case FileFormat::kGif:
            return decode_gif(file_);
        case FileFormat::kBmp:
        case FileFormat::kPnm:
            break;
    }
    return {};
}

Page ImageFile::read_page(std::size_t index) const {
    try {
        Page page = decode_page(index);
        page.dpi = plausible(page.dpi);
        return page;
    } catch (const std::bad_alloc&) {
        throw FileError(name_, page_prefix(index) + kNoMemory);
    }
}

Page ImageFile::decode_page(std::size_t index) const {
    check_size(index);
    if (std::optional<Page> page = read_raw_page(index)) {
        reduce_kind(*page);
        return std::move(*page);
    }
    Decoded decoded = decode(index);
    if (!decoded.image) throw damage(index, decoded.reason);
    const bool tagged = format_ == FileFormat::kJpeg;
    return page_of(std::move(decoded),
                   tagged ? jpeg_orientation(open_stream(file_).get()) : kUprightTag);
}

}  // namespace tool::files
