/* Reads the estimator's trace. A coarse search over half the page's size is followed by a fine one
 * around its best slope; both have that slope, which brings their powers to one scale. */
#include "skew_fan.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "skew_measure.h"

namespace tool {
namespace {

constexpr const char* kTraceName = "estimate_skew_of_binary_image.log";

/* A folder of its own that goes away with all that is in it. */
class TraceFolder {
  public:
    TraceFolder() {
        const char* place = std::getenv("TMPDIR");
        path_ = std::string(place && *place ? place : "/tmp") + "/vemoprepro.XXXXXX";
        if (!mkdtemp(path_.data())) path_.clear();
    }
    ~TraceFolder() {
        std::error_code ignored;
        if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
    }
    TraceFolder(const TraceFolder&) = delete;
    TraceFolder& operator=(const TraceFolder&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

  private:
    std::string path_;
};

struct Candidate {
    int slope;
    double power;
};
using Candidates = std::vector<Candidate>;

struct Search {
    Candidates coarse;
    Candidates fine;
};

struct Searches {
    Search rows, columns;
};

bool begins(const std::string& line, const char* start) {
    return line.rfind(start, 0) == 0;
}

Candidates* section_of(const std::string& line, Searches& searches, Candidates* current) {
    if (begins(line, "rough estimation on rows")) return &searches.rows.coarse;
    if (begins(line, "fine estimation on rows")) return &searches.rows.fine;
    if (begins(line, "rough estimation on columns")) return &searches.columns.coarse;
    if (begins(line, "fine estimation on columns")) return &searches.columns.fine;
    return begins(line, "fine estimation of the confidence") ? nullptr : current;
}

Searches read_searches(std::istream& trace) {
    constexpr std::size_t kSlopeAt = 7; /* behind "yskew :" */
    constexpr std::size_t kPowerAt = 6; /* behind "power:" */
    Searches searches;
    Candidates* section = nullptr;
    int slope = 0;
    for (std::string line; std::getline(trace, line);) {
        section = section_of(line, searches, section);
        if (begins(line, "yskew :")) slope = std::atoi(line.c_str() + kSlopeAt);
        if (section && begins(line, "power:"))
            section->push_back({slope, std::strtod(line.c_str() + kPowerAt, nullptr)});
    }
    return searches;
}

bool weaker(const Candidate& one, const Candidate& other) {
    return one.power < other.power;
}

std::vector<FanPoint> points_of(const Search& search, int sign) {
    std::vector<FanPoint> points;
    if (search.coarse.empty()) return points;
    const auto worst = std::min_element(search.coarse.begin(), search.coarse.end(), weaker)->power;
    const auto best = *std::max_element(search.coarse.begin(), search.coarse.end(), weaker);
    if (!(worst > 0)) return points;
    const auto add = [&](int slope, double score) {
        points.push_back({Skew{sign * slope, Skew::kScale}.degrees(), score});
    };
    for (const Candidate& one : search.coarse) add(one.slope, one.power / worst);
    for (const Candidate& centre : search.fine) {
        if (centre.slope != best.slope || !(centre.power > 0)) continue;
        for (const Candidate& one : search.fine)
            if (one.slope != best.slope)
                add(one.slope, one.power / centre.power * best.power / worst);
        break;
    }
    std::sort(points.begin(), points.end(), [](const FanPoint& one, const FanPoint& other) {
        return one.degrees < other.degrees;
    });
    return points;
}

}  // namespace

SkewFan read_fan(std::istream& trace) {
    const Searches searches = read_searches(trace);
    SkewFan fan;
    fan.lines = points_of(searches.rows, 1);
    fan.stems = points_of(searches.columns, -1);
    return fan;
}

std::vector<SkewFan> trace_fans(const Page& page) {
    std::vector<SkewFan> fans;
    if (page.kind != PageKind::bitonal || page.width < kShortestSkewSide ||
        page.height < kShortestSkewSide)
        return fans;
    const TraceFolder folder;
    if (folder.path().empty()) return fans;
    const auto add = [&](const SkewWindow& window) {
        const MeasuredSkew measured = measure_skew(page, window, folder.path().c_str());
        std::ifstream trace(folder.path() + "/" + kTraceName);
        SkewFan fan = read_fan(trace);
        fan.confidence = measured.confidence;
        if (!fan.lines.empty() || !fan.stems.empty()) fans.push_back(std::move(fan));
    };
    add(whole_window(page));
    if (const auto inner = inner_window(page)) add(*inner);
    return fans;
}

}  // namespace tool
