// A row of the speed table: one operation of the library beside the strongest open peer for it,
// timed in the same process, interleaved, on one thread, in CPU time; medians are compared.
//
// Use: in bench/<family>_bench.cpp
//     const bool registered = bench::add({
//         .name = "half turn, bitonal", .peer = "Leptonica pixRotateOrth", .required = 6.0,
//         .floor_bytes = 2 * bench::bitonal_page().data.size(),
//         .prepare = [] { ...allocate what both sides need...;
//                         return bench::Sides{.ours = [=] {...}, .theirs = [=] {...}}; }});
// Each side must do its whole work in every call, output allocation included where the peer's
// interface makes the peer do it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace bench {

struct Sides {
    std::function<void()> ours;
    std::function<void()> theirs;
};

struct Row {
    std::string name;
    std::string peer;
    double required = 1.0;        // how many times faster than the peer the library must be
    std::size_t floor_bytes = 0;  // bytes that must be read plus bytes that must be written
    std::function<Sides()> prepare;
};

// Registers a row; returns true so that it can initialise a file-level constant.
bool add(Row row);

// One A4 page at 300 dots per inch, 2480 x 3508, of the sample pages.
struct Page {
    int height = 0;
    int width = 0;
    int stride = 0;  // bytes
    std::vector<std::uint8_t> data;
};

const Page& bitonal_page();         // straight text, stride 4 * ceil(width / 32)
const Page& skewed_bitonal_page();  // the same, turned by about 1.5 degrees
const Page& grey_page();            // stride = width
const Page& colour_page();          // red, green, blue; stride = 3 * width

}  // namespace bench
