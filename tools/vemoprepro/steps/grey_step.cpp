// A colour page goes on as grey.
#include "reading/luminance.h"
#include "steps/kept_page.h"
#include "steps/step.h"

namespace tool::steps {

Step grey_step(const StepOptions& options) {
    const bool keep = options.keep_colour;
    return {nullptr, Effect::kChangesTone, [keep](PageWork& work) -> Outcome {
                if (keep) keep_page(work);
                if (work.page.kind != PageKind::kColour) return {false, "no colours"};
                work.page = reading::grey_of(work.page);
                return {true, "made grey"};
            }};
}

}  // namespace tool::steps
