// The pixels that a step took off a page, one by one.
//
// Use: light_page() of the page before and of the page after; removed_pixels() of both; of these
// the marks to lay over the small page, and the spots worth looking at.
#pragma once

#include <optional>
#include <vector>

#include "page/page.h"
#include "report/encoded_picture.h"
#include "report/placement.h"

namespace tool::report {

// What is compared of a page: a bitonal page as it is, of others how light they are. No colours.
Page light_page(const Page& page);

// A bitonal page: ink is what became lighter. None when nothing was removed, or when the two cannot
// be laid over one another: they differ in size, or just one of them is bitonal.
std::optional<Page> removed_pixels(const Page& before, const Page& after);

// Small: single pixels of a large page show as well.
EncodedPicture marks_of(const Page& removed, Colour colour);

// Centres of small parts of the page where much was removed, at most a dozen. First those where ink
// stayed as well: there it may be a dot or an accent that went.
std::vector<Point> spots_of(const Page& removed, const Page& after);

}  // namespace tool::report
