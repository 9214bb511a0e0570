// What a step removed is found by comparing the small pictures before and after it: they are exact
// averages, so that a single pixel shows.
#include "report/page_pictures.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <utility>

#include "reading/reading_grey.h"

namespace tool {
namespace {

class Stopwatch {
  public:
    explicit Stopwatch(double& total) : total_(total) {}
    ~Stopwatch() {
        total_ += std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    }
    Stopwatch(const Stopwatch&) = delete;
    Stopwatch& operator=(const Stopwatch&) = delete;

  private:
    double& total_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// Evening out the light makes paper lighter and takes nothing off it.
bool takes_nothing_off(const std::string& step) {
    return step == "prepare";
}

bool turns_page(const std::string& step) {
    return step == "orientation" || step == "rotate" || step == "deskew";
}

}  // namespace

Colour mark_colour(const std::string& step) {
    static const std::map<std::string, Colour> kColours = {{"crop", {224, 122, 16}},
                                                           {"despeckle", {214, 40, 90}},
                                                           {"unline", {32, 110, 220}},
                                                           {"underlines", {12, 140, 110}},
                                                           {"textmask", {130, 70, 200}}};
    const auto found = kColours.find(step);
    return found == kColours.end() ? Colour{150, 110, 20} : found->second;
}

void PagePainter::source(const Page& page) {
    const Stopwatch watch(seconds_);
    last_ = scaled_down(page);
    first_ = last_;
}

void PagePainter::before(const std::string& step, const Page& page) {
    if (step != "deskew" || !with_fan_) return;
    const Stopwatch watch(seconds_);
    fans_ = page.kind == PageKind::kGrey ? trace_fans(bits_for_reading(page)) : trace_fans(page);
}

void PagePainter::after(const std::string& step, const Page& page) {
    const Stopwatch watch(seconds_);
    ScaledPicture now = scaled_down(page);
    if (turns_page(step)) {
        ++posture_;
    } else if (const auto marks = takes_nothing_off(step)
                                      ? std::nullopt
                                      : marks_of_removed(last_, now, mark_colour(step))) {
        marks_.push_back({step, posture_, encode(*marks)});
    }
    last_ = std::move(now);
    if (step != "orientation") return;
    first_ = last_;
    first_posture_ = posture_;
}

PagePictures PagePainter::take(const PageRecord& record) {
    const Stopwatch watch(seconds_);
    PagePictures pictures;
    pictures.before = encode(first_);
    pictures.after = encode(last_);
    for (Marks& marks : marks_) {
        pictures.removed.push_back({std::move(marks.step), std::move(marks.picture),
                                    marks.posture == first_posture_, marks.posture == posture_});
    }
    const auto used = std::find_if(fans_.begin(), fans_.end(), [&](const SkewFan& fan) {
        return record.confidence && fan.confidence == *record.confidence;
    });
    if (used != fans_.end()) pictures.fan = std::move(*used);
    return pictures;
}

}  // namespace tool
