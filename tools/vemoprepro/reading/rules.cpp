// Rules begin as seeds: long runs of ink in a row, short breaks closed. Along a seed and beyond its
// ends the rule is followed column by column; in every column the vertical run of ink that it lies
// in says whether there is the rule alone or a letter, too.
#include "reading/rules.h"

#include <algorithm>
#include <cstdlib>
#include <utility>
#include <vector>

#include "page/ink.h"
#include "page/turn.h"

namespace tool {
namespace {

// The thickness of a rule is that of its thinner columns; in the others there are letters, too.
constexpr int kThicknessPercentile = 35;
// The edge of a rule is ragged by this much.
constexpr int kRagged = 1;
// A letter stands out of a rule by at least this much, over at least so many columns.
constexpr double kStandsOut = 1.5;
constexpr int kColumnsOfLetter = 3;
constexpr int kTallestRagged = 4;
// Along the rule a stroke stands out by this much in the mean of so many columns to each side; the
// rule's own thickness is the mean of more.
constexpr double kStandsOutAlong = 1.0;
constexpr int kReachOfStroke = 4;
constexpr int kReachOfThickness = 64;

// Per cent of a rule's columns that hold nothing but the rule, at least: text may cover the rest.
constexpr int kLeastAlone = 40;
// Per cent of ink beside a rule, at most. Text has up to 22, a double rule 26, a screen 32 and more
// unless it is so light that its dots do not join.
constexpr int kMostInkBeside = 30;
// The rule's own ragged edge is not counted.
constexpr int kBesideRule = 3;

// Between the pieces of a broken rule: 5 mm.
constexpr int kAwayInDashes = 4;

constexpr int kUnit = 64;

struct Seed {
    int y, x0, x1;  // x1 exclusive

    int length() const { return x1 - x0; }
};

// The vertical run of ink in a column of a rule; empty in a gap. y1 exclusive.
struct Column {
    int y0 = 0, y1 = 0;
    int centre = 0;  // of the rule there, in 1 / kUnit pixels

    int height() const { return y1 - y0; }
};

struct Rule {
    int x0 = 0;
    int thickness = 0;
    std::vector<Column> columns;

    int x1() const { return x0 + static_cast<int>(columns.size()); }
    const Column& at(int x) const { return columns[static_cast<std::size_t>(x - x0)]; }
};

// Where a rule ran: its row at every kStep columns. On a large page full of screen dots there are
// thousands, so little is kept of each.
class Path {
  public:
    explicit Path(const Rule& rule) : x0_(rule.x0), x1_(rule.x1()) {
        for (int x = x0_; x < x1_; x += kStep) {
            rows_.push_back(static_cast<short>(rule.at(x).centre / kUnit));
        }
    }

    bool covers(const Seed& seed, int reach) const {
        const int middle = (seed.x0 + seed.x1) / 2;
        return middle >= x0_ && middle < x1_ &&
               std::abs(rows_[static_cast<std::size_t>((middle - x0_) / kStep)] - seed.y) <= reach;
    }

  private:
    static constexpr int kStep = 16;

    int x0_, x1_;
    std::vector<short> rows_;
};

std::vector<Seed> find_seeds(const Page& page, const RuleScale& scale) {
    std::vector<Seed> seeds;
    for (int y = 0; y < page.height; ++y) {
        Seed seed{y, next_pixel(page, 0, y, true), 0};
        while (seed.x0 < page.width) {
            seed.x1 = next_pixel(page, seed.x0, y, false);
            int next = next_pixel(page, seed.x1, y, true);
            while (next < page.width && next - seed.x1 < scale.gap) {
                seed.x1 = next_pixel(page, next, y, false);
                next = next_pixel(page, seed.x1, y, true);
            }
            if (seed.length() >= scale.shortest) seeds.push_back(seed);
            seed.x0 = next;
        }
    }
    std::stable_sort(seeds.begin(), seeds.end(),
                     [](const Seed& a, const Seed& b) { return a.length() > b.length(); });
    return seeds;
}

// The run of ink in column x that row y, or else the one above or below, lies in. What is longer
// than `tallest` to a side is cut.
Column column_at(const Page& page, int x, int y, int tallest) {
    Column column;
    for (const int v : {y, y - 1, y + 1}) {
        if (v < 0 || v >= page.height || !is_ink(page, x, v)) continue;
        column.y0 = v;
        column.y1 = v + 1;
        while (column.y0 > std::max(0, v - tallest) && is_ink(page, x, column.y0 - 1)) --column.y0;
        while (column.y1 < std::min(page.height, v + tallest) && is_ink(page, x, column.y1)) {
            ++column.y1;
        }
        break;
    }
    return column;
}

// Whether a look at some columns of a seed finds none that is thin enough: most seeds lie in dark
// areas, where looking at every column takes long.
bool in_dark_area(const Page& page, const Seed& seed, const RuleScale& scale) {
    constexpr int kApart = 7;
    for (int x = seed.x0; x < seed.x1; x += kApart) {
        const int height = column_at(page, x, seed.y, scale.thickest + 1).height();
        if (height > 0 && height <= scale.thickest) return false;
    }
    return true;
}

int thickness_along(const Page& page, const Seed& seed, const RuleScale& scale) {
    std::vector<int> heights;
    for (int x = seed.x0; x < seed.x1; ++x) {
        if (const int height = column_at(page, x, seed.y, scale.thickest + 1).height();
            height > 0) {
            heights.push_back(height);
        }
    }
    const auto wanted =
        heights.begin() + static_cast<std::ptrdiff_t>(heights.size()) * kThicknessPercentile / 100;
    std::nth_element(heights.begin(), wanted, heights.end());
    return *wanted;
}

// Follows a rule over a page to one side.
class Walk {
  public:
    Walk(const Page& page, const RuleScale& scale, int thickness, int y)
        : page_(page), scale_(scale), thickness_(thickness), y_(y * kUnit + kUnit / 2) {}

    // From x on, towards `step`, at least up to `end`.
    std::vector<Column> go(int x, int end, int step) {
        std::vector<Column> columns;
        std::size_t kept = 0;  // columns up to the last that belongs to the rule
        int alone = 0, away = 0;
        for (; x >= 0 && x < page_.width; x += step) {
            Column column = column_at(page_, x, y_ / kUnit, scale_.thickest + 1);
            column.centre = y_;
            columns.push_back(column);
            const bool on_seed = step > 0 ? x < end : x > end;
            const bool rule = column.height() > 0 && column.height() <= thickness_ + kRagged;
            alone = rule ? alone + 1 : 0;
            away = rule ? away : away + 1;
            if (rule) follow(column);
            if (on_seed || alone >= scale_.dash) {
                kept = columns.size();
                away = 0;
            } else if (away > kAwayInDashes * scale_.dash) {
                break;
            }
        }
        columns.resize(kept);
        return columns;
    }

  private:
    // Slowly, since a letter's stroke may look like the rule.
    void follow(const Column& column) {
        const int centre = (column.y0 + column.y1) * kUnit / 2;
        y_ += (centre - y_) / 16;
    }

    const Page& page_;
    const RuleScale& scale_;
    int thickness_;
    int y_;
};

Rule follow(const Page& page, const Seed& seed, const RuleScale& scale, int thickness) {
    const int middle = (seed.x0 + seed.x1) / 2;
    std::vector<Column> left = Walk(page, scale, thickness, seed.y).go(middle - 1, seed.x0 - 1, -1);
    const std::vector<Column> right = Walk(page, scale, thickness, seed.y).go(middle, seed.x1, 1);
    Rule rule;
    rule.x0 = middle - static_cast<int>(left.size());
    rule.thickness = thickness;
    std::reverse(left.begin(), left.end());
    rule.columns = std::move(left);
    rule.columns.insert(rule.columns.end(), right.begin(), right.end());
    return rule;
}

// The mean of a function of the columns around each column, over those that count.
template <class Value>
std::vector<double> mean_around(const Rule& rule, int reach, Value value) {
    const auto size = static_cast<int>(rule.columns.size());
    std::vector<double> means(rule.columns.size());
    int sum = 0, counted = 0;
    const auto add = [&](int i, int sign) {
        const int height =
            i >= 0 && i < size ? value(rule.columns[static_cast<std::size_t>(i)]) : 0;
        sum += sign * height;
        counted += height > 0 ? sign : 0;
    };
    for (int i = 0; i < reach; ++i) add(i, 1);
    for (int i = 0; i < size; ++i) {
        add(i + reach, 1);
        add(i - reach - 1, -1);
        means[static_cast<std::size_t>(i)] = counted > 0 ? 1.0 * sum / counted : 0;
    }
    return means;
}

// Whether a column has a letter's ink beside the rule's own. A stroke of the rule's own direction,
// such as the arch of an n or a stem along an upright rule, stands out by less than the rule's edge
// is ragged, but does so over several columns.
std::vector<bool> find_letters(const Rule& rule) {
    const int most = rule.thickness + kRagged;
    const std::vector<double> own = mean_around(rule, kReachOfThickness, [=](const Column& column) {
        return column.height() <= most ? column.height() : 0;
    });
    const std::vector<double> here = mean_around(rule, kReachOfStroke, [=](const Column& column) {
        return std::min(column.height(), most + 1);
    });
    std::vector<bool> letter(rule.columns.size());
    for (std::size_t i = 0; i < letter.size(); ++i) {
        letter[i] = rule.columns[i].height() >= own[i] + kStandsOut ||
                    (here[i] >= own[i] + kStandsOutAlong && rule.columns[i].height() > own[i]);
    }
    return letter;
}

// What stands out of a rule over a few columns only is the rule's own edge.
void drop_ragged_edges(const Rule& rule, std::vector<bool>& letter) {
    for (std::size_t i = 0; i < letter.size();) {
        std::size_t end = i;
        int tallest = 0;
        for (; end < letter.size() && letter[end]; ++end) {
            tallest = std::max(tallest, rule.columns[end].height() - rule.thickness);
        }
        if (end - i < kColumnsOfLetter && tallest <= kTallestRagged) {
            std::fill(letter.begin() + static_cast<std::ptrdiff_t>(i),
                      letter.begin() + static_cast<std::ptrdiff_t>(end), false);
        }
        i = end + 1;
    }
}

void erase_rule(Page& page, const Rule& rule) {
    std::vector<bool> letter = find_letters(rule);
    drop_ragged_edges(rule, letter);
    for (std::size_t i = 0; i < letter.size(); ++i) {
        if (!letter[i]) {
            for (int y = rule.columns[i].y0; y < rule.columns[i].y1; ++y) {
                erase_ink(page, rule.x0 + static_cast<int>(i), y);
            }
        }
    }
}

// Rows of screen dots lie among dots, a rule among paper and perhaps letters; and what is part of
// a picture is seldom as thick all along.
bool is_rule(const Page& page, const Rule& rule, int around) {
    int alone = 0, ink = 0, beside = 0, seen = 0;
    const int clear = rule.thickness / 2 + kBesideRule;
    for (int x = rule.x0; x < rule.x1(); ++x) {
        const Column& column = rule.at(x);
        ink += column.height() > 0;
        alone += column.height() > 0 && column.height() <= rule.thickness + kRagged;
        for (int away = clear; away < clear + around; ++away) {
            for (const int y : {column.centre / kUnit - away, column.centre / kUnit + away}) {
                if (y < 0 || y >= page.height) continue;
                ++seen;
                beside += is_ink(page, x, y);
            }
        }
    }
    return alone * 100 >= ink * kLeastAlone && beside * 100 <= seen * kMostInkBeside;
}

bool known(const std::vector<Path>& paths, const Seed& seed, int reach) {
    return std::any_of(paths.begin(), paths.end(),
                       [&](const Path& path) { return path.covers(seed, reach); });
}

}  // namespace

void remove_rules(Page& page, const RuleScale& scale) {
    const Page before = copy_of(page);
    std::vector<Path> followed;  // rules and what turned out to be none
    for (const Seed& seed : find_seeds(before, scale)) {
        if (known(followed, seed, scale.thickest / 2 + 1) || in_dark_area(before, seed, scale)) {
            continue;
        }
        const int thickness = thickness_along(before, seed, scale);
        if (thickness > scale.thickest) continue;
        const Rule rule = follow(before, seed, scale, thickness);
        followed.emplace_back(rule);
        if (is_rule(before, rule, scale.around)) erase_rule(page, rule);
    }
}

void remove_upright_rules(Page& page, const RuleScale& scale) {
    turn(page, 1);
    remove_rules(page, scale);
    turn(page, 3);
}

}  // namespace tool
