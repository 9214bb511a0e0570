// Counting is bound by the increments, so two neighbouring pixels are counted by one, in a table of
// all pairs, which is folded into the levels at the end. Pairs are often equal to the ones before
// them; several tables in turn spare an increment the wait for the one before it. Small images are
// not worth the tables.
#include "binarization/otsu.h"

#include <algorithm>
#include <cstring>

#include "frame/buffer.h"

namespace binarization {
namespace {

constexpr std::size_t kPairs = 65536;
constexpr std::size_t kTables = 4;
constexpr std::size_t kLeastPixels = 4 * kPairs;  // that pay for clearing and folding the tables
constexpr std::uint64_t kEachPair = 0x0001000100010001U;

void count_pixels(const std::uint8_t* row, std::size_t width, Histogram& total) {
    for (std::size_t x = 0; x < width; ++x) ++total[row[x]];
}

constexpr std::size_t kGroup = 32;

std::uint16_t pair_at(const std::uint8_t* pixels) {
    std::uint16_t pair;
    std::memcpy(&pair, pixels, sizeof pair);
    return pair;
}

// Whether all pixels of a group have one value or alternate between two.
bool repeats_first_pair(const std::uint8_t* group) {
    std::array<std::uint64_t, kGroup / 8> words;
    std::memcpy(words.data(), group, kGroup);
    const std::uint64_t run = (words[0] & 0xFFFF) * kEachPair;
    return ((words[0] ^ run) | (words[1] ^ run) | (words[2] ^ run) | (words[3] ^ run)) == 0;
}

// Counts whole groups; returns how many pixels that were. Pages without noise have long runs of one
// value, which are counted at once; shorter ones come and go too often to be worth it.
std::size_t count_pairs(const std::uint8_t* row, std::size_t width, std::uint32_t* tables) {
    std::size_t x = 0;
    for (; x + kGroup <= width; x += kGroup) {
        const std::uint8_t* group = row + x;
        if (repeats_first_pair(group)) {
            tables[pair_at(group)] += kGroup / 2;
            continue;
        }
        for (std::size_t i = 0; i < kGroup / 2; ++i) {
            ++tables[i % kTables * kPairs + pair_at(group + 2 * i)];
        }
    }
    return x;
}

// Moves the counts of pairs over to the levels and clears them.
void fold_pairs(frame::Buffer<std::uint32_t>& tables, Histogram& total) {
    for (std::size_t high = 0; high < 256; ++high) {
        std::uint64_t of_high = 0;
        for (std::size_t low = 0; low < 256; ++low) {
            const std::size_t pair = high * 256 + low;
            std::uint64_t count = 0;
            for (std::size_t table = 0; table < kTables; ++table)
                count += tables[table * kPairs + pair];
            total[low] += count;
            of_high += count;
        }
        total[high] += of_high;
    }
    std::fill(tables.begin(), tables.end(), 0U);
}

double mean(double sum, double count) {
    return count == 0 ? 0 : sum / count;
}

double squared_distance(double a, double b) {
    return (a - b) * (a - b);
}

}  // namespace

Histogram histogram(const common::GreyView& grey) {
    const auto width = static_cast<std::size_t>(grey.width);
    Histogram total{};
    if (width * static_cast<std::size_t>(grey.height) < kLeastPixels) {
        for (int y = 0; y < grey.height; ++y) count_pixels(grey.row(y), width, total);
        return total;
    }
    auto tables = frame::Buffer<std::uint32_t>::zeroed(kTables * kPairs);
    std::size_t counted = 0;  // since the last fold; what 32 bits hold
    for (int y = 0; y < grey.height; ++y) {
        const std::uint8_t* row = grey.row(y);
        const std::size_t done = count_pairs(row, width, tables.data());
        count_pixels(row + done, width - done, total);
        counted += width;
        if (counted > INT32_MAX) {
            fold_pairs(tables, total);
            counted = 0;
        }
    }
    fold_pairs(tables, total);
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
