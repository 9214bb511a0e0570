// The rotation of grey and colour pages in place beside its model, for tests and fuzz targets.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "colour_rotation_model.h"
#include "support/guarded_buffer.h"
#include "vemoprepro/deskew.h"

namespace model {

struct ColourTurn {
    int skew, scale;
    int bytes_per_pixel;
    int height, width;
    int out_height, out_width;

    // Of a buffer for the page and the result.
    std::size_t bytes() const {
        const auto of = [this](int rows, int columns) {
            if (rows < 1 || columns < 1 || bytes_per_pixel < 1) return std::size_t{0};
            return static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns) *
                   static_cast<std::size_t>(bytes_per_pixel);
        };
        return std::max(of(height, width), of(out_height, out_width));
    }
};

inline bool colour_turn_sizes_agree(int skew, int scale, int height, int width) {
    int out[2] = {-7, -7};
    int expected[2] = {-7, -7};
    return ::skrotdim(skew, scale, height, width, &out[0], &out[1]) ==
               model::skrotdim(skew, scale, height, width, &expected[0], &expected[1]) &&
           std::equal(out, out + 2, expected);
}

// Whether the function returns, leaves and reports what its model does. `page` fills the buffer;
// no background stands for the function that has a white one.
inline bool colour_turns_agree(const ColourTurn& t, const std::vector<std::uint8_t>& page,
                               const unsigned char* background) {
    using Reports = std::vector<std::pair<unsigned, unsigned>>;
    static Reports reports;
    const Progress progress = [](unsigned done, unsigned total) {
        reports.emplace_back(done, total);
    };
    const auto turn = [&](auto with_background, auto on_white, std::uint8_t* buffer) {
        reports.clear();
        const int status =
            background ? with_background(t.skew, t.scale, t.bytes_per_pixel, buffer, t.height,
                                         t.width, background, t.out_height, t.out_width, progress)
                       : on_white(t.skew, t.scale, t.bytes_per_pixel, buffer, t.height, t.width,
                                  t.out_height, t.out_width, progress);
        return std::pair(status, reports);
    };
    support::GuardedBuffer buffer(page);
    std::vector<std::uint8_t> expected = page;
    return turn(::skrotimg_bg_mem, ::skrotimg_mem, buffer.data()) ==
               turn(model::skrotimg_bg_mem, model::skrotimg_mem, expected.data()) &&
           buffer.contents() == expected && buffer.guards_intact();
}

}  // namespace model
