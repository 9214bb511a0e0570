// Letters are components of some height that consist of strokes. Of all heights, those of the small
// letters of the most frequent type stand out: more than half of a text. Specks and the dots of
// screens have no strokes, titles and pictures few components; and letters stand in rows, close
// together.
#include "reading/letters.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "page/negative.h"
#include "page/paper_scale.h"
#include "reading/coarse_bits.h"
#include "reading/components.h"

namespace tool::reading {
namespace {

// The small letters of a page that does not tell, at 300 dpi, and the thickness of its strokes.
constexpr double kUsualLetter = 20, kUsualStroke = 3.5;

// The page is looked at with at most so many pixels on its longer side, unless its letters turn out
// to be too small for that.
constexpr int kLongestSide = 2000;
constexpr double kTooCoarse = 6;

constexpr int kLeastHeight = 4;
constexpr int kTallest = 400;
constexpr double kNarrowest = 0.1;  // of the height, as an l
constexpr double kWidest = 12;      // of the height, as a word whose letters touch
constexpr double kThickest = 0.38;  // of the height; a round dot has 0.39

// Heights of one kind of letters lie this far from their middle.
constexpr double kSameHeight = 1.14;
// Capitals and letters with ascenders or descenders have 1.3 to 1.7 of the height of an x.
constexpr double kTallFrom = 1.25, kTallTo = 1.75;
// Small letters are at least so many for each tall one, in German as well as in English.
constexpr double kSmallForTall = 0.4;
// Where fewer are taller, all letters are capitals or digits.
constexpr double kTallOfText = 0.1;

// The next letter of a row is no farther than this, in heights.
constexpr double kGapInRow = 0.9;
// A component this wide, in heights, is letters in a row.
constexpr double kSeveralLetters = 2.5;

// Lines of text are this far apart, in heights.
constexpr double kClosestLines = 1.4, kFarthestLines = 8;
constexpr double kLeastShareOfDistance = 0.4;

// The sides of pixels around a slanting stroke are longer than the stroke.
constexpr double kSlantedSides = 1.15;

bool may_be_letter(const Component& component) {
    const int height = component.height(), width = component.width();
    return height >= kLeastHeight && height < kTallest && width >= kNarrowest * height &&
           width <= kWidest * height && component.stroke() <= kThickest * height;
}

// How many things have which size.
class Sizes {
  public:
    void add(int size) {
        if (size >= static_cast<int>(counts_.size()))
            counts_.resize(static_cast<std::size_t>(size) + 1);
        ++counts_[static_cast<std::size_t>(size)];
    }
    int end() const { return static_cast<int>(counts_.size()); }

    int between(double from, double to) const {
        const int first = std::max(0, static_cast<int>(std::ceil(from)));
        const int last = std::min(end() - 1, static_cast<int>(to));
        int sum = 0;
        for (int i = first; i <= last; ++i) sum += counts_[static_cast<std::size_t>(i)];
        return sum;
    }
    int near(double size) const {
        return between(size / kSameHeight - 0.5, size * kSameHeight + 0.5);
    }
    int taller(double size) const { return between(size * kTallFrom, size * kTallTo); }
    int smaller(double size) const { return between(size / kTallTo, size / kTallFrom); }

    // The size in from .. to that most things have, more or less. Larger ones weigh more, since
    // crumbs and noise are many.
    int most_frequent(double from, double to) const {
        double most = 0;
        int best = 0;
        for (int size = std::max(1, static_cast<int>(std::ceil(from))); size <= to && size < end();
             ++size) {
            const double weight = 1.0 * size * near(size);
            if (weight <= most) continue;
            most = weight;
            best = size;
        }
        return best;
    }

    // The mean of those near a size.
    double mean_near(double size) const {
        double sum = 0, count = 0;
        const int last = std::min(end() - 1, static_cast<int>(size * kSameHeight + 0.5));
        for (int i = static_cast<int>(std::ceil(size / kSameHeight - 0.5)); i <= last; ++i) {
            sum += 1.0 * i * counts_[static_cast<std::size_t>(i)];
            count += counts_[static_cast<std::size_t>(i)];
        }
        return count > 0 ? sum / count : 0;
    }

  private:
    std::vector<int> counts_;
};

// The letters of a size, found by their places.
class Rows {
  public:
    Rows(const std::vector<Component>& letters, double height, int width, int page_height)
        : letters_(letters),
          height_(height),
          across_(static_cast<int>(width / height) + 1),
          heads_(static_cast<std::size_t>(across_) *
                     (static_cast<std::size_t>(page_height / height) + 1),
                 -1),
          next_(letters.size(), -1) {
        for (std::size_t i = 0; i < letters.size(); ++i) {
            int& head = heads_[cell(letters[i].x0, middle(letters[i]))];
            next_[i] = std::exchange(head, static_cast<int>(i));
        }
    }

    // Which letters have another one beside them.
    std::vector<bool> in_rows() const {
        std::vector<bool> in_row(letters_.size());
        for (std::size_t i = 0; i < letters_.size(); ++i) {
            if (letters_[i].width() > kSeveralLetters * height_) in_row[i] = true;
            const int other = right_of(letters_[i]);
            if (other >= 0) in_row[i] = in_row[static_cast<std::size_t>(other)] = true;
        }
        return in_row;
    }

  private:
    static int middle(const Component& letter) { return (letter.y0 + letter.y1) / 2; }
    std::size_t cell(double x, double y) const {
        return static_cast<std::size_t>(y / height_) * static_cast<std::size_t>(across_) +
               static_cast<std::size_t>(x / height_);
    }

    // A letter that begins behind this one, in the same row; -1 for none.
    int right_of(const Component& letter) const {
        const double reach = kGapInRow * height_;
        for (int down = -1; down <= 1; ++down) {
            const double y = middle(letter) + down * height_;
            if (y < 0) continue;
            for (double x = letter.x1 - 1; x < letter.x1 + reach + height_; x += height_) {
                if (static_cast<int>(x / height_) >= across_ || cell(x, y) >= heads_.size()) break;
                for (int i = heads_[cell(x, y)]; i >= 0; i = next_[static_cast<std::size_t>(i)]) {
                    const Component& other = letters_[static_cast<std::size_t>(i)];
                    const bool beside = std::abs(middle(other) - middle(letter)) <= height_ / 2;
                    if (beside && other.x0 >= letter.x1 - 1 && other.x0 <= letter.x1 + reach)
                        return i;
                }
            }
        }
        return -1;
    }

    const std::vector<Component>& letters_;
    double height_;
    int across_;
    std::vector<int> heads_, next_;  // of lists of letters, by cells as large as a letter
};

// From each small letter to the next one above it. The letters come from the top down.
double find_line_distance(const std::vector<Component>& letters, double height, int width) {
    std::vector<int> last(static_cast<std::size_t>(width / height) + 1, -1);
    Sizes distances;
    int all = 0;
    for (const Component& letter : letters) {
        if (letter.height() > height * kSameHeight + 0.5) continue;
        const int above = last[static_cast<std::size_t>((letter.x0 + letter.x1) / 2 / height)];
        const int distance = letter.y0 - above;
        if (above >= 0 && distance > kClosestLines * height && distance < kFarthestLines * height) {
            distances.add(distance);
            ++all;
        }
        const auto end = static_cast<std::size_t>((letter.x1 - 1) / height);
        for (auto i = static_cast<std::size_t>(letter.x0 / height); i <= end; ++i)
            last[i] = letter.y0;
    }
    const int best = distances.most_frequent(kClosestLines * height, kFarthestLines * height);
    return all >= 10 && distances.near(best) >= kLeastShareOfDistance * all
               ? distances.mean_near(best)
               : 0;
}

double median_stroke(const std::vector<Component>& letters) {
    std::vector<double> strokes;
    for (const Component& letter : letters) strokes.push_back(letter.stroke());
    const auto middle = strokes.begin() + static_cast<std::ptrdiff_t>(strokes.size() / 2);
    std::nth_element(strokes.begin(), middle, strokes.end());
    return kSlantedSides * *middle;
}

// The height that most letters of the most frequent type have: of its small ones, unless it has
// none.
int find_peak(const Sizes& heights) {
    const int peak = heights.most_frequent(kLeastHeight, kTallest);
    if (heights.smaller(peak) < kSmallForTall * heights.near(peak)) return peak;
    return heights.most_frequent(std::max<double>(kLeastHeight, peak / kTallTo), peak / kTallFrom);
}

LetterSurvey survey_of(std::vector<Component> components, int width, int page_height) {
    LetterSurvey survey;
    const auto no_letter = [](const Component& component) { return !may_be_letter(component); };
    components.erase(std::remove_if(components.begin(), components.end(), no_letter),
                     components.end());
    if (components.empty()) return survey;
    Sizes heights;
    double all = 0, in_rows = 0;  // heights put on one another
    for (const Component& component : components) {
        heights.add(component.height());
        all += component.height();
    }
    const int peak = find_peak(heights);
    survey.height = heights.mean_near(peak);
    survey.one_height = heights.taller(peak) < kTallOfText * heights.near(peak) &&
                        peak >= LetterSurvey::kCapitals * kTooCoarse;
    if (survey.one_height) survey.height /= LetterSurvey::kCapitals;
    const auto other_size = [&](const Component& component) {
        return component.height() < peak / kSameHeight - 0.5 || component.height() > kTallTo * peak;
    };
    components.erase(std::remove_if(components.begin(), components.end(), other_size),
                     components.end());
    const std::vector<bool> in_row = Rows(components, peak, width, page_height).in_rows();
    for (std::size_t i = 0; i < components.size(); ++i) {
        survey.letters += in_row[i] ? 1 : 0;
        in_rows += in_row[i] ? components[i].height() : 0;
    }
    survey.sureness = in_rows / all;
    survey.stroke = median_stroke(components);
    survey.line_distance = find_line_distance(components, peak, width);
    return survey;
}

void turn(std::vector<Component>& components) {
    for (Component& component : components) {
        std::swap(component.x0, component.y0);
        std::swap(component.x1, component.y1);
    }
    std::sort(components.begin(), components.end(),
              [](const Component& a, const Component& b) { return a.y0 < b.y0; });
}

LetterSurvey survey_components(std::vector<Component> components, const Page& bits, bool sideways) {
    if (!sideways) return survey_of(std::move(components), bits.width, bits.height);
    turn(components);
    return survey_of(std::move(components), bits.height, bits.width);
}

// Of print that is no picture letters take a third at most, what is around them more than this.
constexpr double kMostlyInk = 0.6;
// The holes of letters look like letters, too; they are fewer and not of one size.
constexpr int kFarMoreLetters = 3;

LetterSurvey survey_halved(const Page& page, int halvings) {
    CoarseBits coarse = coarse_bits(page, halvings);
    const bool sideways = page.quarter_turns % 2 == 1;
    LetterSurvey survey = survey_components(components_of(coarse.bits), coarse.bits, sideways);
    if (coarse.ink_share > kMostlyInk) {
        complement(coarse.bits);
        LetterSurvey light = survey_components(components_of(coarse.bits), coarse.bits, sideways);
        light.light_on_dark = true;
        if (light.letters >= kFarMoreLetters * survey.letters) survey = light;
    }
    survey.enlarge(1 << halvings);
    return survey;
}

}  // namespace

LetterSurvey survey_letters(const Page& page) {
    int halvings = 0;
    while (std::max(page.width, page.height) >> halvings > kLongestSide) ++halvings;
    if (std::min(page.width, page.height) >> halvings == 0) return {};
    LetterSurvey survey = survey_halved(page, halvings);
    const bool too_coarse = survey.height < kTooCoarse * (1 << halvings);
    return halvings > 0 && too_coarse ? survey_halved(page, halvings - 1) : survey;
}

double letter_height(const LetterSurvey& letters, const Page& page) {
    return letters.clear() ? letters.height : scaled_length(page, kUsualLetter);
}

double stroke_thickness(const LetterSurvey& letters, const Page& page) {
    return letters.clear() ? letters.stroke : scaled_length(page, kUsualStroke);
}

}  // namespace tool::reading
