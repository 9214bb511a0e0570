// A ruled line is straight and evenly thick, and it runs on: most of it is long pieces without a
// break, with paper above and below. A row of letters whose strokes line up has breaks between the
// letters and pieces no longer than a stroke. Text may be written across a line from end to end;
// such a line has no long pieces, but it is unbroken over a length that no word has.
//
// The line that letters of some scripts hang on is part of them, and so is one that strikes words
// out. Lines close beside one another are no ruled lines: staves of music, barcodes, hatching.
#include "reading/line_evidence.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "page/ink.h"

namespace tool::reading {
namespace {

// Shares of a line's length are in per cent.

// A line is alone in at least so much of its ink; text may cover the rest.
constexpr int kLeastAlone = 40;
// So much of a line lies in long pieces, and has paper above and below. Text that lines up has no
// long pieces, and up to 40 with paper; form lines with text on them have 45 and more of both.
constexpr int kLeastInPieces = 12;
constexpr int kLeastFree = 25;
constexpr int kSureInPieces = 45;
constexpr int kSureFree = 50;
// A long piece has at least so many dashes, 2.7 mm, and on a coarse page, where the letters of a
// word run into one another, more than a word.
constexpr int kPieceInDashes = 2;
constexpr int kLeastPiece = 32;  // pixels
// A line that is covered by text all along is unbroken over so many times the shortest length, and
// over so much of its own.
constexpr int kUnbrokenInShortest = 3;
constexpr int kLeastUnbroken = 90;
// Paper on one side of a line and ink all along the other: the edge of a picture.
constexpr int kLeastFreeOfOneSide = 25;
// Edges step by a pixel now and then. By how many pixels more they step from column to column: in a
// line up to 0.4, in letters 0.6 and more.
constexpr double kMostRough = 0.5;
// How far a line may stray from the straight one between its ends, as a share of its length: paper
// bends by up to 1 %, pieces of circles as long as they can be followed by 1.5 to 3.7 %.
constexpr double kMostBent = 0.012;
constexpr double kAlwaysStraight = 1.5;  // pixels
// Ruled lines are as level as the text; what is steeper is drawn.
constexpr double kSteepest = 0.015;
// The side of a thick letter is no line.
constexpr int kLeastLengthInThickness = 20;
// So many lines make a group, the line itself among them: staves have four, five or six. In large
// staves lines lie up to so many times as far apart, and there are no more than five.
constexpr int kGroup = 4;
constexpr int kLargeGroup = 5;
// The bars of a barcode lie no farther apart than four times the thickness of the thin ones, and
// these may come out thinner than they are.
constexpr int kPitchInThickness = 5;
constexpr int kThinned = 3;  // pixels, of the space between two bars
constexpr double kLargeStave = 1.6;
// A line that joins none and is no longer than so many times the least may be an underline or the
// bar of a fraction, unless so much of it has paper within 2 mm on both sides.
constexpr int kShortInLeast = 2;
constexpr int kLeastApart = 50;
// At most so much of what is beside a line is ink. In text up to 22 are, beside a double line 26,
// in a screen 32 and more unless it is so light that its dots do not join.
constexpr int kMostInkBeside = 30;
// The letters of a word stand no farther apart than this, in heights of small letters.
constexpr double kApartInWord = 2;
// The rows nearest to a line are not counted among those: its ragged edge reaches into them.
constexpr int kBesideLine = 3;

bool at_least(int part, int share, int whole) {
    return std::int64_t{part} * 100 >= std::int64_t{whole} * share;
}

bool is_paper(const Page& page, int x, int from, int to) {
    for (int y = std::max(0, from); y < std::min(page.height, to); ++y) {
        if (is_ink(page, x, y)) return false;
    }
    return true;
}

struct ColumnCount {
    int ink = 0;         // columns with ink
    int alone = 0;       // columns with the line alone
    int in_pieces = 0;   // of those, in long pieces
    int unbroken = 0;    // columns of the longest stretch with ink
    int free = 0;        // columns with the line alone, paper above and below
    int free_above = 0;  // the same for one side
    int free_below = 0;
};

// A ragged edge does not end a piece, unless the page is so coarse that letters lie no farther
// apart.
class PieceCounter {
  public:
    explicit PieceCounter(const LineScale& scale)
        : long_piece_(std::max(kLeastPiece, kPieceInDashes * scale.dash)),
          widest_ragged_(std::min(2, scale.gap - 1)) {}

    void add(bool alone) {
        if (alone) {
            ++piece_;
            since_ = 0;
        } else if (++since_ > widest_ragged_) {
            finish();
        }
    }
    int finish() {
        if (piece_ >= long_piece_) in_pieces_ += piece_;
        piece_ = 0;
        return in_pieces_;
    }

  private:
    int long_piece_;
    int widest_ragged_;
    int piece_ = 0;
    int since_ = 0;
    int in_pieces_ = 0;
};

ColumnCount count_columns(const Page& page, const RuledLine& line, const LineScale& scale) {
    const int clear = scale.dash / 2;
    ColumnCount count;
    PieceCounter pieces(scale);
    int stretch = 0;
    for (int x = line.x0; x < line.x1(); ++x) {
        const LineColumn& column = line.at(x);
        const bool ink = column.height() > 0, alone = line.is_alone_in(column);
        stretch = ink ? stretch + 1 : 0;
        count.unbroken = std::max(count.unbroken, stretch);
        count.ink += ink;
        count.alone += alone;
        pieces.add(alone);
        if (!alone) continue;
        const bool above = is_paper(page, x, column.y0 - clear, column.y0);
        const bool below = is_paper(page, x, column.y1, column.y1 + clear);
        count.free_above += above;
        count.free_below += below;
        count.free += above && below;
    }
    count.in_pieces = pieces.finish();
    return count;
}

bool is_smooth(const RuledLine& line) {
    const auto beyond_ragged = [](int step) { return std::max(0, std::abs(step) - 1); };
    int steps = 0, pairs = 0;
    for (std::size_t i = 1; i < line.columns.size(); ++i) {
        const LineColumn &one = line.columns[i - 1], &next = line.columns[i];
        if (!line.is_alone_in(one) || !line.is_alone_in(next)) continue;
        ++pairs;
        steps += beyond_ragged(next.y0 - one.y0) + beyond_ragged(next.y1 - one.y1);
    }
    return steps <= pairs * kMostRough;
}

// The line's middle at a column, in pixels.
double middle_of(const LineColumn& column) {
    return (column.y0 + column.y1) * 0.5;
}

// The mean distances of short pieces from the straight line through all columns: letters that touch
// the line and its ragged edge move single columns.
bool is_straight_and_level(const RuledLine& line) {
    constexpr std::size_t kPiece = 16;
    double n = 0, sum_x = 0, sum_y = 0, sum_xx = 0, sum_xy = 0;
    for (std::size_t i = 0; i < line.columns.size(); ++i) {
        if (!line.is_alone_in(line.columns[i])) continue;
        const auto x = static_cast<double>(i);
        const double y = middle_of(line.columns[i]);
        ++n;
        sum_x += x;
        sum_y += y;
        sum_xx += x * x;
        sum_xy += x * y;
    }
    const double spread = n * sum_xx - sum_x * sum_x;
    if (spread <= 0) return true;
    const double slope = (n * sum_xy - sum_x * sum_y) / spread;
    if (std::abs(slope) > kSteepest) return false;
    const double start = (sum_y - slope * sum_x) / n;
    const double most =
        std::max(kAlwaysStraight, kMostBent * static_cast<double>(line.columns.size()));
    for (std::size_t begin = 0; begin < line.columns.size(); begin += kPiece) {
        double away = 0;
        std::size_t counted = 0;
        for (std::size_t i = begin; i < std::min(begin + kPiece, line.columns.size()); ++i) {
            if (!line.is_alone_in(line.columns[i])) continue;
            away += middle_of(line.columns[i]) - start - slope * static_cast<double>(i);
            ++counted;
        }
        if (counted >= kPiece / 2 && std::abs(away) > most * static_cast<double>(counted)) {
            return false;
        }
    }
    return true;
}

// Rows of screen dots lie among dots, a line lies among paper and perhaps letters.
bool lies_among_paper(const Page& page, const RuledLine& line, int around) {
    constexpr int kApart = 5;
    const int nearest = line.thickness / 2 + kBesideLine;
    int beside = 0, seen = 0;
    for (int x = line.x0; x < line.x1(); x += kApart) {
        const int row = line.at(x).row();
        for (int away = nearest; away < nearest + around; ++away) {
            for (const int y : {row - away, row + away}) {
                if (y < 0 || y >= page.height) continue;
                ++seen;
                beside += is_ink(page, x, y);
            }
        }
    }
    return !at_least(beside, kMostInkBeside + 1, seen);
}

// How many lines, of any thickness, lie side by side on one side of a line, each within `pitch` of
// the one before; no more than `most` are looked for. side: 1 or -1.
int lines_beside(const Page& page, const RuledLine& line, int side, int pitch, int most) {
    constexpr int kSamples = 24;
    const int length = static_cast<int>(line.columns.size());
    bool on_line = true;
    int lines = 0;
    for (int away = 0, since = 0; lines < most && since <= pitch; ++away, ++since) {
        int ink = 0;
        for (int i = 0; i < kSamples; ++i) {
            const int x = line.x0 + (2 * i + 1) * length / (2 * kSamples);
            const int y = line.at(x).row() + side * away;
            ink += y >= 0 && y < page.height && is_ink(page, x, y);
        }
        const bool line_begins = !on_line && ink * 10 >= kSamples * 6;
        const bool line_ends = on_line && ink * 10 <= kSamples * 3;
        if (line_begins) ++lines;
        if (line_begins || line_ends) {
            on_line = line_begins;
            since = 0;
        }
    }
    return lines;
}

// Other lines to both sides, up to `most`.
int lines_around(const Page& page, const RuledLine& line, int pitch, int most) {
    const int above = lines_beside(page, line, -1, pitch, most);
    return above + lines_beside(page, line, 1, pitch, most - above);
}

bool is_in_group(const Page& page, const RuledLine& line, int pitch) {
    if (lines_around(page, line, pitch, kGroup - 1) == kGroup - 1) return true;
    const int large = static_cast<int>(pitch * kLargeStave);
    const int lines = 1 + lines_around(page, line, large, kLargeGroup);
    return lines >= kGroup && lines <= kLargeGroup;
}

// Whether a line across begins or ends, or passes, where this one ends. Letters are lower.
bool joins_another(const Page& page, const RuledLine& line, const LineScale& scale) {
    constexpr int kLeastInDashes = 4;
    const int height = kLeastInDashes * scale.dash;
    for (const int end : {line.x0, line.x1() - 1}) {
        const int row = line.at(end).row();
        for (int x = std::max(0, end - scale.gap); x <= std::min(page.width - 1, end + scale.gap);
             ++x) {
            int y0 = row, y1 = row;
            while (y0 > 0 && row - y0 < height && is_ink(page, x, y0 - 1)) --y0;
            while (y1 < page.height && y1 - row < height && is_ink(page, x, y1)) ++y1;
            if (y1 - y0 >= height) return true;
        }
    }
    return false;
}

// Whether a stroke goes on where the line ends: the sign of a root, or letters that are joined by
// a long stroke.
bool ends_in_stroke(const Page& page, const RuledLine& line) {
    constexpr int kBehind = 2;
    const auto has_ink = [&](int x, int row) {
        return x >= 0 && x < page.width &&
               !is_paper(page, x, row - line.thickness, row + line.thickness + 1);
    };
    for (int away = 1; away <= kBehind; ++away) {
        if (has_ink(line.x0 - away, line.at(line.x0).row())) return true;
        if (has_ink(line.x1() - 1 + away, line.at(line.x1() - 1).row())) return true;
    }
    return false;
}

bool stands_apart(const Page& page, const RuledLine& line, int clear) {
    constexpr int kSampled = 3;
    int apart = 0;
    for (int x = line.x0; x < line.x1(); x += kSampled) {
        const LineColumn& column = line.at(x);
        apart += line.is_alone_in(column) && is_paper(page, x, column.y0 - clear, column.y0) &&
                 is_paper(page, x, column.y1, column.y1 + clear);
    }
    return at_least(apart * kSampled, kLeastApart, static_cast<int>(line.columns.size()));
}

// Whether letters hang down from a line all along, or are struck out by it. Lines of a form or
// under words are touched from above, and are longer than the words.
bool letters_hang_on(const RuledLine& line, const LineScale& scale) {
    const int below = line.thickness / 2 + kBesideLine;
    int since = 0;  // columns of the line since the last letter
    for (const LineColumn& column : line.columns) {
        if (column.height() == 0) continue;
        since = column.y1 - column.row() > below ? 0 : since + 1;
        if (since > kApartInWord * scale.letter) return false;
    }
    return true;
}

bool is_long_enough(const Page& page, const RuledLine& line, const LineScale& scale) {
    const int length = static_cast<int>(line.columns.size());
    if (length < scale.shortest || length < kLeastLengthInThickness * line.thickness) return false;
    if (length >= kShortInLeast * scale.shortest_alone) return true;
    if (length >= scale.shortest_alone && !ends_in_stroke(page, line) &&
        stands_apart(page, line, scale.dash * 3 / 2)) {
        return true;
    }
    return joins_another(page, line, scale);
}

}  // namespace

Sureness judge(const Page& page, const Page& untouched, const RuledLine& line,
               const LineScale& scale) {
    if (!is_long_enough(untouched, line, scale) ||
        is_in_group(page, line,
                    std::max(scale.pitch, kPitchInThickness * line.thickness + kThinned))) {
        return Sureness::kNoLine;
    }
    const ColumnCount count = count_columns(page, line, scale);
    const int length = static_cast<int>(line.columns.size());
    const bool unbroken = count.unbroken >= kUnbrokenInShortest * scale.shortest &&
                          at_least(count.unbroken, kLeastUnbroken, length);
    const bool runs_on = at_least(count.in_pieces, kLeastInPieces, length) &&
                         at_least(count.free, kLeastFree, length);
    const bool two_sided =
        at_least(std::min(count.free_above, count.free_below), kLeastFreeOfOneSide, length);
    if (!at_least(count.alone, kLeastAlone, count.ink) || !two_sided || !(unbroken || runs_on) ||
        !is_smooth(line) || !is_straight_and_level(line) ||
        !lies_among_paper(page, line, scale.around) || letters_hang_on(line, scale)) {
        return Sureness::kNoLine;
    }
    const bool sure = unbroken || (at_least(count.in_pieces, kSureInPieces, length) &&
                                   at_least(count.free, kSureFree, length));
    return sure ? Sureness::kSure : Sureness::kLikely;
}

}  // namespace tool::reading
