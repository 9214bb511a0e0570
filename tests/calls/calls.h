// A call of every exported function that works on a page, one file per family: what every call must
// keep true is tested over all of them.
//
// Use: a family's file adds its calls with one `const bool added = add_calls({...})`; a test makes
// a Desk of its pages and runs every call of all_calls() on it.
//
// Keep true: a call leaves the Desk's pages as they are and works on a copy() of one, or writes to
// `out`. It allocates nothing by itself, and it says with wrote() where its result lies.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <utility>
#include <vector>

#include "vemoprepro/prepro.h"

namespace calls {

using Bytes = std::vector<std::uint8_t>;

struct Desk {
    // Three pages of one size: the bitonal one has `stride` bytes a row, the others are packed.
    Desk(int page_height, int page_width, int page_stride, Bytes bitonal_page, Bytes grey_page,
         Bytes colour_page)
        : height(page_height),
          width(page_width),
          stride(page_stride),
          bitonal(std::move(bitonal_page)),
          grey(std::move(grey_page)),
          colour(std::move(colour_page)),
          out(colour.size() + (std::size_t{1} << 20)) {
        page.reserve(colour.size());
    }

    std::uint8_t* copy(const Bytes& original) {
        page.assign(original.begin(), original.end());
        return page.data();
    }

    // Passes the status of a call on and keeps where its result is.
    int wrote(int status, const std::uint8_t* data, std::size_t size) {
        result = data;
        result_size = status < 0 ? 0 : size;
        return status;
    }
    int wrote_page(int status) { return wrote(status, page.data(), page.size()); }
    // The same for calls that leave the page as it was when they fail.
    int wrote_page_or_kept(int status, const Bytes& original) {
        EXPECT_TRUE(status >= 0 || page == original) << "a failure left traces";
        return wrote_page(status);
    }
    // `rows` rows of `row_pixels` pixels, a bit each, in whole 32-bit words.
    int wrote_bits(int status, int rows, int row_pixels) {
        return wrote(status, out.data(),
                     static_cast<std::size_t>(rows) *
                         ((static_cast<std::size_t>(row_pixels) + 31) / 32 * 4));
    }

    // Row readers of the colour and of the grey page; their context is the Desk.
    static int read(void* desk, int mode, unsigned char* row) {
        auto* self = static_cast<Desk*>(desk);
        return self->read_row(self->colour, std::size_t{3}, mode, row);
    }
    static int read_grey(void* desk, int mode, unsigned char* row) {
        auto* self = static_cast<Desk*>(desk);
        return self->read_row(self->grey, std::size_t{1}, mode, row);
    }

    const int height, width, stride;
    const Bytes bitonal, grey, colour;

    Bytes page;  // the copy that a call may change
    Bytes out;   // more than a colour page
    std::size_t row = 0;
    int numbers[4] = {};
    unsigned int result_stride = 0;
    double confidence = 0;
    const std::uint8_t* result = nullptr;
    std::size_t result_size = 0;

  private:
    int read_row(const Bytes& source, std::size_t pixel_bytes, int mode, unsigned char* to) {
        row = mode == 0 ? 0 : row + 1;
        const std::size_t bytes = pixel_bytes * static_cast<std::size_t>(width);
        std::memcpy(to, source.data() + bytes * row, bytes);
        return 0;
    }
};

enum class Allocates { kNo, kYes };

struct Call {
    const char* name;
    Allocates allocates;
    std::function<int(Desk&)> run;  // the status: below 0 for a failure
};

inline std::vector<Call>& all_calls() {
    static std::vector<Call> all;
    return all;
}

inline bool add_calls(std::vector<Call> family) {
    std::move(family.begin(), family.end(), std::back_inserter(all_calls()));
    return true;
}

}  // namespace calls
