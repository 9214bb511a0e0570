// The decoder goes on after many errors and would deliver a page that ends grey; so its errors are
// collected per thread through the extended handler, the only one that Leptonica leaves in place.
#include "files/tiff_file.h"

#include <sys/mman.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include "files/file_view.h"
#include "files/tiff_chain.h"

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

FileView& view_of(thandle_t handle) {
    return *static_cast<FileView*>(handle);
}

tmsize_t read_view(thandle_t handle, void* bytes, tmsize_t size) {
    return view_of(handle).read(bytes, static_cast<std::size_t>(size));
}

tmsize_t write_view(thandle_t, void*, tmsize_t) {
    return -1;
}

toff_t seek_view(thandle_t handle, toff_t place, int from) {
    return static_cast<toff_t>(view_of(handle).seek(static_cast<ssize_t>(place), from));
}

int close_view(thandle_t handle) {
    delete &view_of(handle);
    return 0;
}

toff_t size_of_view(thandle_t handle) {
    return view_of(handle).size();
}

int map_view(thandle_t handle, void** bytes, toff_t* size) {
    *size = view_of(handle).size();
    *bytes = view_of(handle).map();
    return *bytes != nullptr ? 1 : 0;
}

void unmap_view(thandle_t, void* bytes, toff_t size) {
    munmap(bytes, size);
}

}  // namespace

TiffFile open_tiff(const SeekableFile& file, TiffAccess access, std::size_t directory) {
    auto view = std::make_unique<FileView>(file, first_directory(file, directory));
    const char* mode = access == TiffAccess::kMapped ? "r" : "rm";
    TiffFile tiff(TIFFClientOpen("TIFF", mode, view.get(), read_view, write_view, seek_view,
                                 close_view, size_of_view, map_view, unmap_view));
    if (tiff) static_cast<void>(view.release());
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
