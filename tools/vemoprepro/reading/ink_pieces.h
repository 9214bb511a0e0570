// The connected pieces of ink on a bitonal page.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "page/page.h"

namespace tool::reading {

struct InkPiece {
    Box box;
    int area;  // pixels of ink

    int right() const { return box.x + box.width; }  // exclusive, as is the bottom
    int bottom() const { return box.y + box.height; }
};

class InkPieces {
  public:
    // Touching by a corner connects. The page must outlive this.
    explicit InkPieces(const Page& page);

    const Page& page() const { return page_; }
    // In the order of their first pixels, row by row.
    const std::vector<InkPiece>& pieces() const { return pieces_; }
    // A page with those that `keep` says.
    Page page_with(const std::function<bool(const InkPiece&)>& keep) const;

  private:
    struct Run {
        int y, begin, end;    // columns begin .. end - 1
        std::uint32_t piece;  // while runs are joined, one of the same piece, at or before this one
    };

    void add_runs_of_row(int y);
    std::uint32_t root_of(std::uint32_t run);
    void join(std::uint32_t one, std::uint32_t other);
    void join_rows(std::size_t above, std::size_t here);
    void gather();

    const Page& page_;
    std::vector<Run> runs_;
    std::vector<InkPiece> pieces_;
};

}  // namespace tool::reading
