// The decoder goes on after many errors and would deliver a page that ends grey; so its errors are
// collected per thread through the extended handler, the only one that Leptonica leaves in place.
#include "files/tiff_file.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>

namespace tool::files {
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

int dots_per_inch(TIFF* tiff, std::uint32_t tag) {
    float value = 0;
    if (TIFFGetField(tiff, tag, &value) != 1 || !(value > 0 && value < 1e6F)) return 0;
    const bool metric = tag_of(tiff, TIFFTAG_RESOLUTIONUNIT) == RESUNIT_CENTIMETER;
    return static_cast<int>(value * (metric ? 2.54F : 1.0F) + 0.5F);
}

}  // namespace

TiffFile open_tiff(const std::string& path, TiffAccess access) {
    return TiffFile(TIFFOpen(path.c_str(), access == TiffAccess::kMapped ? "r" : "rm"));
}

TiffFile open_tiff_at(const std::string& path, TiffAccess access, std::size_t offset) {
    TiffFile tiff = open_tiff(path, access);
    if (tiff && TIFFSetSubDirectory(tiff.get(), offset) == 0) tiff.reset();
    return tiff;
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

void TiffErrors::note(const std::string& error) {
    if (first_error.empty()) first_error = error;
}

int tag_of(TIFF* tiff, std::uint32_t tag) {
    std::uint16_t value = 0;
    TIFFGetFieldDefaulted(tiff, tag, &value);
    return value;
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

Page frame_of(TIFF* tiff) {
    const PagePlace place = place_of(tiff);
    Page page;
    page.width = place.width;
    page.height = place.height;
    page.dpi = {dots_per_inch(tiff, TIFFTAG_XRESOLUTION), dots_per_inch(tiff, TIFFTAG_YRESOLUTION)};
    return page;
}

}  // namespace tool::files
