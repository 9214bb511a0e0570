// Skew by projection profiles.
//
// The edges of a page are summed along every slope of a fan of candidates; where the slope follows
// the text, the sums fall into sharp peaks and the sum of their squares, the power, is greatest
// (W. Postl, "Detection of linear oblique structures and skew scan in digitized documents", 1986;
// D. Bloomberg, G. Kopec, L. Dasari, "Measuring document image skew and orientation", 1995). A
// coarse fan on an image of half the size finds the neighbourhood, a fine one the slope. The
// quotient of the greatest and the smallest power says how sure that is; it is poor for pages of
// pictures, and slopes beyond the fan are not seen. A slope moves a line of cells as a whole, so
// that no image is ever turned.
#include "deskew/skew_search.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "deskew/skew_unit.h"
#include "frame/buffer.h"

namespace deskew {

namespace {

constexpr Fan kCoarseFan = {0, 92, 4};
constexpr int kFineRange = 4;
constexpr int kFineStep = 1;
static_assert(kCoarseFan.range + kFineRange == kMaxSkew);

// Whole numbers below 2^53 add exactly in doubles, in any order.
constexpr double kExactLimit = 9007199254740992.0;

// The sums that count for the power of one slope, in the numbering of simd::sum_sheared_lines():
// [begin, end), which may reach beyond the stored sums, where all are zero.
struct SumRange {
    std::int64_t begin;
    std::int64_t end;
};

// Every cell of the whole image takes part in a sum, also one of zero, so the lowest and highest
// sum follow from the size. The lowest is a partial one and left out; so is the highest of the
// columns.
template <class Cell>
SumRange counted_sums(const EdgeLines<Cell>& edges, Direction direction, int slope) {
    const std::int64_t whole_shift = simd::line_shift(edges.whole().lines - 1, slope);
    const auto last_stored = static_cast<std::int64_t>(edges.lines()) - 1;
    const std::int64_t first_stored_sum =
        std::min<std::int64_t>(simd::line_shift(last_stored, slope), 0);
    const std::int64_t lowest = std::min<std::int64_t>(whole_shift, 0);
    const std::int64_t highest = edges.whole().length - 1 + std::max<std::int64_t>(whole_shift, 0);
    const std::int64_t end = direction == Direction::kRows ? highest + 1 : highest;
    return {lowest + 1 - first_stored_sum, end - first_stored_sum};
}

// The sum of the squares in ascending order. The vector form adds in another order, which shows
// only from kExactLimit on: partial sums never fall, so a result below it was exact throughout.
double power(const double* sums, std::size_t count) {
    const double any_order = simd::sum_of_squares(sums, count);
    if (any_order < kExactLimit) return any_order;
    double in_order = 0.0;
    for (std::size_t i = 0; i < count; ++i) in_order += sums[i] * sums[i];
    return in_order;
}

// The power of one slope; `sums` is working space.
template <class Cell>
double measure(const EdgeLines<Cell>& edges, Direction direction, int slope, double* sums,
               SkewTrace* trace) {
    simd::sum_sheared_lines(edges.cells(), slope, sums);
    const auto stored =
        static_cast<std::int64_t>(simd::sheared_length(edges.lines(), edges.length(), slope));
    const SumRange counted = counted_sums(edges, direction, slope);
    const std::int64_t begin = std::max<std::int64_t>(counted.begin, 0);
    const std::int64_t end = std::max(begin, std::min(counted.end, stored));
    const double result = power(sums + begin, static_cast<std::size_t>(end - begin));
    if (trace != nullptr) {
        trace->begin_candidate(slope);
        for (std::int64_t i = counted.begin; i < counted.end; ++i)
            trace->sum(i >= 0 && i < stored ? sums[i] : 0.0);
        trace->end_candidate(result);
    }
    return result;
}

// Without any edges it is not a number, with the sign bit on every machine: what 0 / 0 gives
// differs between them.
double confidence_of(const Peak& best, const Peak& worst) {
    if (best.power == 0.0 && worst.power == 0.0) return -std::numeric_limits<double>::quiet_NaN();
    return best.power / worst.power;
}

}  // namespace

template <class Cell>
SearchResult search_skew(const EdgeLines<Cell>& edges, Direction direction, Fan fan,
                         SkewTrace* trace) {
    const int steepest = std::abs(fan.centre) + fan.range;
    frame::Buffer<double> sums(simd::sheared_length(edges.lines(), edges.length(), steepest) +
                               simd::kLineMargin<Cell>);
    if (trace != nullptr) trace->line("line projections:");
    SearchResult result{{fan.centre, 0.0}, {}};
    bool first = true;
    const auto attempt = [&](int slope) {
        const double strength = measure(edges, direction, slope, sums.data(), trace);
        if (strength > result.best.power) result.best = {slope, strength};
        if (first || strength < result.worst.power) result.worst = {slope, strength};
        first = false;
    };
    for (int offset = 0; offset <= fan.range; offset += fan.step) attempt(fan.centre + offset);
    for (int offset = fan.step; offset <= fan.range; offset += fan.step)
        attempt(fan.centre - offset);
    if (trace != nullptr) {
        trace->line();
        const std::string_view where = short_name(direction);
        trace->line("worst yskew on ", where, ": ", result.worst.skew,
                    " with power: ", result.worst.power);
        trace->line("best yskew on ", where, ": ", result.best.skew,
                    " with power: ", result.best.power);
        trace->angle(result.best.skew);
    }
    return result;
}

template <class Cell>
LineEstimate estimate_along(const EdgeLines<Cell>& edges, Cell* half_block, Direction direction,
                            SkewTrace* trace) {
    if (trace != nullptr) trace->line("rough estimation on ", long_name(direction));
    EdgeLines<Cell> half = edges.half_shape();
    half.place(half_block);
    edges.halve(half);
    const SearchResult rough = search_skew(half, direction, kCoarseFan, trace);
    if (trace != nullptr) {
        trace->line("confidence on ", short_name(direction), ": ",
                    confidence_of(rough.best, rough.worst));
        trace->line("fine estimation on ", long_name(direction));
    }
    const SearchResult fine =
        search_skew(edges, direction, {rough.best.skew, kFineRange, kFineStep}, trace);
    if (trace != nullptr) trace->line("fine estimation of the confidence");
    const SearchResult low =
        search_skew(edges, direction, {rough.worst.skew, kFineRange, kFineStep}, trace);
    const double confidence = confidence_of(fine.best, low.worst);
    if (trace != nullptr && direction == Direction::kRows)
        trace->line("confidence on rows: ", confidence);
    return {fine.best, confidence};
}

SkewEstimate choose_skew(const LineEstimate& rows, const LineEstimate& columns, SkewTrace* trace) {
    // False for a confidence that is not a number: the columns then win.
    const bool on_rows = rows.confidence > columns.confidence;
    SkewEstimate chosen;
    chosen.yskew = on_rows ? rows.best.skew : -columns.best.skew;
    chosen.confidence = on_rows ? rows.confidence : columns.confidence;
    const bool doubtful = chosen.confidence < kLeastConfidence;
    if (trace != nullptr) {
        trace->line("choose the skew associated with the best confidence");
        trace->line();
        trace->line("best yskew_rows: ", rows.best.skew, " with power: ", rows.best.power);
        trace->angle(rows.best.skew);
        trace->line("best yskew_cols: ", columns.best.skew, " with power: ", columns.best.power);
        trace->angle(columns.best.skew);
        trace->line("confidence on rows: ", rows.confidence);
        trace->line("confidence on cols: ", columns.confidence);
        trace->line("best yskew is on ", on_rows ? "rows: " : "columns: ", chosen.yskew);
        trace->angle(chosen.yskew);
        if (doubtful) trace->line("skew set to 0 because confidence < ", kLeastConfidence);
    }
    if (doubtful) chosen.yskew = 0;
    return chosen;
}

template SearchResult search_skew(const EdgeLines<std::uint8_t>&, Direction, Fan, SkewTrace*);
template SearchResult search_skew(const EdgeLines<std::uint16_t>&, Direction, Fan, SkewTrace*);
template LineEstimate estimate_along(const EdgeLines<std::uint8_t>&, std::uint8_t*, Direction,
                                     SkewTrace*);
template LineEstimate estimate_along(const EdgeLines<std::uint16_t>&, std::uint16_t*, Direction,
                                     SkewTrace*);

}  // namespace deskew
