// Perspective correction beside its models, for tests and fuzz targets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "perspective_model.h"
#include "support/guarded_buffer.h"
#include "vemoprepro/geometry.h"

namespace model {

inline bool corner_orders_agree(const Corners& corners) {
    const auto after = [&corners](auto order) {
        Corners p = corners;
        const int status = order(&p.at[0].x, &p.at[0].y, &p.at[1].x, &p.at[1].y, &p.at[2].x,
                                 &p.at[2].y, &p.at[3].x, &p.at[3].y);
        std::vector<int> left = {status};
        for (const Corner& corner : p.at) left.insert(left.end(), {corner.x, corner.y});
        return left;
    };
    return after(::check_points_order) == after(model::check_points_order);
}

inline bool perspective_sizes_agree(const Corners& p) {
    const auto after = [&p](auto measure) {
        std::vector<int> left = {-7, -7, -7};
        left[0] = measure(p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y, p[3].x, p[3].y, &left[1],
                          &left[2]);
        return left;
    };
    return after(::give_appropriate_height_and_width) ==
           after(model::give_appropriate_height_and_width);
}

// Whether both images are left as by the model.
inline bool perspectives_agree(const std::vector<std::uint8_t>& page, int width, int height,
                               int dst_width, int dst_height, const Corners& p) {
    const bool has_pixels = dst_width > 0 && dst_height > 0;
    support::GuardedBuffer src(page);
    support::GuardedBuffer dst(has_pixels ? offset(dst_height, 3 * dst_width, 0) : 0);
    std::vector<std::uint8_t> expected_src = page;
    std::vector<std::uint8_t> expected_dst = dst.contents();
    const auto status_of = [&](auto transformation, std::uint8_t* from, std::uint8_t* to) {
        return transformation(from, to, width, height, dst_width, dst_height, p[0].x, p[0].y,
                              p[1].x, p[1].y, p[2].x, p[2].y, p[3].x, p[3].y);
    };
    return status_of(::perspective_transformation_color, src.data(), dst.data()) ==
               status_of(model::perspective_transformation_color, expected_src.data(),
                         expected_dst.data()) &&
           src.contents() == expected_src && dst.contents() == expected_dst &&
           src.guards_intact() && dst.guards_intact();
}

}  // namespace model
