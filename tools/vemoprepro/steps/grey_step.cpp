// A colour page goes on as grey.
#include "reading/luminance.h"
#include "steps/step.h"

namespace tool::steps {

Step grey_step() {
    return {nullptr, Effect::kChangesTone, [](PageWork& work) -> Outcome {
                if (work.page.kind != PageKind::kColour) return {false, "no colours"};
                work.page = reading::grey_of(work.page);
                return {true, "made grey"};
            }};
}

}  // namespace tool::steps
