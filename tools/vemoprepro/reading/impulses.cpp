// Medians are slow, and few pixels need one: when four of its eight neighbours differ from a pixel
// by no more than an impulse does, then five of the nine values lie within that distance of the
// pixel, and so does their median. These neighbours are counted for whole rows at a time.
#include "reading/impulses.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

namespace tool::reading {
namespace {

// A pixel stands out when it differs by more than this from the median.
constexpr int kImpulse = 60;
// With so many neighbours that differ from it by no more than kImpulse a pixel does not stand out.
constexpr int kCompany = 4;
// One row in so many is looked at for the share of impulses.
constexpr int kSampledRows = 8;
constexpr int kRun = 128;  // pixels

using Counts = std::vector<unsigned char>;

// The pixel is not on the edge of the page.
unsigned char median_around(const Page& grey, int x, int y) {
    const unsigned char* above = grey.row(y - 1) + x - 1;
    const unsigned char* here = grey.row(y) + x - 1;
    const unsigned char* below = grey.row(y + 1) + x - 1;
    std::array<unsigned char, 9> around{above[0], above[1], above[2], here[0], here[1],
                                        here[2],  below[0], below[1], below[2]};
    std::nth_element(around.begin(), around.begin() + 4, around.end());
    return around[4];
}

// Adds 1 to the count of every pixel that differs from the other by no more than an impulse.
void count_alike(const unsigned char* __restrict own, const unsigned char* __restrict other,
                 unsigned char* __restrict count, int width) {
    for (int x = 0; x < width; ++x) {
        const auto apart =
            static_cast<unsigned char>(std::max(own[x], other[x]) - std::min(own[x], other[x]));
        count[x] = static_cast<unsigned char>(count[x] + (apart <= kImpulse ? 1 : 0));
    }
}

// How many of its 8 neighbours differ from each pixel of a row by no more than an impulse. The
// first and the last pixel get no count.
void count_company(const Page& grey, int y, Counts& company) {
    std::fill(company.begin(), company.end(), static_cast<unsigned char>(0));
    for (int v = y - 1; v <= y + 1; ++v) {
        for (int x = 0; x <= 2; ++x) {
            if (v == y && x == 1) continue;
            count_alike(grey.row(y) + 1, grey.row(v) + x, company.data() + 1, grey.width - 2);
        }
    }
}

// Calls found(x, median) for the impulses of row y. company: room for a count per pixel of a row.
template <class Found>
void for_each_impulse(const Page& grey, int y, Counts& company, Found found) {
    count_company(grey, y, company);
    const unsigned char* row = grey.row(y);
    for (int x = 1; x + 1 < grey.width; ++x) {
        if (company[static_cast<std::size_t>(x)] >= kCompany) continue;
        const unsigned char median = median_around(grey, x, y);
        if (std::abs(median - row[x]) > kImpulse) found(x, median);
    }
}

}  // namespace

ImpulseSample sample_impulses(const Page& grey) {
    if (grey.width < 3 || grey.height < 3) return {};
    std::int64_t impulses = 0, seen = 0, runs = 0, free_runs = 0;
    Counts company(static_cast<std::size_t>(grey.width));
    std::vector<bool> is_free;
    for (int y = 1; y + 1 < grey.height; y += kSampledRows) {
        is_free.assign(static_cast<std::size_t>(grey.width + kRun - 1) / kRun, true);
        for_each_impulse(grey, y, company, [&](int x, unsigned char) {
            ++impulses;
            is_free[static_cast<std::size_t>(x / kRun)] = false;
        });
        seen += grey.width - 2;
        runs += static_cast<std::int64_t>(is_free.size());
        free_runs += std::count(is_free.begin(), is_free.end(), true);
    }
    const auto share = [](std::int64_t part, std::int64_t all) {
        return static_cast<double>(part) / static_cast<double>(all);
    };
    return {share(impulses, seen), share(free_runs, runs)};
}

void remove_impulses(Page& grey) {
    Page result = copy_of(grey);
    Counts company(static_cast<std::size_t>(grey.width));
    for (int y = 1; y + 1 < grey.height; ++y) {
        unsigned char* row = result.row(y);
        for_each_impulse(grey, y, company, [&](int x, unsigned char median) { row[x] = median; });
    }
    grey = std::move(result);
}

}  // namespace tool::reading
