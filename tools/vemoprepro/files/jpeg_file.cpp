#include "files/jpeg_file.h"

#include <string>

#include "files/file_error.h"
#include "files/file_view.h"
#include "files/jpeg_segments.h"

namespace tool::files {
namespace {

// Each scan of a progressive picture passes over all of it. Programs write about ten.
constexpr int kMostScans = 100;

bool has_too_many_scans(std::FILE* file) {
    JpegSegments segments(file);
    int scans = 0;
    for (int marker; scans <= kMostScans && (marker = segments.next()) >= 0;) {
        scans += marker == JpegSegments::kStartOfScan ? 1 : 0;
    }
    return scans > kMostScans;
}

}  // namespace

std::optional<PagePlace> jpeg_page(const SeekableFile& file) {
    PagePlace page;
    const l_ok failed = freadHeaderJpeg(open_stream(file).get(), &page.width, &page.height, nullptr,
                                        nullptr, nullptr);
    return failed == 0 ? std::optional(page) : std::nullopt;
}

Decoded decode_jpeg(const SeekableFile& file) {
    const Stream stream = open_stream(file);
    if (has_too_many_scans(stream.get())) {
        throw FileError(file.name(), "a JPEG file of more than " + std::to_string(kMostScans) +
                                         " scans; save it anew as a baseline one");
    }
    std::rewind(stream.get());
    l_int32 warnings = 0;
    Decoded decoded{
        PixOwner(pixReadStreamJpeg(stream.get(), 0, 1, &warnings, L_JPEG_CONTINUE_WITH_BAD_DATA))};
    if (warnings > 0) decoded.image.reset();
    return decoded;
}

}  // namespace tool::files
