// Hands the rows of a page to the library one by one.
//
// Use: RowReader reader{page}; and RowReader::read with &reader to a function that reads its source
// row by row.
#pragma once

#include <cstring>

#include "page/page.h"

namespace tool {

struct RowReader {
    const Page& page;
    int next = 0;

    // mode 0 begins again at the first row.
    static int read(void* context, int mode, unsigned char* row) {
        auto& self = *static_cast<RowReader*>(context);
        if (mode == 0) self.next = 0;
        std::memcpy(row, self.page.row(self.next), self.page.stride());
        ++self.next;
        return 0;
    }
};

}  // namespace tool
