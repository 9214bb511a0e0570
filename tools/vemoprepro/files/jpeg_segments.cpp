#include "files/jpeg_segments.h"

namespace tool::files {
namespace {

constexpr int kPrefix = 0xFF, kStart = 0xD8, kEnd = 0xD9;

// FF 00 is a byte of the pixels, and restarts of the decoder lie among them.
bool stands_alone(int marker) {
    return marker <= 1 || (marker >= 0xD0 && marker < kStart);
}

}  // namespace

JpegSegments::JpegSegments(std::FILE* stream) : stream_(stream) {
    std::rewind(stream_);
    good_ = std::getc(stream_) == kPrefix && std::getc(stream_) == kStart;
}

int JpegSegments::next_marker() {
    for (;;) {
        int byte = getc_unlocked(stream_);
        while (byte >= 0 && byte != kPrefix) byte = getc_unlocked(stream_);
        while (byte == kPrefix) byte = getc_unlocked(stream_);
        if (byte < 0 || !stands_alone(byte)) return byte;
    }
}

int JpegSegments::next() {
    const int marker = good_ ? next_marker() : -1;
    if (marker < 0 || marker == kStart || marker == kEnd) return -1;
    const int high = std::getc(stream_), low = std::getc(stream_);
    const int length = high << 8 | low;
    if (high < 0 || low < 0 || length < 2) return -1;
    contents_.resize(static_cast<std::size_t>(length - 2));
    const bool whole =
        std::fread(contents_.data(), 1, contents_.size(), stream_) == contents_.size();
    return whole ? marker : -1;
}

}  // namespace tool::files
