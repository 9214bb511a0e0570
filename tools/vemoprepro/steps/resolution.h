// The resolution that a page is worked on with, and the one that is written into its file.
#pragma once

#include "steps/page_work.h"
#include "steps/step_options.h"

namespace tool::steps {

// What was asked for; else what the file says, unless the letters of the page are far too small for
// that; else what the letters, or the size of the page, let expect. Surveys the letters, too. To be
// called before the first step.
void settle_resolution(PageWork& work, const StepOptions& options);

}  // namespace tool::steps
