// The lines are the ink that the page with lines has and the page without lines has not, dilated by
// a pixel, since the edges of ink differ between binarizations. The page's ink outside of the lines
// is letters, except for crumbs of a few pixels. What is connected with letters is theirs, even
// within the lines; other ink within the lines is a stub, along with the crumbs that touch it.
// Crumbs that touch no line are the dots of letters, and stay.
#include "reading/faint_lines.h"

#include <vemoprepro/cleaning.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include "page/ink.h"

namespace tool::reading {
namespace {

// Takes off a page what is on the other.
void subtract(Page& page, const Page& other) {
    for (std::size_t i = 0; i < page.size(); ++i) {
        page.bytes[i] &= static_cast<unsigned char>(~other.bytes[i]);
    }
}

Page difference(const Page& page, const Page& other) {
    Page rest = copy_of(page);
    subtract(rest, other);
    return rest;
}

bool is_blank(const unsigned char* bytes, std::size_t size) {
    return size == 0 || (bytes[0] == 0 && std::memcmp(bytes, bytes + 1, size - 1) == 0);
}

void add(unsigned char& byte, int ink) {
    byte = static_cast<unsigned char>(byte | ink);
}

// Adds to a row the neighbours of its ink. Padding bits may be set.
void dilate_across(unsigned char* row, std::size_t size) {
    unsigned char before = 0;  // as it was
    for (std::size_t i = 0; i < size; ++i) {
        const unsigned char own = row[i];
        add(row[i], own << 1 | own >> 1 | before << 7);
        if (i + 1 < size) add(row[i], row[i + 1] >> 7);
        before = own;
    }
}

void add_row(unsigned char* row, const unsigned char* other, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) add(row[i], other[i]);
}

// Adds to the ink its eight neighbours. Padding bits may be set; they are cleared where the result
// is subtracted from a page. Lines leave most rows blank.
void dilate(Page& ink) {
    const std::size_t stride = ink.stride();
    std::vector<bool> has_ink;
    for (int y = 0; y < ink.height; ++y) {
        has_ink.push_back(!is_blank(ink.row(y), stride));
        if (has_ink.back()) dilate_across(ink.row(y), stride);
    }
    std::vector<unsigned char> above(stride), own(stride);  // as they were
    for (int y = 0; y < ink.height; ++y) {
        const auto i = static_cast<std::size_t>(y);
        if (has_ink[i]) std::copy_n(ink.row(y), stride, own.begin());
        if (y > 0 && has_ink[i - 1]) add_row(ink.row(y), above.data(), stride);
        if (y + 1 < ink.height && has_ink[i + 1]) add_row(ink.row(y), ink.row(y + 1), stride);
        above.swap(own);
    }
}

void erase_crumbs(Page& page, int crumb) {
    if (despeckl_mem(page.bytes.get(), page.height, page.width, static_cast<int>(page.stride()),
                     crumb) != 0) {
        throw std::bad_alloc();
    }
}

struct Run {
    int y, begin, end;
};

// The pieces of a page that has stubs of lines and crumbs only.
class Stubs {
  public:
    Stubs(Page ink, const Page& letters) : ink_(std::move(ink)), letters_(letters) {}

    // Takes the piece at a pixel of ink off the stubs and, unless letters touch it, off the page.
    void take(Page& page, int x, int y) {
        runs_.clear();
        take_run(x, y);
        bool touches = false;
        for (std::size_t i = 0; i < runs_.size(); ++i) {
            const Run run = runs_[i];
            const int begin = std::max(0, run.begin - 1), end = std::min(ink_.width, run.end + 1);
            for (int j = std::max(0, run.y - 1); j <= std::min(ink_.height - 1, run.y + 1); ++j) {
                touches = touches || next_pixel(letters_.row(j), begin, end, true) < end;
                for (int k = begin; (k = next_pixel(ink_.row(j), k, end, true)) < end;) {
                    take_run(k, j);
                }
            }
        }
        if (touches) return;
        for (const Run& run : runs_) erase_inks(page.row(run.y), run.begin, run.end);
    }

    const unsigned char* row(int y) const { return ink_.row(y); }

  private:
    void take_run(int x, int y) {
        unsigned char* row = ink_.row(y);
        const Run run{y, last_pixel(row, x, false) + 1, next_pixel(row, x, ink_.width, false)};
        erase_inks(row, run.begin, run.end);
        runs_.push_back(run);
    }

    Page ink_;
    const Page& letters_;
    std::vector<Run> runs_;  // of one piece
};

}  // namespace

void remove_line_stubs(Page& page, const Page& with_lines, const Page& without_lines, int crumb) {
    Page lines = difference(with_lines, without_lines);
    if (is_blank(lines.bytes.get(), lines.size())) return;
    dilate(lines);
    Page letters = difference(page, lines);
    erase_crumbs(letters, crumb);
    Stubs stubs(difference(page, letters), letters);
    const std::size_t words = page.stride() / 4;
    for (int y = 0; y < page.height; ++y) {
        for (std::size_t i = 0; i < words; ++i) {
            while (const std::uint32_t both =
                       pixels_at(lines.row(y), i) & pixels_at(stubs.row(y), i)) {
                stubs.take(page, static_cast<int>(32 * i) + std::countl_zero(both), y);
            }
        }
    }
}

}  // namespace tool::reading
