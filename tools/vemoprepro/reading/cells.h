// A page divided into square cells.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace tool::reading {

// A value for each cell. What lies outside of the page belongs to the cells at its edge.
template <class Value>
class Cells {
  public:
    // The sides of the page and of a cell, in pixels.
    Cells(int width, int height, int side, Value value)
        : side_(side),
          across_(width / side + 1),
          down_(height / side + 1),
          values_(static_cast<std::size_t>(across_) * static_cast<std::size_t>(down_), value) {}

    int column(int x) const { return std::clamp(x / side_, 0, across_ - 1); }
    int row(int y) const { return std::clamp(y / side_, 0, down_ - 1); }
    int across() const { return across_; }
    int down() const { return down_; }
    Value& at(int column, int row) {
        return values_[static_cast<std::size_t>(row) * static_cast<std::size_t>(across_) +
                       static_cast<std::size_t>(column)];
    }

  private:
    int side_, across_, down_;
    std::vector<Value> values_;
};

}  // namespace tool::reading
