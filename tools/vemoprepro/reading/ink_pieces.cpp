// Runs of ink are joined with the runs of the row above that they touch, in a forest whose roots
// are the pieces' first runs.
#include "reading/ink_pieces.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "page/ink.h"

namespace tool::reading {
InkPieces::InkPieces(const Page& page) : page_(page) {
    std::size_t above = 0;
    for (int y = 0; y < page.height; ++y) {
        const std::size_t here = runs_.size();
        add_runs_of_row(y);
        join_rows(above, here);
        above = here;
    }
    gather();
}

void InkPieces::add_runs_of_row(int y) {
    for (int x = next_pixel(page_, 0, y, true); x < page_.width;) {
        const int end = next_pixel(page_, x, y, false);
        runs_.push_back({y, x, end, static_cast<std::uint32_t>(runs_.size())});
        x = next_pixel(page_, end, y, true);
    }
}

std::uint32_t InkPieces::root_of(std::uint32_t run) {
    while (runs_[run].piece != run) {
        runs_[run].piece = runs_[runs_[run].piece].piece;
        run = runs_[run].piece;
    }
    return run;
}

void InkPieces::join(std::uint32_t one, std::uint32_t other) {
    one = root_of(one);
    other = root_of(other);
    runs_[std::max(one, other)].piece = std::min(one, other);
}

// The runs of a row begin at `here`, those of the row above at `above`.
void InkPieces::join_rows(std::size_t above, std::size_t here) {
    for (std::size_t i = here; i < runs_.size(); ++i) {
        while (above < here && runs_[above].end < runs_[i].begin) ++above;
        for (std::size_t k = above; k < here && runs_[k].begin <= runs_[i].end; ++k) {
            join(static_cast<std::uint32_t>(k), static_cast<std::uint32_t>(i));
        }
    }
}

// From here on a run holds the number of its piece. A piece's first run comes before its others.
void InkPieces::gather() {
    for (std::uint32_t i = 0; i < runs_.size(); ++i) {
        Run& run = runs_[i];
        if (run.piece == i) {
            run.piece = static_cast<std::uint32_t>(pieces_.size());
            pieces_.push_back({{run.begin, run.y, 0, 0}, 0});
        } else {
            run.piece = runs_[run.piece].piece;
        }
        InkPiece& piece = pieces_[run.piece];
        const int right = std::max(piece.right(), run.end);
        piece.box.x = std::min(piece.box.x, run.begin);
        piece.box.width = right - piece.box.x;
        piece.box.height = run.y + 1 - piece.box.y;
        piece.area += run.end - run.begin;
    }
}

Page InkPieces::page_with(const std::function<bool(const InkPiece&)>& keep) const {
    std::vector<bool> kept;
    kept.reserve(pieces_.size());
    for (const InkPiece& piece : pieces_) kept.push_back(keep(piece));
    Page result = make_page_like(page_, PageKind::kBitonal);
    std::fill_n(result.bytes.get(), result.size(), static_cast<unsigned char>(0));
    for (const Run& run : runs_) {
        if (kept[run.piece]) set_inks(result.row(run.y), run.begin, run.end);
    }
    return result;
}

}  // namespace tool::reading
