// Square windows spread over the page are compared with themselves shifted: the normalised
// correlation r(shift) of a window is 1 without a shift and, over dots that stand on a lattice,
// comes near 1 again at every shift of the lattice.
//
// Print and pictures have such peaks too: strokes at a regular distance, ruled lines, the lines of
// a hatching. They are told apart by how r falls from the origin: halfway to the nearest peak a
// lattice of dots is unlike itself in every direction, while strokes and lines stay alike along
// themselves. The windows that pass speak together: r is averaged over them, which leaves the peaks
// that they share, and these have to lie in two directions.
//
// Limits: screens whose dots are farther apart than a third of the window are not seen, nor are
// those that do not repeat, such as error diffusion.
//
// To the bit, with all real numbers as double and all expressions evaluated from the left:
//
// 1. Windows are squares of S pixels a side: S is 65 from 300 dots per inch on, 33 from 150 on, 17
//    below. A page that is lower or narrower than S has no screen. The upper left corners of the
//    windows stand at every row and column that is a multiple of max(S, t), where t is sqrt(height
//    * width / 512) truncated, as long as the whole window is on the page. Windows are taken row by
//    row from the top, in a row from the left.
// 2. v is a pixel's value less the window's mean, the mean truncated to an integer. A window is
//    textured where the sum of |v| over it is at least 8 * S * S.
// 3. The reach R is S / 3, truncated. For a shift (x, y), |x| <= R and 0 <= y <= R, the core of
//    the window is its rows 0 .. S - R - 1 in the columns R .. S - R - 1. With p the sum over the
//    core of v(i, j) * v(i + x, j + y), a the sum over the core of v(i, j)^2 and b that of
//    v(i + x, j + y)^2, r(x, y) is p / sqrt(a * b), or 0 where a * b is 0. Opposite shifts have the
//    same r, and r(0, 0) is 1.
// 4. Of two opposite shifts the one counts that has y > 0, or y = 0 and x > 0. "In order" means by
//    ascending y, and by ascending x where y is the same.
// 5. A shift is a peak of height m when r >= m, x^2 + y^2 >= 2, and none of its eight neighbours
//    with |x| <= R and |y| <= R has a greater r.
// 6. A screen is read from r at the height m like this. There are at least three peaks of height m.
//    `first` is the shortest of them, the first in order among equals. `second` is the shortest,
//    the first in order among equals, of the peaks for which cross^2 > 0.09 * |first|^2 * |peak|^2,
//    cross being first.x * peak.y - first.y * peak.x: there has to be one. With `most` the largest
//    r of the shifts whose length differs by at most 0.5 from half the length of `first`, or -1
//    where that is larger, r(first) - most >= 0.5. Then there is a screen, and its count is the
//    number of peaks; otherwise there is none.
// 7. With least = 0.5 + 0.25 * parameter / 251 and `best` the largest r of the peaks of height
//    least, the heights max(least, best - 0.1), max(least, best - 0.2) and max(least, best - 0.3)
//    are tried in turn, and the first that gives a screen decides. Without a peak of height least
//    there is no screen.
// 8. A textured window passes when 7 finds a screen in its r. Without a screen is a page where the
//    number of windows that pass, times 64, does not exceed the number of textured ones. Otherwise
//    r of the page is the sum of r of the windows that pass, added up in their order, divided by
//    their number; and what 7 finds in that is the page's screen.
#include "grey/screen_analysis.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace grey {
namespace {

constexpr int kMostWindows = 512;     // of a page, evenly spread
constexpr int kLeastDeviation = 8;    // mean distance from the mean that makes a window textured
constexpr int kTexturedPerPass = 64;  // more than one in so many textured windows has to pass
constexpr double kLeastFall = 0.5;    // of r between a peak and halfway to it

// How far below the best a peak may be and still count as a repeat. Exact repeats are tried first,
// which tells the cell of an ordered dither from its parts, and then repeats that no whole number
// of pixels meets exactly.
constexpr double kAsGood[] = {0.1, 0.2, 0.3};

int window_size(int resolution) {
    return resolution >= 300 ? 65 : resolution >= 150 ? 33 : 17;
}

// r for shifts of up to `reach` pixels; r(-shift) is r(shift).
class Correlation {
  public:
    explicit Correlation(int reach)
        : reach_(reach),
          values_(static_cast<std::size_t>(2 * reach + 1) * static_cast<std::size_t>(reach + 1)) {}

    int reach() const { return reach_; }

    double& at(Shift shift) { return values_[index(shift)]; }
    double at(Shift shift) const { return values_[index(shift)]; }

    bool covers(Shift shift) const {
        return std::abs(shift.x) <= reach_ && std::abs(shift.y) <= reach_;
    }

    void add(const Correlation& other) {
        for (std::size_t i = 0; i < values_.size(); ++i) values_[i] += other.values_[i];
    }

    void divide(double count) {
        for (double& value : values_) value /= count;
    }

    // Calls visit(shift) for one of each pair of opposite shifts, the origin left out.
    template <class Visit>
    void for_each_shift(Visit&& visit) const {
        for (int y = 0; y <= reach_; ++y) {
            for (int x = y == 0 ? 1 : -reach_; x <= reach_; ++x) visit(Shift{x, y});
        }
    }

  private:
    std::size_t index(Shift shift) const {
        if (shift.y < 0) shift = {-shift.x, -shift.y};
        return static_cast<std::size_t>(shift.y * (2 * reach_ + 1) + shift.x + reach_);
    }

    int reach_;
    std::vector<double> values_;
};

// The pixels of one window around their mean, and the sums of their squares over any rectangle.
class Window {
  public:
    explicit Window(int size)
        : size_(size),
          values_(static_cast<std::size_t>(size) * static_cast<std::size_t>(size)),
          squares_(static_cast<std::size_t>(size + 1) * static_cast<std::size_t>(size + 1)) {}

    // Returns whether there is texture to analyse.
    bool load(const common::GreyView& grey, int left, int top);

    void correlate(Correlation& correlation);

  private:
    void sum_squares();
    const std::int16_t* row(int y) const { return values_.data() + y * size_; }
    std::int32_t energy(int left, int top, int width, int height) const;

    int size_;
    std::vector<std::int16_t> values_;
    std::vector<std::int32_t> squares_;  // of the rectangle from the corner; at most 65^2 * 255^2
};

bool Window::load(const common::GreyView& grey, int left, int top) {
    std::int32_t sum = 0;
    for (int y = 0; y < size_; ++y) {
        const std::uint8_t* from = grey.row(top + y) + left;
        for (int x = 0; x < size_; ++x) sum += from[x];
    }
    const int pixels = size_ * size_;
    const int mean = sum / pixels;
    std::int32_t deviation = 0;
    for (int y = 0; y < size_; ++y) {
        const std::uint8_t* from = grey.row(top + y) + left;
        std::int16_t* to = values_.data() + y * size_;
        for (int x = 0; x < size_; ++x) {
            to[x] = static_cast<std::int16_t>(from[x] - mean);
            deviation += std::abs(to[x]);
        }
    }
    return deviation >= kLeastDeviation * pixels;
}

std::int32_t Window::energy(int left, int top, int width, int height) const {
    const std::int32_t* upper = squares_.data() + top * (size_ + 1) + left;
    const std::int32_t* lower = upper + height * (size_ + 1);
    return lower[width] - lower[0] - upper[width] + upper[0];
}

void Window::sum_squares() {
    for (int y = 0; y < size_; ++y) {
        std::int32_t in_row = 0;
        const std::int32_t* above = squares_.data() + y * (size_ + 1) + 1;
        std::int32_t* here = squares_.data() + (y + 1) * (size_ + 1) + 1;
        for (int x = 0; x < size_; ++x) {
            in_row += row(y)[x] * row(y)[x];
            here[x] = above[x] + in_row;
        }
    }
}

void Window::correlate(Correlation& correlation) {
    sum_squares();
    const int reach = correlation.reach();
    const int width = size_ - 2 * reach;
    const int height = size_ - reach;
    const double own = energy(reach, 0, width, height);
    correlation.for_each_shift([&](Shift shift) {
        std::int32_t product = 0;
        for (int y = 0; y < height; ++y) {
            const std::int16_t* a = row(y) + reach;
            const std::int16_t* b = row(y + shift.y) + reach + shift.x;
            for (int x = 0; x < width; ++x) product += a[x] * b[x];
        }
        const double other = energy(reach + shift.x, shift.y, width, height);
        const double scale = std::sqrt(own * other);
        correlation.at(shift) = scale > 0 ? product / scale : 0;
    });
    correlation.at({0, 0}) = 1;
}

int squared_length(Shift shift) {
    return shift.x * shift.x + shift.y * shift.y;
}

// Not closer than about 17 degrees to each other.
bool differ_in_direction(Shift a, Shift b) {
    const double cross = a.x * b.y - a.y * b.x;
    return cross * cross > 0.09 * squared_length(a) * squared_length(b);
}

bool is_peak(const Correlation& correlation, Shift shift, double least) {
    constexpr int kNearest = 2;  // squared: the diagonal neighbour
    const double value = correlation.at(shift);
    if (value < least || squared_length(shift) < kNearest) return false;
    for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
            const Shift near{shift.x + dx, shift.y + dy};
            if (correlation.covers(near) && correlation.at(near) > value) return false;
        }
    }
    return true;
}

// The largest r on the circle halfway to `peak`.
double halfway_around(const Correlation& correlation, Shift peak) {
    const double radius = std::sqrt(squared_length(peak)) / 2;
    double most = -1;
    correlation.for_each_shift([&](Shift shift) {
        const double distance = std::sqrt(squared_length(shift));
        if (std::abs(distance - radius) <= 0.5) most = std::max(most, correlation.at(shift));
    });
    return most;
}

// What the peaks of at least this height say about the page or the window that r was taken from.
Screen read_peaks(const Correlation& correlation, double least) {
    Screen screen;
    correlation.for_each_shift([&](Shift shift) {
        if (!is_peak(correlation, shift, least)) return;
        if (screen.count++ == 0 || squared_length(shift) < squared_length(screen.first)) {
            screen.first = shift;
        }
    });
    if (!screen.found()) return {};
    bool two_directions = false;
    correlation.for_each_shift([&](Shift shift) {
        if (!differ_in_direction(screen.first, shift) || !is_peak(correlation, shift, least)) {
            return;
        }
        if (!two_directions || squared_length(shift) < squared_length(screen.second)) {
            screen.second = shift;
        }
        two_directions = true;
    });
    const double fall = correlation.at(screen.first) - halfway_around(correlation, screen.first);
    return two_directions && fall >= kLeastFall ? screen : Screen{};
}

Screen read(const Correlation& correlation, double least) {
    double best = 0;
    correlation.for_each_shift([&](Shift shift) {
        if (is_peak(correlation, shift, least)) best = std::max(best, correlation.at(shift));
    });
    if (best == 0) return {};
    for (const double as_good : kAsGood) {
        const Screen screen = read_peaks(correlation, std::max(least, best - as_good));
        if (screen.found()) return screen;
    }
    return {};
}

}  // namespace

int Screen::cell() const {
    return std::abs(first.x) + std::abs(first.y);
}

Screen find_screen(const common::GreyView& grey, int parameter, int resolution) {
    const int size = window_size(resolution);
    if (grey.height < size || grey.width < size) return {};
    const double least = 0.5 + 0.25 * parameter / 251;

    const double area = static_cast<double>(grey.height) * grey.width;
    const int step = std::max(size, static_cast<int>(std::sqrt(area / kMostWindows)));
    Window window(size);
    Correlation of_window(size / 3);
    Correlation of_page(size / 3);
    int textured = 0;
    int passed = 0;
    for (int top = 0; top <= grey.height - size; top += step) {
        for (int left = 0; left <= grey.width - size; left += step) {
            if (!window.load(grey, left, top)) continue;
            ++textured;
            window.correlate(of_window);
            if (!read(of_window, least).found()) continue;
            ++passed;
            of_page.add(of_window);
        }
    }
    if (passed * kTexturedPerPass <= textured) return {};
    of_page.divide(passed);
    return read(of_page, least);
}

}  // namespace grey
