// Rotation by any angle, one pixel at a time: where every destination pixel comes from is computed
// anew, in the fixed point of 14 fraction bits.
//
// The arguments and results are those of the exported functions. Behind the rows of a bitonal
// quarter turn lies work area, of which nothing is said. Source sizes below 1 are the callers'
// affair.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "rotation_model.h"

namespace model {

inline bool turns_less_than_once(double angle) {
    return angle > -360 && angle < 360;
}

inline double radians(double angle) {
    return angle * M_PI / 180;
}

// The quarter turns clockwise of an exact right angle; -1 of any other angle.
inline int quarter_turns(double angle) {
    for (const int turns : {0, 1, 2, 3})
        if (angle == 90 * turns || angle == 90 * turns - 360) return turns;
    return -1;
}

inline int rotate_image_dim(int height, int width, int* out_height, int* out_width, double angle) {
    if (!turns_less_than_once(angle)) return -1;
    const int turns = quarter_turns(angle);
    if (turns >= 0) {
        *out_height = turns % 2 == 0 ? height : width;
        *out_width = turns % 2 == 0 ? width : height;
        return 0;
    }
    const double sine = std::sin(radians(angle));
    const double cosine = std::cos(radians(angle));
    const auto x = [&](double px, double py) { return px * cosine - py * sine; };
    const auto y = [&](double px, double py) { return px * sine + py * cosine; };
    const auto extent = [&](const auto& of) {
        const auto [low, high] =
            std::minmax({of(0, 0), of(width, 0), of(0, height), of(width, height)});
        return static_cast<int>(high - low);
    };
    *out_width = extent(x);
    *out_height = extent(y);
    return 0;
}

// Where a destination pixel lies on the source: a pixel, and sixteenths of the way to the next.
struct SourcePoint {
    int x, y;
    int fx, fy;

    // What each of the four pixels from (x, y) on contributes, of 256.
    int weight(int right, int down) const { return (right ? fx : 16 - fx) * (down ? fy : 16 - fy); }
};

struct AngleGeometry {
    int height, width;
    int dst_height, dst_width;
    double angle;
    long long sin14 = static_cast<long long>(16384 * std::sin(radians(angle)));
    long long cos14 = static_cast<long long>(16384 * std::cos(radians(angle)));

    SourcePoint source_of(int u, int v) const {
        const int du = u - dst_width / 2;
        const int dv = v - dst_height / 2;
        const auto x = static_cast<std::int32_t>(cos14 * du + sin14 * dv + 512);
        const auto y = static_cast<std::int32_t>(-sin14 * du + cos14 * dv + 512);
        return {(x >> 14) + width / 2, (y >> 14) + height / 2, (x >> 10) & 15, (y >> 10) & 15};
    }
    // A pixel of the last row or column has no neighbour to its right or below.
    bool covers(const SourcePoint& p) const {
        return p.x >= 0 && p.x <= width - 2 && p.y >= 0 && p.y <= height - 2;
    }
};

inline int rotate_bitonal(const unsigned char* src, int height, int width, int bytes_per_line,
                          unsigned char* dst, int dst_height, int dst_width, int dst_bytes_per_line,
                          double angle) {
    if (!turns_less_than_once(angle) || word_stride(width) > bytes_per_line ||
        word_stride(dst_width) > dst_bytes_per_line)
        return -1;
    const bool same = dst_height == height && dst_width == width;
    const bool swapped = dst_height == width && dst_width == height;
    const int turns = quarter_turns(angle);
    unsigned stride = 0;
    if (turns % 2 == 0) {
        if (!same || dst_bytes_per_line != bytes_per_line) return -1;
        const int size = dst_height * dst_bytes_per_line;
        if (turns == 2)
            return model::kyd_rotate_180(src, width, height, bytes_per_line, dst, size, &stride);
        std::memcpy(dst, src, static_cast<std::size_t>(size));
        return 0;
    }
    if (turns > 0) {
        if (!swapped || dst_bytes_per_line != word_stride(dst_width)) return -1;
        return quarter_turn(turns == 1, src, width, height, bytes_per_line, dst,
                            8 * bytes_per_line * dst_bytes_per_line, &stride);
    }
    const AngleGeometry geometry{height, width, dst_height, dst_width, angle};
    if (dst_height > 0 && dst_bytes_per_line > 0)
        std::memset(dst, 0, offset(dst_height, dst_bytes_per_line, 0));
    for (int v = 0; v < dst_height; ++v)
        for (int u = 0; u < dst_width; ++u) {
            const SourcePoint p = geometry.source_of(u, v);
            if (!geometry.covers(p)) continue;
            int black = 0;
            for (const int down : {0, 1})
                for (const int right : {0, 1})
                    if (get_bit(src, bytes_per_line, p.x + right, p.y + down))
                        black += p.weight(right, down);
            set_bit(dst, dst_bytes_per_line, u, v, black > 128);
        }
    return 0;
}

// Where a right angle takes a pixel of `height` rows and `width` columns.
inline void turn_point(int turns, int height, int width, int& x, int& y) {
    const int from_x = x;
    const int from_y = y;
    if (turns == 1) x = height - 1 - from_y, y = from_x;
    if (turns == 2) x = width - 1 - from_x, y = height - 1 - from_y;
    if (turns == 3) x = from_y, y = width - 1 - from_x;
}

inline int rotate_color(int bytes_per_pixel, const unsigned char* background,
                        const unsigned char* src, int height, int width, int bytes_per_line,
                        unsigned char* dst, int dst_height, int dst_width, int dst_bytes_per_line,
                        double angle) {
    if (!turns_less_than_once(angle)) return -1;
    if (static_cast<long long>(width) * bytes_per_pixel > bytes_per_line ||
        static_cast<long long>(dst_width) * bytes_per_pixel > dst_bytes_per_line)
        return -1;
    const bool same = dst_height == height && dst_width == width;
    const bool swapped = dst_height == width && dst_width == height;
    const int turns = quarter_turns(angle);
    if (turns == 0) {
        if (!same || dst_bytes_per_line != bytes_per_line) return -1;
        std::memcpy(dst, src, offset(height, bytes_per_line, 0));
        return 0;
    }
    if (turns > 0) {
        if (!(turns == 2 ? same : swapped)) return -1;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                int to_x = x;
                int to_y = y;
                turn_point(turns, height, width, to_x, to_y);
                std::memcpy(dst + offset(to_y, dst_bytes_per_line, to_x * bytes_per_pixel),
                            src + offset(y, bytes_per_line, x * bytes_per_pixel),
                            static_cast<std::size_t>(bytes_per_pixel));
            }
        return 0;
    }
    if (bytes_per_pixel != 1 && bytes_per_pixel != 3 && bytes_per_pixel != 4) return -1;
    const AngleGeometry geometry{height, width, dst_height, dst_width, angle};
    for (int v = 0; v < dst_height; ++v)
        for (int u = 0; u < dst_width; ++u)
            for (int channel = 0; channel < bytes_per_pixel; ++channel) {
                const SourcePoint p = geometry.source_of(u, v);
                int value = background[channel];
                if (geometry.covers(p)) {
                    int sum = 128;
                    for (const int down : {0, 1})
                        for (const int right : {0, 1})
                            sum += p.weight(right, down) *
                                   src[offset(p.y + down, bytes_per_line,
                                              (p.x + right) * bytes_per_pixel + channel)];
                    value = sum >> 8;
                }
                dst[offset(v, dst_bytes_per_line, u * bytes_per_pixel + channel)] =
                    static_cast<unsigned char>(value);
            }
    return 0;
}

}  // namespace model
