// What a step removed is found by comparing the small pictures before and after it: they are exact
// averages, so that a single pixel shows.
#include "report/page_pictures.h"

#include <map>
#include <utility>

#include "steps/stopwatch.h"

namespace tool::report {
namespace {

// Adds the time of its life to a total.
class CountedTime {
  public:
    explicit CountedTime(double& total) : total_(total) {}
    ~CountedTime() { total_ += watch_.seconds(); }
    CountedTime(const CountedTime&) = delete;
    CountedTime& operator=(const CountedTime&) = delete;

  private:
    double& total_;
    const steps::Stopwatch watch_;
};

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
    const CountedTime counted(seconds_);
    last_ = scaled_down(page);
    first_ = last_;
}

void PagePainter::after(const steps::Step& step, const steps::PageWork& work) {
    const CountedTime counted(seconds_);
    ScaledPicture now = scaled_down(work.page);
    switch (step.effect) {
        case steps::Effect::kBringsUpright:
            first_ = now;
            first_posture_ = ++posture_;
            break;
        case steps::Effect::kTurnsPage:
            ++posture_;
            break;
        case steps::Effect::kTakesInk:
            if (const auto marks = marks_of_removed(last_, now, mark_colour(step.name))) {
                marks_.push_back({step.name, posture_, encode(*marks)});
            }
            break;
        case steps::Effect::kChangesTone:
            break;
    }
    last_ = std::move(now);
}

PagePictures PagePainter::take(std::optional<steps::SkewFan> fan) {
    const CountedTime counted(seconds_);
    PagePictures pictures;
    pictures.before = encode(first_);
    pictures.after = encode(last_);
    for (Marks& marks : marks_) {
        pictures.removed.push_back({std::move(marks.step), std::move(marks.picture),
                                    marks.posture == first_posture_, marks.posture == posture_});
    }
    pictures.fan = std::move(fan);
    return pictures;
}

}  // namespace tool::report
