// A stroke that crosses a line stands far out of it. A stroke that runs along the line, such as the
// arch of an n or a stem beside an upright line, stands out by less than the line's edge is ragged,
// but does so over several columns: its mean height over a few columns is compared with the line's
// mean height over many. What stands out by little and over a few columns only is the line's own
// ragged edge.
#include "reading/line_letters.h"

#include <algorithm>
#include <cstddef>

namespace tool::reading {
namespace {

// By how many rows a stroke stands out of the line that it crosses.
constexpr double kStandsOut = 1.5;
// By how many rows, on average over a few columns, a stroke stands out that runs along the line.
constexpr double kStandsOutAlong = 1.0;
// How many columns to each side the means are taken over.
constexpr int kReachOfStroke = 4;
constexpr int kReachOfThickness = 64;
// The ragged edge is at most this wide and this high; what exceeds either is a letter.
constexpr int kWidestRagged = 2;
constexpr int kTallestRagged = 4;

// For each column the mean of a value over the columns within `reach`; values of 0 do not count.
template <class Value>
std::vector<double> mean_around(const RuledLine& line, int reach, Value value_of) {
    const auto size = static_cast<int>(line.columns.size());
    std::vector<double> means(line.columns.size());
    int sum = 0, counted = 0;
    const auto add = [&](int i, int sign) {
        const int value =
            i >= 0 && i < size ? value_of(line.columns[static_cast<std::size_t>(i)]) : 0;
        sum += sign * value;
        counted += value > 0 ? sign : 0;
    };
    for (int i = 0; i < reach; ++i) add(i, 1);
    for (int i = 0; i < size; ++i) {
        add(i + reach, 1);
        add(i - reach - 1, -1);
        means[static_cast<std::size_t>(i)] = counted > 0 ? 1.0 * sum / counted : 0;
    }
    return means;
}

std::vector<bool> find_what_stands_out(const RuledLine& line) {
    const int thickest = line.thickest();
    const auto own = mean_around(line, kReachOfThickness, [=](const LineColumn& column) {
        return column.height() <= thickest ? column.height() : 0;
    });
    const auto here = mean_around(line, kReachOfStroke, [=](const LineColumn& column) {
        return std::min(column.height(), thickest + 1);
    });
    std::vector<bool> stands_out(line.columns.size());
    for (std::size_t i = 0; i < stands_out.size(); ++i) {
        const int height = line.columns[i].height();
        const bool across = height >= own[i] + kStandsOut;
        const bool along = here[i] >= own[i] + kStandsOutAlong && height > own[i];
        stands_out[i] = across || along;
    }
    return stands_out;
}

void drop_ragged_edges(const RuledLine& line, std::vector<bool>& letter) {
    for (std::size_t i = 0; i < letter.size();) {
        std::size_t end = i;
        int tallest = 0;
        for (; end < letter.size() && letter[end]; ++end) {
            tallest = std::max(tallest, line.columns[end].height() - line.thickness);
        }
        if (end - i <= kWidestRagged && tallest <= kTallestRagged) {
            std::fill(letter.begin() + static_cast<std::ptrdiff_t>(i),
                      letter.begin() + static_cast<std::ptrdiff_t>(end), false);
        }
        i = end + 1;
    }
}

// Ink that is shorter than a piece of the line and lies apart from it, in a gap, is a stroke that
// the line would have passed through.
void add_strokes_in_gaps(const RuledLine& line, const LineScale& scale, std::vector<bool>& letter) {
    const std::size_t size = letter.size();
    const auto gap = static_cast<std::size_t>(scale.gap);
    const auto dash = static_cast<std::size_t>(scale.dash);
    std::size_t paper = 0;  // columns without ink before this one
    for (std::size_t i = 0; i < size;) {
        const bool ink = line.columns[i].height() > 0;
        std::size_t end = i;
        while (end < size && (line.columns[end].height() > 0) == ink) ++end;
        if (ink && end - i < dash && paper >= gap) {
            std::size_t after = end;
            while (after < size && after - end < gap && line.columns[after].height() == 0) ++after;
            if (after - end == gap) {
                std::fill(letter.begin() + static_cast<std::ptrdiff_t>(i),
                          letter.begin() + static_cast<std::ptrdiff_t>(end), true);
            }
        }
        paper = ink ? 0 : end - i;
        i = end;
    }
}

}  // namespace

std::vector<bool> find_letters(const RuledLine& line, const LineScale& scale) {
    std::vector<bool> letter = find_what_stands_out(line);
    drop_ragged_edges(line, letter);
    add_strokes_in_gaps(line, scale, letter);
    return letter;
}

}  // namespace tool::reading
