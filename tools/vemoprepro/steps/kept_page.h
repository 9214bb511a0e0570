// The page in its own kind that --keep-colour keeps beside the one that becomes bitonal.
//
// Use: keep_page() before the first step that changes the kind; each step that moves pixels or
// paints over a border does the same to the kept page, so that both lie on one another. None of
// these do anything when no page is kept.
#pragma once

#include "steps/page_work.h"
#include "steps/straighten.h"

namespace tool::steps {

void keep_page(PageWork& work);

// The page was doubled by the reading room.
void double_kept(PageWork& work);

// way: that the page was straightened by.
void straighten_kept(PageWork& work, Skew skew, Straightening way);

}  // namespace tool::steps
