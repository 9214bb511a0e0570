// Undithering, one pixel at a time and with every sum taken anew. The numbers are those of the
// definitions at the heads of screen_analysis.cpp and undithering.cpp.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "pixels.h"

namespace model {

using Grey = std::vector<unsigned char>;
using Shift = std::pair<int, int>;  // y, x: sorted "in order"
using Correlation = std::map<Shift, double>;

struct GreyPage {
    const Grey& pixels;
    int h, w;
    int operator()(int y, int x) const { return pixels[offset(y, w, x)]; }
    bool covers(int y, int x) const { return y >= 0 && y < h && x >= 0 && x < w; }
};

struct Screen {
    int count;
    Shift first, second;
};

inline int squared_length(Shift s) {
    return s.first * s.first + s.second * s.second;
}

inline std::vector<Shift> shifts_that_count(const Correlation& r) {
    std::vector<Shift> shifts;
    for (const auto& [shift, value] : r)
        if (shift > Shift{0, 0}) shifts.push_back(shift);
    return shifts;
}

inline std::vector<Shift> peaks(const Correlation& r, double height) {
    std::vector<Shift> found;
    for (const Shift& s : shifts_that_count(r)) {
        if (r.at(s) < height || squared_length(s) < 2) continue;
        bool peak = true;
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx) {
                const auto near = r.find({s.first + dy, s.second + dx});
                if (near != r.end() && near->second > r.at(s)) peak = false;
            }
        if (peak) found.push_back(s);
    }
    return found;
}

inline std::optional<Screen> screen_at_height(const Correlation& r, double height) {
    const auto shortest = [](const std::vector<Shift>& of) {
        return *std::min_element(of.begin(), of.end(), [](const Shift& a, const Shift& b) {
            return squared_length(a) < squared_length(b);
        });
    };
    const std::vector<Shift> all = peaks(r, height);
    if (all.size() < 3) return {};
    const Shift first = shortest(all);
    std::vector<Shift> elsewhere;
    for (const Shift& s : all) {
        const double cross = first.second * s.first - first.first * s.second;
        if (cross * cross > 0.09 * squared_length(first) * squared_length(s))
            elsewhere.push_back(s);
    }
    double most = -1;
    for (const Shift& s : shifts_that_count(r)) {
        const double half = std::sqrt(squared_length(first)) / 2;
        if (std::abs(std::sqrt(squared_length(s)) - half) <= 0.5) most = std::max(most, r.at(s));
    }
    if (elsewhere.empty() || !(r.at(first) - most >= 0.5)) return {};
    return Screen{static_cast<int>(all.size()), first, shortest(elsewhere)};
}

inline std::optional<Screen> read_screen(const Correlation& r, double least) {
    double best = 0;
    for (const Shift& s : peaks(r, least)) best = std::max(best, r.at(s));
    if (best == 0) return {};
    for (const double below : {0.1, 0.2, 0.3})
        if (const auto screen = screen_at_height(r, std::max(least, best - below))) return screen;
    return {};
}

// Nothing for a window without texture.
inline std::optional<Correlation> correlate(const GreyPage& page, int top, int left, int size) {
    int sum = 0;
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) sum += page(top + y, left + x);
    const int mean = sum / (size * size);
    const auto v = [&](int y, int x) { return page(top + y, left + x) - mean; };
    int deviation = 0;
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) deviation += std::abs(v(y, x));
    if (deviation < 8 * size * size) return {};
    const int reach = size / 3;
    Correlation r;
    for (int sy = 0; sy <= reach; ++sy)
        for (int sx = -reach; sx <= reach; ++sx) {
            long long p = 0, a = 0, b = 0;
            for (int y = 0; y < size - reach; ++y)
                for (int x = reach; x < size - reach; ++x) {
                    p += v(y, x) * v(y + sy, x + sx);
                    a += v(y, x) * v(y, x);
                    b += v(y + sy, x + sx) * v(y + sy, x + sx);
                }
            const double scale = std::sqrt(static_cast<double>(a * b));
            r[{sy, sx}] = r[{-sy, -sx}] = a * b > 0 ? static_cast<double>(p) / scale : 0;
        }
    r[{0, 0}] = 1;
    return r;
}

inline std::optional<Screen> find_screen(const GreyPage& page, int parameter, int resolution) {
    const int size = resolution >= 300 ? 65 : resolution >= 150 ? 33 : 17;
    const double least = 0.5 + 0.25 * parameter / 251;
    const int step =
        std::max(size, static_cast<int>(std::sqrt(static_cast<double>(page.h) * page.w / 512)));
    int textured = 0, passed = 0;
    Correlation sum;
    for (int top = 0; top + size <= page.h; top += step)
        for (int left = 0; left + size <= page.w; left += step) {
            const auto r = correlate(page, top, left, size);
            if (!r) continue;
            ++textured;
            if (!read_screen(*r, least)) continue;
            ++passed;
            for (const auto& [shift, value] : *r) sum[shift] += value;
        }
    if (passed * 64 <= textured) return {};
    for (auto& [shift, value] : sum) value /= passed;
    return read_screen(sum, least);
}

inline Grey averaged(const GreyPage& page, int c, bool along_rows) {
    Grey result;
    const int q = (65536 + 2 * c - 1) / (2 * c);
    for (int y = 0; y < page.h; ++y)
        for (int x = 0; x < page.w; ++x) {
            int s = 0;
            for (int i = -(c / 2); i <= c / 2; ++i) {
                const int weight = c % 2 == 0 && std::abs(i) == c / 2 ? 1 : 2;
                s += weight * (along_rows ? page(y, std::clamp(x + i, 0, page.w - 1))
                                          : page(std::clamp(y + i, 0, page.h - 1), x));
            }
            result.push_back(static_cast<unsigned char>(((s + c) * q) >> 16));
        }
    return result;
}

// Calls visit(y, x) for the pixels of a square as far as they lie on the page.
template <typename Visit>
void for_each_in_square(const GreyPage& page, int top, int left, int size, Visit visit) {
    for (int y = top; y < top + size; ++y)
        for (int x = left; x < left + size; ++x)
            if (page.covers(y, x)) visit(y, x);
}

inline long long mismatch(const GreyPage& page, int top, int left, Shift shift) {
    long long least = 256 * 255;
    for (const int side : {1, -1}) {
        long long sum = 0, k = 0;
        for_each_in_square(page, top, left, 16, [&](int y, int x) {
            const int there_y = y + side * shift.first, there_x = x + side * shift.second;
            if (!page.covers(there_y, there_x)) return;
            sum += std::abs(page(y, x) - page(there_y, there_x));
            ++k;
        });
        if (k > 0) least = std::min(least, 256 * sum / k);
    }
    return least;
}

inline bool tile_is_screened(const GreyPage& page, const GreyPage& tones, const Screen& screen,
                             int top, int left) {
    struct Sum {
        long long d = 0, k = 0;
    };
    const auto deviation_of = [&](int y0, int x0, int size) {
        Sum sum;
        for_each_in_square(page, y0, x0, size, [&](int y, int x) {
            sum.d += std::abs(page(y, x) - tones(y, x));
            ++sum.k;
        });
        return sum;
    };
    const Sum tile = deviation_of(top, left, 16);
    const long long deviation = 256 * tile.d / tile.k;
    bool even = true;
    for (const int y : {top, top + 8})
        for (const int x : {left, left + 8}) {
            const Sum quarter = deviation_of(y, x, 8);
            if (3 * quarter.d * tile.k < tile.d * quarter.k) even = false;
        }
    return deviation >= 6 * 256 && even &&
           10 * (mismatch(page, top, left, screen.first) +
                 mismatch(page, top, left, screen.second)) <=
               14 * deviation;
}

inline Grey undithered(const Grey& pixels, int h, int w, int parameter, int resolution) {
    const GreyPage page{pixels, h, w};
    const auto screen = find_screen(page, parameter, resolution);
    if (!screen) return pixels;
    const int c = std::abs(screen->first.first) + std::abs(screen->first.second);
    Grey tones = pixels;
    for (int pass = 0; pass < (screen->count == 3 ? 1 : 2); ++pass) {
        tones = averaged({tones, h, w}, c, true);
        tones = averaged({tones, h, w}, c, false);
    }
    const int rows = ceil_div(h, 16), columns = ceil_div(w, 16);
    std::map<std::pair<int, int>, bool> screened, filled;
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
            screened[{row, column}] =
                tile_is_screened(page, {tones, h, w}, *screen, 16 * row, 16 * column);
    for (const auto& [tile, itself] : screened) {
        int around = itself ? -1 : 0, existing = -1;
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx) {
                const auto near = screened.find({tile.first + dy, tile.second + dx});
                if (near == screened.end()) continue;
                ++existing;
                if (near->second) ++around;
            }
        filled[tile] = itself || (existing == 8 && around >= 6);
    }
    const auto floor_div = [](int value) { return value < 0 ? -ceil_div(-value, 32) : value / 32; };
    Grey result;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            int weight = 0;
            const int ty = floor_div(2 * y - 15), tx = floor_div(2 * x - 15);
            for (const int dy : {0, 1})
                for (const int dx : {0, 1}) {
                    const int by = 2 * y - 15 - 32 * ty, bx = 2 * x - 15 - 32 * tx;
                    if (filled.at({std::clamp(ty + dy, 0, rows - 1),
                                   std::clamp(tx + dx, 0, columns - 1)}))
                        weight += (dy == 0 ? 32 - by : by) * (dx == 0 ? 32 - bx : bx);
                }
            const int here = page(y, x), tone = tones[offset(y, w, x)];
            result.push_back(
                static_cast<unsigned char>(here + (((tone - here) * weight + 512) >> 10)));
        }
    return result;
}

}  // namespace model
