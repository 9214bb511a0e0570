// Specks, and everything that is not text. What counts as a speck grows with the resolution; near
// other ink it may be a full stop or the dot of an i, which reading needs.
#include <vemoprepro/cleaning.h>

#include <algorithm>
#include <new>
#include <string>

#include "page/paper_scale.h"
#include "steps/ink_removal.h"
#include "steps/step.h"

namespace tool::steps {
namespace {

// A full stop of 6 point print has about 12 pixels at 300 dpi, the dots of a fine screen 9.
constexpr double kSpeck = 6;
// What --for ocr takes for a speck: the full stops of small print are kept, being near their word.
constexpr double kSpeckForReading = 9;
constexpr double kNearForReading = 8;
// The same on a heavily specked page, where a word's neighbourhood is full of specks, too.
constexpr double kSpeckOfMany = 20;
constexpr double kNearOfMany = 3;

// Capitals of 72 point type.
constexpr double kTallestText = 250;

void remove_specks(Page& page, int area, int keep_near) {
    if (despeckl_c_mem(page.bytes.get(), page.height, page.width, static_cast<int>(page.stride()),
                       area, keep_near) != 0) {
        throw std::bad_alloc();
    }
}

// The sizes that are used unless others are asked for, in pixels of the page.
struct UsualSpecks {
    int area, keep_near;
};

UsualSpecks usual_specks(const Page& page, bool reading, bool specked) {
    if (!reading) return {scaled_area(page, kSpeck), 0};
    if (specked) return {scaled_area(page, kSpeckOfMany), scaled_length(page, kNearOfMany)};
    return {scaled_area(page, kSpeckForReading), scaled_length(page, kNearForReading)};
}

}  // namespace

Step despeckle_step(const StepOptions& options) {
    const DespeckleOptions asked = options.despeckle;
    const bool reading = options.for_reading;
    const bool force = options.force;
    return {"despeckle", Effect::kTakesInk, [=](PageWork& work) -> Outcome {
                if (!asked.wanted) return {false, kSwitchedOff};
                require_bitonal(work.page, "despeckle");
                const UsualSpecks usual = usual_specks(work.page, reading, work.heavily_specked);
                const int area = asked.max_area.value_or(usual.area);
                const int near = asked.keep_near.value_or(usual.keep_near);
                if (area == 0) return {false, "no specks at this resolution"};
                std::string what = "specks of up to " + std::to_string(area) + " pixels";
                if (near > 0) what += " farther than " + std::to_string(near) + " from other ink";
                // A heavily specked page has more ink in its specks than in its letters.
                const Excess excess = force                             ? Excess::kAllowed
                                      : reading && work.heavily_specked ? Excess::kWarnedOf
                                                                        : Excess::kHeldBack;
                return remove_ink(work.page, excess, box_of(work.page), what,
                                  [=](Page& changed) { remove_specks(changed, area, near); });
            }};
}

Step textmask_step(const StepOptions& options) {
    const TextOptions asked = options.text;
    return {"textmask", Effect::kTakesInk, [=](PageWork& work) -> Outcome {
                require_bitonal(work.page, "textmask");
                const int height = std::min(
                    32767, asked.max_height.value_or(scaled_length(work.page, kTallestText)));
                const std::string what =
                    "all but text of up to " + std::to_string(height) + " pixels height";
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
