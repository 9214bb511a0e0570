// The text trace of a skew search, written line by line so that it survives a crash of the host.
//
// Use: the estimators pass a pointer that is null when nothing is traced. Numbers appear as the
// stream is set, in its default format.
#pragma once

#include <ostream>
#include <string_view>

#include "deskew/angle.h"

namespace deskew {

// Rows: the slope of text lines. Columns: that of stems, against the vertical.
enum class Direction { kRows, kColumns };

constexpr std::string_view short_name(Direction direction) {
    return direction == Direction::kRows ? "rows" : "cols";
}
constexpr std::string_view long_name(Direction direction) {
    return direction == Direction::kRows ? "rows" : "columns";
}

class SkewTrace {
  public:
    explicit SkewTrace(std::ostream& out) : out_(out) {}

    template <class... Pieces>
    void line(const Pieces&... pieces) {
        (out_ << ... << pieces) << '\n';
        out_.flush();
    }

    // Followed by an empty line.
    void angle(int yskew) {
        line("corresponds to angle: ", skew_degrees(yskew), " degrees");
        line();
    }

    // A candidate of a search: its sums on one line, its power on the next.
    void begin_candidate(int yskew) { out_ << "yskew :" << yskew << " : "; }
    void sum(double value) { out_ << value << ", "; }
    void end_candidate(double power) {
        line();
        line("power:", power);
    }

  private:
    std::ostream& out_;
};

}  // namespace deskew
