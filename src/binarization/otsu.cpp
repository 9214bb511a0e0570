// The histogram is counted in several tables: neighbouring pixels are often equal, and counting
// them in one table would wait for the same counter again and again. Eight equal pixels, which most
// of a clean page consists of, are counted at once.
#include "binarization/otsu.h"

#include <algorithm>
#include <cstring>

namespace binarization {
namespace {

constexpr int kTables = 4;
constexpr std::uint64_t kEachByte = 0x0101010101010101U;

// 32 bits are enough for the pixels of a row.
using Tables = std::array<std::array<std::uint32_t, 256>, kTables>;

void count_row(const std::uint8_t* row, std::size_t width, Tables& tables) {
    std::size_t x = 0;
    for (; x + 8 <= width; x += 8) {
        std::uint64_t eight;
        std::memcpy(&eight, row + x, 8);
        if (eight == (eight & 0xFF) * kEachByte) {
            tables[0][eight & 0xFF] += 8;
            continue;
        }
        for (std::size_t i = 0; i < 8; ++i) ++tables[i % kTables][eight >> (8 * i) & 0xFF];
    }
    for (; x < width; ++x) ++tables[0][row[x]];
}

double mean(double sum, double count) {
    return count == 0 ? 0 : sum / count;
}

double squared_distance(double a, double b) {
    return (a - b) * (a - b);
}

}  // namespace

Histogram histogram(const common::GreyView& grey) {
    // Rows are counted in blocks that cannot overflow the 32-bit tables.
    const std::int32_t block = INT32_MAX / grey.width;
    Histogram total{};
    for (std::int32_t first = 0; first < grey.height;) {
        const std::int32_t rows = std::min(block, grey.height - first);
        Tables tables{};
        for (std::int32_t y = first; y < first + rows; ++y) {
            count_row(grey.row(y), static_cast<std::size_t>(grey.width), tables);
        }
        for (std::size_t level = 0; level < total.size(); ++level) {
            for (const auto& table : tables) total[level] += table[level];
        }
        first += rows;
    }
    return total;
}

std::uint8_t otsu_threshold(const Histogram& histogram) {
    std::uint64_t pixels = 0;
    std::uint64_t sum = 0;
    for (std::size_t level = 0; level < histogram.size(); ++level) {
        pixels += histogram[level];
        sum += level * histogram[level];
    }
    const double all = static_cast<double>(pixels);
    const double page_mean = mean(static_cast<double>(sum), all);

    std::uint64_t dark_pixels = 0;
    std::uint64_t dark_sum = 0;
    double best = 0;
    std::uint8_t threshold = 0;
    for (std::size_t level = 0; level < histogram.size(); ++level) {
        dark_pixels += histogram[level];
        dark_sum += level * histogram[level];
        const double dark = static_cast<double>(dark_pixels);
        const double light = static_cast<double>(pixels - dark_pixels);
        const double dark_mean = mean(static_cast<double>(dark_sum), dark);
        const double light_mean = mean(static_cast<double>(sum - dark_sum), light);
        const double between = dark * squared_distance(dark_mean, page_mean) +
                               light * squared_distance(light_mean, page_mean);
        if (between > best) {
            best = between;
            threshold = static_cast<std::uint8_t>(level);
        }
    }
    return threshold;
}

}  // namespace binarization
