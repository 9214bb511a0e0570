// Finds out what a file is, lists its pages and hands each one to its decoder.
//
// The decoders are Leptonica's. Two things are kept away from it: a page that is too large is
// refused from its header, before anything is allocated for it; and damage that it passes over is
// looked for, since half a page must never look like a whole one: warnings of the JPEG decoder and
// errors of the TIFF decoder both count as damage.
#include "files/image_file.h"

#include <leptonica/allheaders.h>

#include <cstdio>
#include <memory>

#include "files/decode.h"
#include "files/exif_orientation.h"
#include "files/file_error.h"
#include "files/least_kind.h"
#include "files/orientation.h"
#include "files/pnm_pages.h"
#include "files/tiff_pages.h"
#include "files/tiff_unusual.h"

namespace tool::files {
namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

File open_file(const std::string& path, const std::string& name) {
    File file(std::fopen(path.c_str(), "rb"));
    if (!file) throw system_error_of(name);
    return file;
}

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

// None when the chain of pages is damaged.
std::vector<PagePlace> tiff_places(const std::string& path) {
    const TiffErrors errors;
    const TiffFile tiff = open_tiff(path, TiffAccess::kRead);
    if (!tiff) return {};
    std::vector<PagePlace> places = list_tiff_pages(tiff.get());
    if (!errors.first().empty()) places.clear();
    return places;
}

// The two ways round Leptonica: a short one for the most common shape of large pages, and one for
// shapes that it cannot read. None for all others.
std::optional<Page> read_raw_tiff(const std::string& path, std::size_t offset) {
    const TiffFile tiff = open_tiff_at(path, TiffAccess::kRead, offset);
    std::optional<Page> page = tiff ? read_packed_tiff(tiff.get()) : std::nullopt;
    if (page) return page;
    const TiffFile mapped = open_tiff_at(path, TiffAccess::kMapped, offset);
    return mapped ? read_unusual_tiff(mapped.get()) : std::nullopt;
}

FileFormat format_of(std::FILE* file, const std::string& name) {
    l_int32 format = IFF_UNKNOWN;
    findFileFormatStream(file, &format);
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
    std::rewind(file);
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
    list_pages();
    if (places_.empty()) {
        throw FileError(name_, std::string("damaged or truncated ") + name_of(format_) + " file");
    }
}

void ImageFile::list_pages() {
    const File file = open_file(file_.path(), name_);
    format_ = format_of(file.get(), name_);
    std::rewind(file.get());
    switch (format_) {
        case FileFormat::kTiff:
            places_ = tiff_places(file_.path());
            break;
        case FileFormat::kPng:
            places_ = png_page(file.get());
            break;
        case FileFormat::kJpeg:
            places_ = jpeg_page(file.get());
            break;
        case FileFormat::kPnm:
            places_ = list_pnm_pages(file.get());
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

std::string ImageFile::damage(std::size_t index, const std::string& reason) const {
    return page_prefix(index) + "damaged or truncated " + name_of(format_) + " file" +
           (reason.empty() ? "" : " (" + reason + ")");
}

std::optional<Page> ImageFile::read_raw_page(std::FILE* file, std::size_t index) const {
    if (format_ == FileFormat::kPnm) return read_raw_pnm(file, places_[index]);
    if (format_ != FileFormat::kTiff) return std::nullopt;
    const TiffErrors errors;
    std::optional<Page> page = read_raw_tiff(file_.path(), places_[index].offset);
    if (page && !errors.first().empty()) throw FileError(name_, damage(index, errors.first()));
    return page;
}

Page ImageFile::read_page(std::size_t index) const {
    Page page = decode_page(index);
    page.dpi = plausible(page.dpi);
    return page;
}

Page ImageFile::decode_page(std::size_t index) const {
    check_size(index);
    const File file = open_file(file_.path(), name_);
    if (std::optional<Page> page = read_raw_page(file.get(), index)) {
        reduce_kind(*page);
        return std::move(*page);
    }
    std::rewind(file.get());
    Decoded decoded;
    int orientation_tag = kUprightTag;
    switch (format_) {
        case FileFormat::kTiff:
            decoded = decode_tiff(file_.path(), places_[index].offset);
            break;
        case FileFormat::kPng:
            decoded = decode_png(file.get());
            break;
        case FileFormat::kJpeg:
            orientation_tag = jpeg_orientation(file.get());
            std::rewind(file.get());
            decoded = decode_jpeg(file.get());
            break;
        case FileFormat::kPnm:
            decoded = decode_pnm(file.get());
            break;
    }
    if (!decoded.image) throw FileError(name_, damage(index, decoded.reason));
    return page_of(std::move(decoded), orientation_tag);
}

}  // namespace tool::files
