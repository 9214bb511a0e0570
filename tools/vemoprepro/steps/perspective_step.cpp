// Pages that were photographed at an angle.
#include <string>

#include "page/perspective.h"
#include "reading/photographed_page.h"
#include "steps/step.h"

namespace tool::steps {
namespace {

std::string text_of(const Corners& corners) {
    std::string text = "corners";
    for (const Corner& corner : corners) {
        text += ' ';
        text += std::to_string(corner.x) + ',' + std::to_string(corner.y);
    }
    return text;
}

Outcome make_upright(PageWork& work, const Corners& corners, const std::string& source) {
    rectify(work.page, corners);
    work.corners = corners;
    return {true, text_of(corners) + source};
}

}  // namespace

Step perspective_step(const StepOptions& options) {
    const std::optional<Corners> given = options.corners;
    return {"perspective", Effect::kScalesPage, [given](PageWork& work) -> Outcome {
                if (given) return make_upright(work, *given, " (as given)");
                const reading::FoundPage found = reading::find_page(work.page);
                if (!found.corners) return {false, found.doubt, std::nullopt, true};
                return make_upright(work, *found.corners, "");
            }};
}

}  // namespace tool::steps
