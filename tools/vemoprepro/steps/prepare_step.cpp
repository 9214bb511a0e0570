// Grey pages made ready for --for ocr.
#include "reading/reading_grey.h"
#include "reading/resample.h"
#include "steps/grey_page.h"
#include "steps/ink_removal.h"
#include "steps/steps.h"

namespace tool {
namespace {

// Print has less than two impulses in a hundred pixels, unless it is coarse: then its strokes are
// as thin as specks, and specks cannot be told from them.
constexpr double kHeavilySpecked = 0.02;
// Recognition wants letters of some twenty pixels height.
constexpr int kCoarse = 200;
constexpr int kLongestSideToDouble = 8192;

bool is_coarse(const Page& page) {
    return page.dpi.x > 0 && page.dpi.x < kCoarse && page.width <= kLongestSideToDouble &&
           page.height <= kLongestSideToDouble;
}

Outcome prepare(Page& page, PageRecord& record) {
    if (page.kind == PageKind::kBitonal) return {false, "bitonal already"};
    if (page.kind == PageKind::kColour) page = grey_of(page);
    std::string why = "light evened out";
    const double impulses = impulse_share(page);
    record.specked = impulses > kHeavilySpecked && !is_coarse(page);
    if (record.specked) {
        remove_impulses(page);
        remove_impulses(page);
        why += ", specks over " + percent(impulses) + " of the page removed";
    }
    even_light(page);
    if (is_coarse(page)) {
        sharpen(page);
        page = doubled(page);
        why += ", sharpened, resolution doubled";
    }
    return {true, why};
}

}  // namespace

Step prepare_step(const Options& options) {
    const bool wanted = options.prepare;
    return {"prepare", [wanted](Page& page, const PageFindings&, PageRecord& record) -> Outcome {
                if (!wanted) return {false, "switched off"};
                return prepare(page, record);
            }};
}

}  // namespace tool
