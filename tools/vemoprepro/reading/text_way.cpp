// In text of Latin letters more of them rise above the small ones than sink below the line
// (R. S. Caprari, "Algorithm for text page up/down orientation determination", Pattern Recognition
// Letters 21, 2000). Here letters are counted: each piece of ink is compared with the pieces beside
// it, whose tops and bottoms tell the band of the small letters, so that lines may be bent and of
// any size. A thousand letters spread over the page are enough.
//
// Four rise for one that sinks, but in Cyrillic four may sink for one that rises. There less than a
// tenth of the letters stands out at all, of Latin ones more than an eighth; and full stops stand
// on the line, which contradicts.
#include "reading/text_way.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <vector>

namespace tool::reading {
namespace {

constexpr int kLeastEvidence = 25;    // letters that stand out
constexpr int kLeastShare = 8;        // of which one stands out, at least
constexpr double kClearRatio = 2.6;   // of rising ones to sinking ones
constexpr double kContradiction = 4;  // in standard deviations of the dots' difference

constexpr int kLowestLetter = 5;  // pixels
// In lower ones a pixel more or less decides what stands out.
constexpr int kLowestBand = 7;
constexpr int kMostLooks = 1200;

bool outweighs(int many, int few) {
    return many >= kLeastEvidence && many >= kClearRatio * few;
}

bool contradicts(int against, int with) {
    return against - with > kContradiction * std::sqrt(1.0 * against + with);
}

// Coordinates of the page as it is read, with level lines. The bottom is exclusive.
struct Piece {
    int x, top, width, bottom;

    int height() const { return bottom - top; }
    int right() const { return x + width; }
};

bool may_be_letter(const Piece& piece) {
    return piece.height() >= kLowestLetter && piece.width <= 3 * piece.height() &&
           piece.height() <= 6 * piece.width;
}

int median_of(std::vector<int>& values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

std::vector<Piece> level_pieces(const InkPieces& ink, Reading direction, double slope) {
    const Page& page = ink.page();
    const bool turned = direction == Reading::kAlongColumns;
    std::vector<Piece> pieces;
    pieces.reserve(ink.pieces().size());
    for (const Component& piece : ink.pieces()) {
        Piece level = turned ? Piece{page.height - piece.y1, piece.x0, piece.height(), piece.x1}
                             : Piece{piece.x0, piece.y0, piece.width(), piece.y1};
        const auto drift = static_cast<int>(std::lround((level.x + level.width / 2) * slope / 512));
        level.top += drift;
        level.bottom += drift;
        pieces.push_back(level);
    }
    return pieces;
}

// What may be letters, found by their place.
class Neighbourhood {
  public:
    explicit Neighbourhood(const std::vector<Piece>& letters) {
        if (letters.empty()) return;
        int lowest = letters.front().bottom;
        first_ = letters.front().top;
        for (const Piece& letter : letters) {
            first_ = std::min(first_, letter.top);
            lowest = std::max(lowest, letter.bottom);
        }
        strips_.resize(strip_of(lowest) + 1);
        for (const Piece& letter : letters) {
            for (std::size_t i = strip_of(letter.top); i <= strip_of(letter.bottom - 1); ++i) {
                strips_[i].push_back(letter);
            }
        }
        for (std::vector<Piece>& strip : strips_) {
            std::sort(strip.begin(), strip.end(),
                      [](const Piece& one, const Piece& other) { return one.x < other.x; });
        }
    }

    // The letters in the strip through the middle of `piece` that begin not far from it.
    template <class Visit>
    void visit_near(const Piece& piece, int reach, Visit visit) const {
        const int middle = (piece.top + piece.bottom) / 2;
        const std::size_t index = strip_of(std::max(middle, first_));
        if (index >= strips_.size()) return;
        const std::vector<Piece>& strip = strips_[index];
        auto at = std::lower_bound(strip.begin(), strip.end(), piece.x - reach,
                                   [](const Piece& one, int x) { return one.x < x; });
        for (; at != strip.end() && at->x <= piece.right() + reach; ++at) visit(*at);
    }

  private:
    static constexpr int kStrip = 16;

    std::size_t strip_of(int y) const { return static_cast<std::size_t>((y - first_) / kStrip); }

    int first_ = 0;
    std::vector<std::vector<Piece>> strips_;
};

class WayCount {
  public:
    explicit WayCount(const std::vector<Piece>& letters) : near_(letters) {
        std::vector<int> heights;
        heights.reserve(letters.size());
        for (const Piece& letter : letters) heights.push_back(letter.height());
        if (!heights.empty()) usual_ = median_of(heights);
    }

    void look_at(const Piece& piece) {
        if (may_be_letter(piece) && piece.height() < 3 * usual_) {
            look_at_letter(piece);
        } else if (piece.height() >= 2 && 2 * piece.height() <= usual_ + 1 &&
                   piece.width <= piece.height() + 2) {
            look_at_dot(piece);
        }
    }

    TextWay way;

  private:
    static constexpr int kReach = 6;  // usual heights
    static constexpr std::size_t kLeastNeighbours = 6;
    static constexpr std::size_t kLeastAroundDot = 4;

    // The band of the small letters, from those that were gathered.
    bool find_band(std::size_t least) {
        if (tops_.size() < least) return false;
        top_ = median_of(tops_);
        bottom_ = median_of(bottoms_);
        return bottom_ - top_ >= kLowestBand;
    }

    void gather(const Piece& letter) {
        tops_.push_back(letter.top);
        bottoms_.push_back(letter.bottom);
    }

    void look_at_letter(const Piece& piece) {
        tops_.clear();
        bottoms_.clear();
        near_.visit_near(piece, kReach * usual_, [&](const Piece& other) {
            const int overlap =
                std::min(piece.bottom, other.bottom) - std::max(piece.top, other.top);
            const int lower = std::min(piece.height(), other.height());
            const int higher = std::max(piece.height(), other.height());
            if (2 * overlap >= lower && higher <= 3 * lower) gather(other);
        });
        if (!find_band(kLeastNeighbours)) return;
        ++way.letters;
        const double band = bottom_ - top_;
        const double rise = (top_ - piece.top) / band, sink = (piece.bottom - bottom_) / band;
        const double level = std::max(0.12, 1.01 / band), out = std::max(0.2, 1.5 / band);
        way.rising += rise >= out && std::abs(sink) <= level;
        way.sinking += sink >= out && std::abs(rise) <= level;
    }

    void look_at_dot(const Piece& piece) {
        tops_.clear();
        bottoms_.clear();
        near_.visit_near(piece, kReach * usual_, [&](const Piece& other) {
            const bool beside = other.top <= piece.bottom && other.bottom >= piece.top;
            if (beside && other.height() < 2 * usual_) gather(other);
        });
        if (!find_band(kLeastAroundDot)) return;
        const int slack = std::max(1, (bottom_ - top_) / 6);
        const bool stands = std::abs(piece.bottom - bottom_) <= slack;
        const bool hangs = std::abs(piece.top - top_) <= slack;
        way.standing += stands && !hangs;
        way.hanging += hangs && !stands;
    }

    const Neighbourhood near_;
    int usual_ = 0;
    std::vector<int> tops_, bottoms_;
    int top_ = 0, bottom_ = 0;
};

}  // namespace

bool TextWay::upright() const {
    return outweighs(rising, sinking) && rising * kLeastShare >= letters &&
           !contradicts(hanging, standing);
}

bool TextWay::upside_down() const {
    return outweighs(sinking, rising) && sinking * kLeastShare >= letters &&
           !contradicts(standing, hanging);
}

TextWay way_of_text(const InkPieces& ink, Reading direction, double slope) {
    const std::vector<Piece> pieces = level_pieces(ink, direction, slope);
    std::vector<Piece> letters;
    std::copy_if(pieces.begin(), pieces.end(), std::back_inserter(letters), may_be_letter);
    WayCount count(letters);
    const std::size_t step = letters.size() / kMostLooks + 1;
    for (std::size_t i = 0; i < pieces.size(); i += step) count.look_at(pieces[i]);
    return count.way;
}

}  // namespace tool::reading
