// The resolution that a page is worked on with.
#pragma once

#include <optional>

#include "steps/page_work.h"

namespace tool::steps {

// Dots per inch of a page whose file has none.
constexpr int kDefaultDpi = 300;

// The resolution that was asked for, else the file's, else the default. To be called before the
// first step.
void settle_resolution(PageWork& work, std::optional<int> asked_for);

}  // namespace tool::steps
