// Whether a line that was followed over a page is a ruled one.
#pragma once

#include "page/page.h"
#include "reading/line_scale.h"
#include "reading/ruled_line.h"

namespace tool::reading {

enum class Sureness { kNoLine, kLikely, kSure };

// The line was followed on `page`; `untouched` has the lines across as well, which may be gone.
Sureness judge(const Page& page, const Page& untouched, const RuledLine& line,
               const LineScale& scale);

}  // namespace tool::reading
