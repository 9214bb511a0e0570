// Finding the slope along which the edges of a page line up: the part of the skew estimators that
// does not care where the edges came from.
//
// Use: per direction make the edge image and call estimate_along() with room for its halved form;
// then choose_skew(). All of them take a trace, which may be null.
#pragma once

#include <cstddef>

#include "deskew/edge_lines.h"
#include "deskew/skew_trace.h"

namespace deskew {

// A slope with the power of the sums along it.
struct Peak {
    int skew = 0;
    double power = 0.0;
};

// The first of the candidates with the greatest power, and the first with the smallest. The best
// has a power above 0, unless it is the first candidate, with 0.
struct SearchResult {
    Peak best;
    Peak worst;
};

// Candidate slopes: centre, centre + step, ... up to centre + range, then centre - step, ... down
// to centre - range; tried in this order. Slopes are within -kMaxSkew .. kMaxSkew.
struct Fan {
    int centre;
    int range;  // at least 0
    int step;   // at least 1
};

template <class Cell>
SearchResult search_skew(const EdgeLines<Cell>& edges, Direction direction, Fan fan,
                         SkewTrace* trace);

// What one direction of a page tells.
struct LineEstimate {
    Peak best;
    double confidence = 0.0;  // best power / worst power; not a number when nothing has edges
};

// Searches the halved image coarsely, and the full one around the best and around the worst slope
// of that. half_block: room for the storage() of edges.half_shape().
template <class Cell>
LineEstimate estimate_along(const EdgeLines<Cell>& edges, Cell* half_block, Direction direction,
                            SkewTrace* trace);

constexpr double kLeastConfidence = 1.5;

struct SkewEstimate {
    int yskew = 0;            // within -kMaxSkew .. kMaxSkew
    double confidence = 1.0;  // of the direction that was chosen; may be infinite or not a number
};

// The more confident estimate, that of the columns (whose slope counts the other way round) unless
// the rows are strictly ahead. Below kLeastConfidence the skew is 0.
SkewEstimate choose_skew(const LineEstimate& rows, const LineEstimate& columns, SkewTrace* trace);

}  // namespace deskew
