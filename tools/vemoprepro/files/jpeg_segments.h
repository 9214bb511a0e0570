// The segments of a JPEG file: FF, a marker byte, and for most a big-endian length, which counts
// itself, and contents. The pixels lie between them, behind the segments that start a scan.
#pragma once

#include <cstdint>
#include <cstdio>
#include <vector>

namespace tool::files {

class JpegSegments {
  public:
    static constexpr int kStartOfScan = 0xDA;

    // The stream outlives this object, and is read from its start.
    explicit JpegSegments(std::FILE* stream);

    // The next marker that has contents, or -1 at the end of the picture, of the file, or of sense.
    int next();
    const std::vector<std::uint8_t>& contents() const { return contents_; }

  private:
    int next_marker();

    std::FILE* stream_;
    bool good_;
    std::vector<std::uint8_t> contents_;
};

}  // namespace tool::files
