// Letters are looked up by the cells where they begin, so that the time is linear in the page.
#include "reading/letter_rows.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <utility>

#include "reading/cells.h"

namespace tool::reading {
namespace {

// All of these are in heights of small letters.
// Letters, down to small ones in notes and up to titles.
constexpr double kLowest = 0.5, kTallest = 4;
// Thicker ink is no stroke of a letter.
constexpr double kThickest = 0.6;
// What is wider is several letters that touch; their strokes are so many times as long as they are
// wide together. The line of a drawing is hardly longer than it is wide.
constexpr double kWidestLetter = 2.5;
constexpr double kSidesOfSeveral = 5;
// The next letter of a row is no farther than this.
constexpr double kGapInRow = 1.2;
// Larger letters have larger gaps: of letters so many times as high.
constexpr double kTallestOfRow = 1.5;
// The tallest letter of a row is so many times as high as its lowest.
constexpr double kMixedHeights = 2.2;
// Single digits in the columns of a table are level with one another, in threes at least, and no
// farther apart. A stroke of hatching is narrower than they are.
constexpr double kGapOfSingles = 12;
constexpr double kLevel = 0.1;
constexpr double kNarrowestSingle = 0.3;  // of its height
bool may_be_letter(const Component& component, double height) {
    return component.height() >= kLowest * height && component.height() <= kTallest * height &&
           component.stroke() <= kThickest * std::min<double>(component.height(), 2 * height);
}

// Whether a component by itself is letters in a row.
bool is_word(const Component& component, double height) {
    return component.width() > kWidestLetter * height &&
           component.perimeter >= kSidesOfSeveral * component.width();
}

int middle_of(const Component& component) {
    return (component.y0 + component.y1) / 2;
}

// Finds letters beside one another.
class LetterRows {
  public:
    LetterRows(const std::vector<Component>& components, const Page& page, double height)
        : components_(components),
          height_(height),
          side_(std::max(1, static_cast<int>(height))),
          heads_(page.width, page.height, side_, -1),
          next_(components.size(), -1),
          in_row_(components.size()) {
        for (std::size_t i = 0; i < components.size(); ++i) {
            if (!may_be_letter(components[i], height)) continue;
            if (components[i].width() > kWidestLetter * height) {
                if (!is_word(components[i], height)) continue;
                in_row_[i] = true;
            }
            letters_.push_back(i);
            int& head =
                heads_.at(heads_.column(components[i].x0), heads_.row(middle_of(components[i])));
            next_[i] = std::exchange(head, static_cast<int>(i));
        }
    }

    // Whether each component stands in a row.
    std::vector<bool> find() {
        for (const std::size_t i : letters_) {
            const int other = right_of(i, kGapInRow * kTallest / kTallestOfRow, &follows);
            if (other >= 0) mark(i, other);
        }
        for (const std::size_t i : letters_) {
            if (in_row_[i] || !is_single(components_[i])) continue;
            const int second = right_of(i, kGapOfSingles, &is_level_with);
            if (second < 0) continue;
            const auto j = static_cast<std::size_t>(second);
            const int third = right_of(j, kGapOfSingles, &is_level_with);
            if (third < 0) continue;
            mark(i, second);
            mark(j, third);
        }
        return in_row_;
    }

  private:
    void mark(std::size_t i, int other) {
        in_row_[i] = in_row_[static_cast<std::size_t>(other)] = true;
    }

    // Letters of a word, capitals and points of different heights among them.
    static bool follows(const Component& letter, const Component& other, double height) {
        const int lower = std::min(letter.height(), other.height());
        const int taller = std::max(letter.height(), other.height());
        return other.x0 <= letter.x1 + kGapInRow * std::max(height, taller / kTallestOfRow) &&
               2 * std::abs(middle_of(letter) - middle_of(other)) <= taller &&
               taller <= kMixedHeights * lower;
    }

    // Single letters or digits in the columns of a table.
    static bool is_single(const Component& letter) {
        return letter.width() >= kNarrowestSingle * letter.height();
    }
    static bool is_level_with(const Component& letter, const Component& other, double height) {
        const double most = std::max(1.5, kLevel * height);
        return is_single(other) && std::abs(middle_of(letter) - middle_of(other)) <= most &&
               std::abs(letter.height() - other.height()) <= most;
    }

    // The number of a letter that begins behind this one; reach: in heights. -1 for none.
    template <class Test>
    int right_of(std::size_t i, double reach, Test fits) {
        const Component& letter = components_[i];
        const int begin = letter.x1 - side_ / 2;
        const int last = heads_.column(static_cast<int>(letter.x1 + reach * height_));
        for (int column = heads_.column(begin); column <= last; ++column) {
            for (int row = heads_.row(letter.y0); row <= heads_.row(letter.y1 - 1); ++row) {
                for (int j = heads_.at(column, row); j >= 0;
                     j = next_[static_cast<std::size_t>(j)]) {
                    const Component& other = components_[static_cast<std::size_t>(j)];
                    const bool behind = other.x0 > letter.x0 && other.x0 >= begin;
                    if (behind && fits(letter, other, height_)) return j;
                }
            }
        }
        return -1;
    }

    const std::vector<Component>& components_;
    double height_;
    int side_;
    Cells<int> heads_;       // of lists of letters, by the cells where they begin
    std::vector<int> next_;  // in the lists
    std::vector<std::size_t> letters_;
    std::vector<bool> in_row_;
};

}  // namespace

std::vector<bool> find_letters_in_rows(const std::vector<Component>& components, const Page& page,
                                       double letter_height) {
    return LetterRows(components, page, letter_height).find();
}

}  // namespace tool::reading
