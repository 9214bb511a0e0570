// Handing pages to the library's binarizations, which read them row by row.
#pragma once

#include "page/page.h"

namespace tool {

// Hands the rows of a page to the library one by one: the context of read().
struct RowReader {
    const Page& page;
    int next = 0;

    static int read(void* context, int mode, unsigned char* row);
};

// A page of the same size and resolution whose pixels are not set.
Page same_size(const Page& page, PageKind kind);

// The grey page that the library binarizes a colour page from. Taking it beforehand lets go of the
// colour page early and leaves the greys at hand.
Page grey_of(const Page& page);

}  // namespace tool
