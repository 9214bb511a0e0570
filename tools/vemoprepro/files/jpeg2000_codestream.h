// The headers of a JPEG 2000 codestream: the size of the page, its components, and what decoding it
// takes.
#pragma once

#include <cstdint>
#include <string>

#include "files/file_view.h"

namespace tool::files {

// A big-endian number of up to 8 bytes; 0 behind the end of the file.
std::uint64_t number_at(const FileView& file, std::uint64_t at, std::size_t size);

class Jpeg2000Codestream {
  public:
    static constexpr std::uint64_t kStart = 0xFF4FFF51;  // its first four bytes

    // The file outlives this object.
    Jpeg2000Codestream(const FileView& file, std::uint64_t start, std::uint64_t end);

    // False when it is damaged: the others then say nothing of sense.
    bool whole() const { return whole_; }
    std::uint64_t width() const { return extent(8); }
    std::uint64_t height() const { return extent(12); }
    std::uint64_t components() const { return number(40, 2); }
    // What is unusual about the samples; empty for 8 bits each and a size for all components.
    std::string unusual_samples() const;
    // What decoders hold beside samples for this many components, in bytes. Keep true: whole().
    std::uint64_t overhead(std::uint64_t components) const;

  private:
    struct CodingStyle {
        std::uint64_t layers = 1;
        std::uint64_t at = 0;  // where the number of levels is
        bool with_precincts = false;
    };

    bool follow_headers();
    bool open_segment(std::uint64_t marker, std::uint64_t at);
    void take(const CodingStyle& style);
    std::uint64_t number(std::uint64_t at, std::size_t size) const {
        return number_at(file_, start_ + at, size);
    }
    std::uint64_t extent(std::uint64_t at) const;
    std::uint64_t tiles(std::uint64_t at) const;

    const FileView& file_;
    std::uint64_t start_;
    std::uint64_t end_;
    std::uint64_t layers_ = 1;
    std::uint64_t part_end_ = 0;    // of the part of a tile whose header is followed
    std::uint64_t most_bytes_ = 0;  // that any of the coding styles takes for a component
    bool whole_;
};

}  // namespace tool::files
