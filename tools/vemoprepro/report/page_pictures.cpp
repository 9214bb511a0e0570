#include "report/page_pictures.h"

#include <map>
#include <utility>

#include "report/removed_pixels.h"
#include "report/thumbnail.h"
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

Size size_of(const Page& page) {
    return {page.width, page.height};
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

void PagePainter::paint_before(const Page& page) {
    first_ = scaled_down(page);
    pictures_.before = {encode(first_), encode(page), {}};
}

void PagePainter::move(const Placement& by) {
    pictures_.before.placement = pictures_.before.placement.then(by);
    for (RemovedInk& removed : pictures_.removed) {
        removed.marks.placement = removed.marks.placement.then(by);
        for (Point& spot : removed.spots) spot = by.of(spot);
    }
}

// A page that its file wants turned is painted when it is upright.
void PagePainter::source(const Page& page) {
    const CountedTime counted(seconds_);
    if (page.quarter_turns == 0) paint_before(page);
    last_ = light_page(page);
}

void PagePainter::after(const steps::Step& step, const steps::PageWork& work) {
    const CountedTime counted(seconds_);
    if (step.effect == steps::Effect::kChangesTone && work.grey_specks && !specks_marked_) {
        specks_marked_ = true;
        mark(step.name, *work.grey_specks, last_);
    }
    follow(step, work);
    Page now = light_page(work.page);
    // All that a change of tone can do to a bitonal page is to take specks off.
    const bool takes_ink =
        step.effect == steps::Effect::kTakesInk ||
        (step.effect == steps::Effect::kChangesTone && now.kind == PageKind::kBitonal);
    if (takes_ink) {
        if (const std::optional<Page> removed = removed_pixels(last_, now)) {
            mark(step.name, *removed, now);
        }
    }
    last_ = std::move(now);
}

void PagePainter::follow(const steps::Step& step, const steps::PageWork& work) {
    const Page& page = work.page;
    const int quarter_turns =
        work.quarter_turns - std::exchange(quarter_turns_, work.quarter_turns);
    if (first_.pixels.empty()) {
        paint_before(page);
    } else if (quarter_turns != 0) {
        move(turned(90 * quarter_turns, size_of(last_), size_of(page)));
    } else if (step.effect == steps::Effect::kTurnsPage) {
        const double skew = work.skew ? work.skew->degrees() : 0;
        move(turned(skew + work.turned_degrees, size_of(last_), size_of(page)));
    } else if (page.width != last_.width || page.height != last_.height) {
        move(scaled_to(size_of(last_), size_of(page)));
    }
}

void PagePainter::mark(const std::string& step, const Page& removed, const Page& page) {
    const Colour colour = mark_colour(step);
    RemovedInk& ink = pictures_.removed.emplace_back();
    ink.step = step;
    ink.marks.small = marks_of(removed, colour);
    ink.marks.full = encode_ink(removed, colour);
    ink.spots = spots_of(removed, page);
}

PagePictures PagePainter::take(const Page& page, std::optional<steps::SkewFan> fan) {
    const CountedTime counted(seconds_);
    last_ = {};
    const ScaledPicture small = scaled_down(page);
    pictures_.after = {encode(small), encode(page), {}};
    pictures_.thumbnail = thumbnail_of(first_, pictures_.before.placement, small);
    pictures_.fan = std::move(fan);
    return std::move(pictures_);
}

}  // namespace tool::report
