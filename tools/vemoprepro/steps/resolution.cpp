#include "steps/resolution.h"

namespace tool::steps {

void settle_resolution(PageWork& work, std::optional<int> asked_for) {
    if (!asked_for && work.page.dpi.x > 0) return;
    work.resolution_source = asked_for ? ResolutionSource::kOption : ResolutionSource::kDefault;
    work.page.dpi.x = work.page.dpi.y = asked_for.value_or(kDefaultDpi);
}

}  // namespace tool::steps
