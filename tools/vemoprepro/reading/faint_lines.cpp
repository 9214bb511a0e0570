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
#include <vector>

#include "page/ink.h"
#include "reading/ink_runs.h"

namespace tool::reading {
namespace {

// Takes off a page what is on the other.
void subtract(Page& page, const Page& other) {
    unsigned char* bytes = page.bytes.get();
    const unsigned char* taken = other.bytes.get();
    const std::size_t size = page.size();
    for (std::size_t i = 0; i < size; ++i) bytes[i] &= static_cast<unsigned char>(~taken[i]);
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

bool touches(const InkRun& run, const Page& letters) {
    const int begin = std::max(0, run.begin - 1), end = std::min(letters.width, run.end + 1);
    for (int y = std::max(0, run.y - 1); y <= std::min(letters.height - 1, run.y + 1); ++y) {
        if (next_pixel(letters.row(y), begin, end, true) < end) return true;
    }
    return false;
}

}  // namespace

void remove_line_stubs(Page& page, const Page& with_lines, const Page& without_lines, int crumb) {
    Page lines = difference(with_lines, without_lines);
    if (is_blank(lines.bytes.get(), lines.size())) return;
    dilate(lines);
    Page letters = difference(page, lines);
    erase_crumbs(letters, crumb);
    Page stubs = difference(page, letters);
    std::vector<InkRun> piece;
    const std::size_t words = page.stride() / 4;
    for (int y = 0; y < page.height; ++y) {
        for (std::size_t i = 0; i < words; ++i) {
            while (const std::uint32_t both =
                       pixels_at(lines.row(y), i) & pixels_at(stubs.row(y), i)) {
                piece.clear();
                take_connected(stubs, static_cast<int>(32 * i) + std::countl_zero(both), y, piece);
                const auto meets = [&](const InkRun& run) { return touches(run, letters); };
                if (std::any_of(piece.begin(), piece.end(), meets)) continue;
                for (const InkRun& run : piece) erase_inks(page.row(run.y), run.begin, run.end);
            }
        }
    }
}

}  // namespace tool::reading
