// A row reader over a page in memory that remembers how it was called.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

namespace support {

struct RecordingReader {
    std::vector<std::uint8_t> page;
    std::size_t row_bytes = 0;
    std::vector<int> modes;  // of the calls so far
    std::size_t next = 0;

    RecordingReader(std::vector<std::uint8_t> bytes, std::size_t bytes_per_row)
        : page(std::move(bytes)), row_bytes(bytes_per_row) {}

    // The result is one that a library that looked at it would take for a failure.
    static int read(void* ctx, int mode, unsigned char* row) {
        auto* self = static_cast<RecordingReader*>(ctx);
        self->modes.push_back(mode);
        if (mode == 0) self->next = 0;
        // Rows below the page do not exist: asking for one must show.
        if ((self->next + 1) * self->row_bytes <= self->page.size()) {
            std::memcpy(row, self->page.data() + self->next * self->row_bytes, self->row_bytes);
        } else {
            self->modes.push_back(kBeyondPage);
        }
        ++self->next;
        return -1;
    }

    static constexpr int kBeyondPage = 99;
};

}  // namespace support
