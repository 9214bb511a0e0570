// Specks, and everything that is not text. What counts as a speck grows with the resolution; near
// letters it may be a full stop or the dot of an i, and in a row of equal ones a leader.
#include <vemoprepro/cleaning.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <string>

#include "page/counted.h"
#include "page/paper_scale.h"
#include "reading/letters.h"
#include "reading/specks.h"
#include "steps/ink_removal.h"
#include "steps/step.h"

namespace tool::steps {
namespace {

// A full stop of 6 point print has about 12 pixels at 300 dpi, the dots of a fine screen 9.
constexpr double kSpeck = 6;
constexpr double kSpeckForReading = 9;
// On a heavily specked page, where a word's neighbourhood is full of specks, too, --for ocr takes
// larger ones and asks for nothing but a distance from larger ink.
constexpr double kSpeckOfMany = 20;
constexpr double kNearOfMany = 3;

// In heights of small letters: ink of this size is letters; how far from them dots are; and how far
// from one another the dots of leaders are.
constexpr double kLetter = 0.5;
constexpr double kNear = 0.75, kNearForReading = 0.4;
constexpr double kApartInRow = 2.5;
// The area of the smallest dot, and of a full stop at least, in squares of strokes. Of what is so
// large near letters, little is dirt.
constexpr double kLeastDot = 0.2, kFullDot = 0.6;

// Taking more than this share of the ink by the usual sizes is something to look at.
constexpr double kMuch = 0.02;

// Capitals of 72 point type.
constexpr double kTallestText = 250;

void remove_specks(Page& page, int area, int keep_near) {
    if (despeckl_c_mem(page.bytes.get(), page.height, page.width, static_cast<int>(page.stride()),
                       area, keep_near) != 0) {
        throw std::bad_alloc();
    }
}

reading::SpeckRule usual_rule(const PageWork& work, bool reading) {
    const Page& page = work.page;
    const double letter = reading::letter_height(work.letters, page);
    const double stroke = reading::stroke_thickness(work.letters, page);
    const auto letters = [=](double heights) {
        return std::max(1, static_cast<int>(std::lround(heights * letter)));
    };
    const auto area = [=](double squares) {
        return static_cast<int>(std::lround(squares * stroke * stroke));
    };
    return {scaled_area(page, reading ? kSpeckForReading : kSpeck),
            std::max(3, letters(kLetter)),
            letters(reading ? kNearForReading : kNear),
            area(kLeastDot),
            letters(kNear),
            area(kFullDot),
            letters(kApartInRow)};
}

std::string specks_words(int area) {
    return "specks of up to " + counted(area, "pixel");
}

Outcome remove_usual(PageWork& work, const StepOptions& options) {
    const reading::SpeckRule rule = usual_rule(work, options.for_reading);
    if (rule.max_area == 0) return {false, "no specks at this resolution"};
    Outcome outcome =
        remove_ink(work.page, options.force ? Excess::kAllowed : Excess::kHeldBack,
                   box_of(work.page), specks_words(rule.max_area) + " away from letters",
                   [&](Page& changed) { reading::remove_dirt(changed, rule); });
    outcome.warning |= outcome.ink_removed > kMuch;
    return outcome;
}

// By the area and the distance from larger ink.
Outcome remove_small(Page& page, Excess excess, int area, int near) {
    if (area == 0) return {false, "no specks at this resolution"};
    std::string what = specks_words(area);
    if (near > 0) what += " farther than " + std::to_string(near) + " from other ink";
    return remove_ink(page, excess, box_of(page), what,
                      [=](Page& changed) { remove_specks(changed, area, near); });
}

Outcome despeckle(PageWork& work, const StepOptions& options) {
    const DespeckleOptions& asked = options.despeckle;
    if (!asked.wanted) return {false, kSwitchedOff};
    Page& page = work.page;
    require_bitonal(page, "despeckle");
    const bool specked = options.for_reading && work.heavily_specked;
    if (!asked.max_area && !asked.keep_near && !specked) return remove_usual(work, options);
    // A heavily specked page has more ink in its specks than in its letters.
    const Excess excess = options.force ? Excess::kAllowed
                          : specked     ? Excess::kWarnedOf
                                        : Excess::kHeldBack;
    const int area = scaled_area(page, specked               ? kSpeckOfMany
                                       : options.for_reading ? kSpeckForReading
                                                             : kSpeck);
    return remove_small(page, excess, asked.max_area.value_or(area),
                        asked.keep_near.value_or(specked ? scaled_length(page, kNearOfMany) : 0));
}

}  // namespace

Step despeckle_step(const StepOptions& options) {
    return {"despeckle", Effect::kTakesInk,
            [options](PageWork& work) { return despeckle(work, options); }};
}

Step textmask_step(const StepOptions& options) {
    const TextOptions asked = options.text;
    return {"textmask", Effect::kTakesInk, [=](PageWork& work) -> Outcome {
                require_bitonal(work.page, "textmask");
                const int height = std::min(
                    32767, asked.max_height.value_or(scaled_length(work.page, kTallestText)));
                const std::string what =
                    "all but text of up to " + counted(height, "pixel") + " height";
                return remove_ink(
                    work.page, Excess::kAllowed, box_of(work.page), what, [=](Page& changed) {
                        if (pre_tva(changed.bytes.get(), changed.height, changed.width,
                                    static_cast<int>(changed.stride()), static_cast<short>(height),
                                    static_cast<short>(asked.min_density)) != 0) {
                            throw std::bad_alloc();
                        }
                    });
            }};
}

}  // namespace tool::steps
