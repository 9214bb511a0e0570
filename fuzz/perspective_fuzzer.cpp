// Perspective correction beside its slow model, with images, sizes and corners from the input; and
// with corners that make no page, for which there is no model, that it does no harm.
#include <cstddef>
#include <cstdint>

#include "input.h"
#include "models/perspective_comparison.h"

namespace {

using fuzz::Bytes;
using fuzz::check;
using fuzz::Input;

int any_from(Input& input) {
    unsigned value = 0;
    for (int i = 0; i < 4; ++i) value = value << 8 | static_cast<unsigned>(input.next());
    return static_cast<int>(value);
}

void straighten(const Bytes& page, int width, int height, int dst_width, int dst_height,
                const model::Corners& p) {
    Bytes src = page;
    Bytes dst(static_cast<std::size_t>(3 * dst_width * dst_height));
    check(perspective_transformation_color(src.data(), dst.data(), width, height, dst_width,
                                           dst_height, p[0].x, p[0].y, p[1].x, p[1].y, p[2].x,
                                           p[2].y, p[3].x, p[3].y) == 0);
}

// Whether no place is far from the image: around a convex quadrilateral in one direction.
bool convex(const model::Corners& p) {
    for (int i = 0; i < 4; ++i) {
        const model::Corner& a = p[i];
        const model::Corner& b = p[(i + 1) % 4];
        const model::Corner& c = p[(i + 2) % 4];
        if ((b.x - a.x) * (c.y - b.y) - (b.y - a.y) * (c.x - b.x) <= 0) return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input{data, size};
    const int kind = input.next();
    const int height = 1 + input.next() % 100;
    const int width = 1 + input.next() % 100;
    const int dst_height = input.next() % 80;
    const int dst_width = input.next() % 80;
    model::Corners corners;
    for (auto& [x, y] : corners.at) {
        x = kind % 8 == 0 ? any_from(input) : input.next() % (width + kind % 2 * 3) - kind % 2;
        y = kind % 8 == 0 ? any_from(input) : input.next() % (height + kind % 2 * 3) - kind % 2;
    }
    const Bytes page = input.repeat(static_cast<std::size_t>(3 * width * height));
    if (kind % 8 == 0) {
        int out_height = 0;
        int out_width = 0;
        give_appropriate_height_and_width(corners[0].x, corners[0].y, corners[1].x, corners[1].y,
                                          corners[2].x, corners[2].y, corners[3].x, corners[3].y,
                                          &out_height, &out_width);
        straighten(page, width, height, dst_width, dst_height, corners);
        return 0;
    }
    check(model::corner_orders_agree(corners));
    check(model::perspective_sizes_agree(corners));
    if (convex(corners)) {
        check(model::perspectives_agree(page, width, height, dst_width, dst_height, corners));
    } else {
        straighten(page, width, height, dst_width, dst_height, corners);
    }
    return 0;
}
