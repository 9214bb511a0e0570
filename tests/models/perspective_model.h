// Perspective correction, one pixel at a time; luma by the cubic and chroma by the linear kernel of
// scaling, with an inverse of its own from luma and chroma.
//
// The arguments and results are those of the exported functions. The positions are sums that grow
// from pixel to pixel, as they are defined. A position beyond the image, which is no caller's due,
// takes the nearest pixel.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#include "scaling_model.h"

namespace model {

struct Corner {
    int x, y;
};

struct Corners {
    Corner at[4];
    const Corner& operator[](int i) const { return at[i]; }
};

struct Leftmost {
    int first, second;
};

inline Leftmost two_leftmost(const Corners& p) {
    Leftmost found = p[0].x < p[1].x ? Leftmost{0, 1} : Leftmost{1, 0};
    for (const int i : {2, 3}) {
        if (p[i].x < p[found.first].x)
            found = {i, found.first};
        else if (p[i].x < p[found.second].x)
            found.second = i;
    }
    return found;
}

inline Corners ordered(const Corners& p) {
    const Leftmost left = two_leftmost(p);
    const int first = p[left.first].y < p[left.second].y ? left.first : left.second;
    const auto slope = [&](int i) {
        const double dy = static_cast<double>(p[i].y) - p[first].y;
        const double dx = static_cast<double>(p[i].x) - p[first].x;
        return dy > 0 && dy / dx < 0 ? std::numeric_limits<double>::infinity() : dy / dx;
    };
    int low = -1;
    int middle = -1;
    int high = -1;
    for (int i = 0; i < 4; ++i) {
        if (i == first) continue;
        if (low < 0) {
            low = high = i;
        } else if (slope(i) < slope(low)) {
            if (low != high) middle = low;
            low = i;
        } else if (slope(i) > slope(high)) {
            if (low != high) middle = high;
            high = i;
        } else if (low == high && middle >= 0) {
            high = i;  // none is steeper than another: they keep their order
        } else {
            middle = i;
        }
    }
    return {{p[first], p[low], p[middle], p[high]}};
}

inline int check_points_order(int* x0, int* y0, int* x1, int* y1, int* x2, int* y2, int* x3,
                              int* y3) {
    const Corners p = ordered({{{*x0, *y0}, {*x1, *y1}, {*x2, *y2}, {*x3, *y3}}});
    *x0 = p[0].x, *y0 = p[0].y;
    *x1 = p[1].x, *y1 = p[1].y;
    *x2 = p[2].x, *y2 = p[2].y;
    *x3 = p[3].x, *y3 = p[3].y;
    return 0;
}

// For squared distances within 32 bits.
inline int give_appropriate_height_and_width(int x0, int y0, int x1, int y1, int x2, int y2, int x3,
                                             int y3, int* out_height, int* out_width) {
    const auto distance = [](int xi, int yi, int xj, int yj) {
        return static_cast<int>(std::sqrt((xi - xj) * (xi - xj) + (yj - yi) * (yj - yi)));
    };
    *out_width = (distance(x0, y0, x1, y1) + distance(x2, y2, x3, y3)) / 2;
    *out_height = (distance(x0, y0, x3, y3) + distance(x1, y1, x2, y2)) / 2;
    return 0;
}

// h1 u + h2 v + h3
struct LinearForm {
    double h1, h2, h3;
};

// From the unit square to the corners: x / w and y / w.
struct ProjectiveMap {
    LinearForm x, y, w;

    explicit ProjectiveMap(const Corners& p) {
        const double x0 = p[0].x, x1 = p[1].x, x2 = p[2].x, x3 = p[3].x;
        const double y0 = p[0].y, y1 = p[1].y, y2 = p[2].y, y3 = p[3].y;
        const double sum_x = x0 - x1 + x2 - x3;
        const double sum_y = y0 - y1 + y2 - y3;
        if (sum_x == 0 && sum_y == 0) {
            x = {x1 - x0, x2 - x1, x0};
            y = {y1 - y0, y2 - y1, y0};
            w = {0, 0, 1};
            return;
        }
        const double dx1 = x1 - x2, dx2 = x3 - x2;
        const double dy1 = y1 - y2, dy2 = y3 - y2;
        const double den = dx1 * dy2 - dx2 * dy1;
        const double h31 = (sum_x * dy2 - dx2 * sum_y) / den;
        const double h32 = (dx1 * sum_y - sum_x * dy1) / den;
        x = {x1 - x0 + h31 * x1, x3 - x0 + h32 * x3, x0};
        y = {y1 - y0 + h31 * y1, y3 - y0 + h32 * y3, y0};
        w = {h31, h32, 1};
    }
};

// A form at every pixel: row starts grow from row to row, and values along their row.
class SteppedForm {
  public:
    SteppedForm(const LinearForm& form, int width, int height)
        : along_(form.h1 / width), down_(form.h2 / height), row_start_(form.h3) {}
    void start_row() { value_ = row_start_; }
    void next_pixel() { value_ += along_; }
    void next_row() { row_start_ += down_; }
    double value() const { return value_; }

  private:
    double along_, down_;
    double row_start_;
    double value_ = 0;
};

inline LumaChroma luma_chroma_between(const Field& luma, const Field& red, const Field& blue,
                                      double sx, double sy) {
    const double left = std::floor(sx);
    const double top = std::floor(sy);
    const int ix = static_cast<int>(left);
    const int iy = static_cast<int>(top);
    if (ix < 1 || ix + 2 >= luma.width || iy < 1 || iy + 2 >= luma.height)
        return {luma.nearest(iy, ix), red.nearest(iy, ix), blue.nearest(iy, ix)};
    const double fx = sx - left;
    const double fy = sy - top;
    const auto row = [&](int y) {
        return cubic_between(fx, luma.at(y, ix - 1), luma.at(y, ix), luma.at(y, ix + 1),
                             luma.at(y, ix + 2));
    };
    const auto bilinear = [&](const Field& chroma) {
        return linear_between(fy, linear_between(fx, chroma.at(iy, ix), chroma.at(iy, ix + 1)),
                              linear_between(fx, chroma.at(iy + 1, ix), chroma.at(iy + 1, ix + 1)));
    };
    return {cubic_between(fy, row(iy - 1), row(iy), row(iy + 1), row(iy + 2)), bilinear(red),
            bilinear(blue)};
}

inline Rgb rgb_of_chroma(LumaChroma p) {
    const int cr = p.cr - 128;
    const int cb = p.cb - 128;
    return {std::clamp(p.y + 91881 * cr / 65536, 0, 255),
            std::clamp(p.y + (-46802 * cr - 22553 * cb) / 65536, 0, 255),
            std::clamp(p.y + 116130 * cb / 65536, 0, 255)};
}

inline int perspective_transformation_color(unsigned char* src, unsigned char* dst, int width,
                                            int height, int dst_width, int dst_height, int x0,
                                            int y0, int x1, int y1, int x2, int y2, int x3,
                                            int y3) {
    Field luma(height, width);
    Field red(height, width);
    Field blue(height, width);
    for_each_cell(luma, [&](int y, int x) {
        unsigned char* const p = src + offset(y, 3 * width, 3 * x);
        const LumaChroma parts = luma_chroma({p[0], p[1], p[2]});
        p[0] = static_cast<unsigned char>(luma.at(y, x) = parts.y);
        p[1] = static_cast<unsigned char>(red.at(y, x) = parts.cr);
        p[2] = static_cast<unsigned char>(blue.at(y, x) = parts.cb);
    });
    if (dst_width < 1 || dst_height < 1) return 0;

    const ProjectiveMap map({{{x0, y0}, {x1, y1}, {x2, y2}, {x3, y3}}});
    SteppedForm form_x(map.x, dst_width, dst_height);
    SteppedForm form_y(map.y, dst_width, dst_height);
    SteppedForm form_w(map.w, dst_width, dst_height);
    for (int j = 0; j < dst_height; ++j) {
        for (SteppedForm* form : {&form_x, &form_y, &form_w}) form->start_row();
        for (int i = 0; i < dst_width; ++i) {
            const Rgb colour = rgb_of_chroma(luma_chroma_between(
                luma, red, blue, form_x.value() / form_w.value(), form_y.value() / form_w.value()));
            unsigned char* const p = dst + offset(j, 3 * dst_width, 3 * i);
            p[0] = static_cast<unsigned char>(colour.r);
            p[1] = static_cast<unsigned char>(colour.g);
            p[2] = static_cast<unsigned char>(colour.b);
            for (SteppedForm* form : {&form_x, &form_y, &form_w}) form->next_pixel();
        }
        for (SteppedForm* form : {&form_x, &form_y, &form_w}) form->next_row();
    }
    return 0;
}

}  // namespace model
