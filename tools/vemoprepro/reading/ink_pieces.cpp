#include "reading/ink_pieces.h"

#include <cstddef>

#include "page/ink.h"

namespace tool::reading {

Page InkPieces::page_with(const std::function<bool(const Component&)>& keep) const {
    std::vector<bool> kept;
    kept.reserve(pieces_.size());
    for (const Component& piece : pieces_) kept.push_back(keep(piece));
    Page result = blank_page_like(page_);
    for (const auto& [run, component] : runs_) {
        if (kept[static_cast<std::size_t>(component)])
            set_inks(result.row(run.y), run.begin, run.end);
    }
    return result;
}

}  // namespace tool::reading
