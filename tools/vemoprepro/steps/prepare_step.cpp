// Grey pages made ready for --for ocr.
#include "reading/even_light.h"
#include "reading/impulses.h"
#include "reading/resample.h"
#include "reading/sharpen.h"
#include "steps/ink_removal.h"
#include "steps/number_text.h"
#include "steps/step.h"

namespace tool::steps {
namespace {

// Print has less than two impulses in a hundred pixels, unless it is coarse: then its strokes are
// as thin as specks, and specks cannot be told from them.
constexpr double kHeavilySpecked = 0.02;
// Recognition wants letters of some twenty pixels height.
constexpr int kCoarse = 200;
constexpr int kLongestSideToDouble = 8192;

bool is_coarse(const Page& page) {
    return page.scale.x > 0 && page.scale.x < kCoarse && page.width <= kLongestSideToDouble &&
           page.height <= kLongestSideToDouble;
}

Outcome prepare(PageWork& work) {
    Page& page = work.page;
    if (page.kind == PageKind::kBitonal) return {false, "bitonal already"};
    std::string why = "light evened out";
    const double impulses = reading::impulse_share(page);
    work.heavily_specked = impulses > kHeavilySpecked && !is_coarse(page);
    if (work.heavily_specked) {
        reading::remove_impulses(page);
        reading::remove_impulses(page);
        why += ", specks over " + percent(impulses) + " of the page removed";
    }
    reading::even_light(page);
    if (is_coarse(page)) {
        reading::sharpen(page);
        page = reading::doubled(page);
        work.letters.enlarge(2);
        why += ", sharpened, resolution doubled";
    }
    return {true, why};
}

}  // namespace

Step prepare_step(const StepOptions& options) {
    const bool wanted = options.prepare;
    return {"prepare", Effect::kChangesTone, [wanted](PageWork& work) -> Outcome {
                if (!wanted) return {false, kSwitchedOff};
                return prepare(work);
            }};
}

}  // namespace tool::steps
