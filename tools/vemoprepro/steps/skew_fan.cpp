// Reads the estimator's trace. In each direction a coarse search over the page at half its size is
// followed by a fine one around its best slope and one around its worst; the best of the former
// over the worst of the latter is the confidence.
#include "steps/skew_fan.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "steps/skew.h"

namespace tool::steps {
namespace {

struct Candidate {
    int slope;
    double power;
};
using Candidates = std::vector<Candidate>;

struct Search {
    Candidates coarse;
    Candidates fine;
    Candidates low;  // around the worst
};

struct Searches {
    Search rows, columns;
};

bool begins(const std::string& line, const char* start) {
    return line.rfind(start, 0) == 0;
}

// `current` when the line does not begin a search.
Candidates* section_of(const std::string& line, Searches& searches, Candidates* current) {
    if (begins(line, "rough estimation on rows")) return &searches.rows.coarse;
    if (begins(line, "fine estimation on rows")) return &searches.rows.fine;
    if (begins(line, "rough estimation on columns")) return &searches.columns.coarse;
    if (begins(line, "fine estimation on columns")) return &searches.columns.fine;
    if (!begins(line, "fine estimation of the confidence")) return current;
    return searches.columns.fine.empty() ? &searches.rows.low : &searches.columns.low;
}

Searches read_searches(std::istream& trace) {
    constexpr std::size_t kSlopeAt = 7;  // behind "yskew :"
    constexpr std::size_t kPowerAt = 6;  // behind "power:"
    Searches searches;
    Candidates* section = nullptr;
    int slope = 0;
    for (std::string line; std::getline(trace, line);) {
        section = section_of(line, searches, section);
        if (begins(line, "yskew :")) slope = std::atoi(line.c_str() + kSlopeAt);
        if (section != nullptr && begins(line, "power:")) {
            section->push_back({slope, std::strtod(line.c_str() + kPowerAt, nullptr)});
        }
    }
    return searches;
}

std::vector<FanPoint> in_multiples_of_worst(const Candidates& search, const Candidates& low,
                                            int sign) {
    std::vector<FanPoint> points;
    const auto weaker = [](const Candidate& one, const Candidate& other) {
        return one.power < other.power;
    };
    const auto worst = std::min_element(low.begin(), low.end(), weaker);
    if (worst == low.end() || !(worst->power > 0)) return points;
    for (const Candidate& one : search) {
        points.push_back(
            {Skew{sign * one.slope, Skew::kScale}.degrees(), one.power / worst->power});
    }
    std::sort(points.begin(), points.end(), [](const FanPoint& one, const FanPoint& other) {
        return one.degrees < other.degrees;
    });
    return points;
}

FanCurves curves_of(const Search& search, int sign) {
    return {in_multiples_of_worst(search.coarse, search.coarse, sign),
            in_multiples_of_worst(search.fine, search.low, sign)};
}

}  // namespace

SkewFan read_fan(std::istream& trace) {
    const Searches searches = read_searches(trace);
    SkewFan fan;
    fan.lines = curves_of(searches.rows, 1);
    fan.stems = curves_of(searches.columns, -1);
    return fan;
}

}  // namespace tool::steps
