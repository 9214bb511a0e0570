// White letters on black are ground to every step that looks for ink: thresholds would fall within
// it, and the holes of letters would be specks. So such a page is worked on as its negative, and
// comes out as it came.
#include "page/negative.h"
#include "steps/step.h"

namespace tool::steps {
namespace {

// A threshold that somebody gave is one of the page as it is.
bool by_threshold(const PageWork& work, const StepOptions& options) {
    return work.given.threshold || options.binarization == Binarization::kFixed ||
           options.binarization == Binarization::kOtsu;
}

}  // namespace

Step negative_step(const StepOptions& options) {
    return {"negative", Effect::kChangesTone, [options](PageWork& work) -> Outcome {
                const bool greys = work.page.kind != PageKind::kBitonal;
                if (!work.letters.light_on_dark || (greys && by_threshold(work, options))) {
                    return {false, ""};
                }
                complement(work.page);
                work.negative = true;
                return {true, "light letters on a dark page, worked on as a negative"};
            }};
}

Step positive_step() {
    return {nullptr, Effect::kChangesTone, [](PageWork& work) -> Outcome {
                if (!work.negative) return {false, ""};
                complement(work.page);
                work.negative = false;
                return {true, ""};
            }};
}

}  // namespace tool::steps
