// A page in memory as a source of rows for the binarizations.
//
// Use: PageReader reader{page.data.data(), row_bytes}; hand PageReader::read and &reader to a call.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace bench {

struct PageReader {
    const std::uint8_t* page;
    std::size_t row_bytes;
    std::size_t next = 0;

    static int read(void* ctx, int mode, unsigned char* row) {
        auto* self = static_cast<PageReader*>(ctx);
        if (mode == 0) self->next = 0;
        std::memcpy(row, self->page + self->next++ * self->row_bytes, self->row_bytes);
        return 0;
    }
};

}  // namespace bench
