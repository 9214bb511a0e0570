// Finds out what a file is, lists its pages and hands each one to its decoder.
//
// The decoders are Leptonica's. Two things are kept away from it: a page that is too large is
// refused from its header, before anything is allocated for it; and damage that it passes over is
// looked for, since half a page must never look like a whole one: warnings of the JPEG decoder and
// errors of the TIFF decoder both count as damage.
#include "files/image_file.h"

#include <leptonica/allheaders.h>

#include <cstdio>
#include <new>

#include "files/decode.h"
#include "files/exif_orientation.h"
#include "files/file_error.h"
#include "files/file_view.h"
#include "files/least_kind.h"
#include "files/orientation.h"
#include "files/pnm_pages.h"
#include "files/tiff_bounds.h"
#include "files/tiff_chain.h"
#include "files/tiff_pages.h"
#include "files/tiff_unusual.h"

namespace tool::files {
namespace {

constexpr char kNoMemory[] = "not enough memory";

// The page of a file that holds just one.
std::vector<PagePlace> one_page(l_ok failed, int width, int height) {
    if (failed != 0) return {};
    return {PagePlace{0, width, height}};
}

std::vector<PagePlace> jpeg_page(std::FILE* file) {
    l_int32 width = 0, height = 0;
    const l_ok failed = freadHeaderJpeg(file, &width, &height, nullptr, nullptr, nullptr);
    return one_page(failed, width, height);
}

std::vector<PagePlace> png_page(std::FILE* file) {
    l_int32 width = 0, height = 0;
    const l_ok failed = freadHeaderPng(file, &width, &height, nullptr, nullptr, nullptr);
    return one_page(failed, width, height);
}

// The two ways round Leptonica: a short one for the most common shapes, and one for shapes that it
// cannot read. None for all others.
std::optional<Page> read_raw_tiff(const SeekableFile& file, std::size_t directory, TIFF* tiff) {
    if (std::optional<Page> page = read_packed_tiff(tiff)) return page;
    if (TIFFIsTiled(tiff) == 0) return read_unusual_tiff(tiff);
    const TiffFile mapped = open_tiff(file, TiffAccess::kMapped, directory);
    return mapped ? read_unusual_tiff(mapped.get()) : std::nullopt;
}

FileFormat format_of(const SeekableFile& file, const std::string& name) {
    l_int32 format = IFF_UNKNOWN;
    findFileFormatStream(open_stream(file).get(), &format);
    switch (format) {
        case IFF_PNG:
            return FileFormat::kPng;
        case IFF_JFIF_JPEG:
            return FileFormat::kJpeg;
        case IFF_PNM:
            return FileFormat::kPnm;
        default:
            break;
    }
    if (starts_as_tiff(file)) return FileFormat::kTiff;
    throw FileError(name, "not a TIFF, PNG, JPEG or PNM file");
}

}  // namespace

const char* name_of(FileFormat format) {
    switch (format) {
        case FileFormat::kTiff:
            return "TIFF";
        case FileFormat::kPng:
            return "PNG";
        case FileFormat::kJpeg:
            return "JPEG";
        case FileFormat::kPnm:
            break;
    }
    return "PNM";
}

void prepare_decoders() {
    setMsgSeverity(L_SEVERITY_NONE);
    collect_tiff_errors();
}

ImageFile::ImageFile(const std::string& name) : name_(name), file_(name) {
    const TiffErrors errors;
    try {
        list_pages();
    } catch (const std::bad_alloc&) {
        throw FileError(name_, kNoMemory);
    }
    if (!errors.first().empty()) places_.clear();
    if (places_.empty()) throw FileError(name_, damaged_file(errors.first()));
}

void ImageFile::list_pages() {
    format_ = format_of(file_, name_);
    const Stream stream = open_stream(file_);
    switch (format_) {
        case FileFormat::kTiff:
            places_ = list_tiff_pages(file_);
            break;
        case FileFormat::kPng:
            places_ = png_page(stream.get());
            break;
        case FileFormat::kJpeg:
            places_ = jpeg_page(stream.get());
            break;
        case FileFormat::kPnm:
            places_ = list_pnm_pages(stream.get());
            break;
    }
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
    std::optional<Page> page = read_raw_tiff(file_, directory, tiff.get());
    if (page && !errors.first().empty()) throw damage(index, errors.first());
    return page;
}

std::optional<Page> ImageFile::read_raw_page(std::size_t index) const {
    if (format_ == FileFormat::kTiff) return read_raw_tiff_page(index);
    if (format_ == FileFormat::kPnm) return read_raw_pnm(open_stream(file_).get(), places_[index]);
    return std::nullopt;
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
    const Stream stream = open_stream(file_);
    Decoded decoded;
    int orientation_tag = kUprightTag;
    switch (format_) {
        case FileFormat::kTiff:
            decoded = decode_tiff(file_, places_[index].offset);
            break;
        case FileFormat::kPng:
            decoded = decode_png(stream.get());
            break;
        case FileFormat::kJpeg:
            orientation_tag = jpeg_orientation(stream.get());
            std::rewind(stream.get());
            decoded = decode_jpeg(stream.get());
            break;
        case FileFormat::kPnm:
            decoded = decode_pnm(stream.get());
            break;
    }
    if (!decoded.image) throw damage(index, decoded.reason);
    return page_of(std::move(decoded), orientation_tag);
}

}  // namespace tool::files
