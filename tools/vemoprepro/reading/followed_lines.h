// Where lines of a page have been followed.
//
// Use: add() each line that was followed; covers() tells whether a place lies on one of them.
//
// The rows are kept for every few columns only, a bit each: on a large page full of dots thousands
// of lines are followed.
#pragma once

#include <cstddef>
#include <vector>

#include "reading/ruled_line.h"

namespace tool::reading {

class FollowedLines {
  public:
    FollowedLines(int width, int height);

    void add(const RuledLine& line);

    // 0 <= x < width, 0 <= y < height.
    bool covers(int x, int y) const { return rows_[index_of(x, y)]; }

  private:
    std::size_t index_of(int x, int y) const;

    int height_;
    std::vector<bool> rows_;
};

}  // namespace tool::reading
