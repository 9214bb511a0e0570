// The paper's grey is found block by block: the upper quartile of a block's greys, which letters do
// not reach, closed over the neighbouring blocks, so that wide ink does not count as paper either.
// Between the blocks' centres it is interpolated.
#include "reading/reading_grey.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <utility>
#include <vector>

#include "page/paper_scale.h"

namespace tool {
namespace {

// A pixel stands out when it differs by more than this from the median.
constexpr int kImpulse = 60;
// The share of impulses is taken from every so manyth row.
constexpr int kSampledRows = 8;

constexpr double kBlock = 16;
constexpr int kNarrowestBlock = 16;  // fewer pixels hold no certain quartile
constexpr int kWidestBlock = 64;     // keeps the interpolation below 2^31
// Blocks that the closing reaches: ink up to 7 blocks wide, 9 mm, is taken off the paper.
constexpr int kReach = 3;
constexpr int kPaper = 240;
constexpr int kDarkestPaper = 16;

// Times the difference between a pixel and the mean of the 9 around it.
constexpr int kSharpening = 1;

// Less contrast than this is noise of the paper.
constexpr int kLeastContrast = 20;

// Of the 9 pixels around one; all of the inside of the page have them.
unsigned char median_around(const Page& grey, int x, int y) {
    const unsigned char* a = grey.row(y - 1) + x - 1;
    const unsigned char* b = grey.row(y) + x - 1;
    const unsigned char* c = grey.row(y + 1) + x - 1;
    std::array<unsigned char, 9> around{a[0], a[1], a[2], b[0], b[1], b[2], c[0], c[1], c[2]};
    std::nth_element(around.begin(), around.begin() + 4, around.end());
    return around[4];
}

// With four neighbours that differ no more than an impulse does, the median differs no more.
constexpr int kCompany = 4;

// Adds 1 to the count of every pixel that differs from the other by no more than an impulse.
void count_alike(const unsigned char* __restrict own, const unsigned char* __restrict other,
                 unsigned char* __restrict count, int width) {
    for (int x = 0; x < width; ++x) {
        const auto apart =
            static_cast<unsigned char>(std::max(own[x], other[x]) - std::min(own[x], other[x]));
        count[x] = static_cast<unsigned char>(count[x] + (apart <= kImpulse ? 1 : 0));
    }
}

// How many of its 8 neighbours differ from each pixel of a row by no more than an impulse. Pixels
// without 8 neighbours are not counted.
void count_company(const Page& grey, int y, std::vector<unsigned char>& company) {
    std::fill(company.begin(), company.end(), static_cast<unsigned char>(0));
    for (int v = y - 1; v <= y + 1; ++v) {
        for (int x = 0; x <= 2; ++x) {
            if (v != y || x != 1) {
                count_alike(grey.row(y) + 1, grey.row(v) + x, company.data() + 1, grey.width - 2);
            }
        }
    }
}

// Calls found(x, median) for the impulses of row y.
template <class Found>
void for_each_impulse(const Page& grey, int y, std::vector<unsigned char>& company, Found found) {
    count_company(grey, y, company);
    const unsigned char* row = grey.row(y);
    for (int x = 1; x + 1 < grey.width; ++x) {
        if (company[static_cast<std::size_t>(x)] >= kCompany) continue;
        const unsigned char median = median_around(grey, x, y);
        if (std::abs(median - row[x]) > kImpulse) found(x, median);
    }
}

// One value per block.
struct Blocks {
    int side, across, down;
    std::vector<int> values;

    explicit Blocks(const Page& page)
        : side(std::clamp(scaled_length(page, kBlock), kNarrowestBlock, kWidestBlock)),
          across((page.width + side - 1) / side),
          down((page.height + side - 1) / side),
          values(static_cast<std::size_t>(across) * static_cast<std::size_t>(down)) {}

    int& at(int i, int j) {
        return values[static_cast<std::size_t>(j) * static_cast<std::size_t>(across) +
                      static_cast<std::size_t>(i)];
    }
    int near(int i, int j) const {
        return const_cast<Blocks*>(this)->at(std::clamp(i, 0, across - 1),
                                             std::clamp(j, 0, down - 1));
    }
};

int upper_quartile(const Page& grey, int x0, int x1, int y0, int y1) {
    std::array<int, 256> counts{};
    for (int y = y0; y < y1; ++y) {
        for (int x = x0; x < x1; ++x) ++counts[grey.row(y)[x]];
    }
    const int wanted = (x1 - x0) * (y1 - y0) / 4;
    int level = 255;
    for (int seen = counts[255]; level > 0 && seen < wanted;) {
        seen += counts[static_cast<std::size_t>(--level)];
    }
    return level;
}

using Combine = std::function<int(const Blocks&, int i, int j, int di, int dj)>;

// Replaces every value by what the row, and then the column, of blocks around it combine to.
void combine_around(Blocks& blocks, const Combine& combine) {
    for (const bool rows : {true, false}) {
        const Blocks before = blocks;
        for (int j = 0; j < blocks.down; ++j) {
            for (int i = 0; i < blocks.across; ++i) {
                blocks.at(i, j) = combine(before, i, j, rows ? 1 : 0, rows ? 0 : 1);
            }
        }
    }
}

int largest(const Blocks& blocks, int i, int j, int di, int dj) {
    int value = 0;
    for (int k = -kReach; k <= kReach; ++k) {
        value = std::max(value, blocks.near(i + k * di, j + k * dj));
    }
    return value;
}

int smallest(const Blocks& blocks, int i, int j, int di, int dj) {
    int value = 255;
    for (int k = -kReach; k <= kReach; ++k) {
        value = std::min(value, blocks.near(i + k * di, j + k * dj));
    }
    return value;
}

int mean(const Blocks& blocks, int i, int j, int di, int dj) {
    int sum = 0;
    for (int k = -kReach; k <= kReach; ++k) sum += blocks.near(i + k * di, j + k * dj);
    return sum / (2 * kReach + 1);
}

Blocks paper_of(const Page& grey) {
    Blocks paper(grey);
    const int side = paper.side;
    for (int j = 0; j < paper.down; ++j) {
        for (int i = 0; i < paper.across; ++i) {
            paper.at(i, j) = upper_quartile(grey, i * side, std::min(grey.width, (i + 1) * side),
                                            j * side, std::min(grey.height, (j + 1) * side));
        }
    }
    combine_around(paper, largest);
    combine_around(paper, smallest);
    combine_around(paper, mean);
    return paper;
}

// Where a pixel lies between two blocks' centres: the first of them and 0 .. 2 * side - 1.
std::pair<int, int> between_blocks(int x, int side) {
    const int doubled = 2 * x + 1 + side;  // never negative, block -1 comes first
    return {doubled / (2 * side) - 1, doubled % (2 * side)};
}

// The means of 4 x 4 pixels, which noise does not reach, over a block of 16 x 16: least and most.
std::pair<int, int> soft_range(const Page& grey, int x0, int y0) {
    int least = 255, most = 0;
    for (int y = y0; y < y0 + 16; y += 4) {
        for (int x = x0; x < x0 + 16; x += 4) {
            int sum = 0;
            for (int v = y; v < y + 4; ++v) {
                for (int u = x; u < x + 4; ++u) sum += grey.row(v)[u];
            }
            least = std::min(least, sum / 16);
            most = std::max(most, sum / 16);
        }
    }
    return {least, most};
}

int contrast_of_block(const Page& grey, int x0, int y0, int side) {
    int least = 1020, most = 0;
    for (int y = y0; y < y0 + side; ++y) {
        const unsigned char* row = grey.row(y);
        const unsigned char* below = grey.row(y + 1);
        for (int x = x0; x < x0 + side; ++x) {
            const int sum = row[x] + row[x + 1] + below[x] + below[x + 1];
            least = std::min(least, sum);
            most = std::max(most, sum);
        }
    }
    return (most - least) / 4;
}

bool all_painted(const Page& cropped, int x0, int x1, int y0, int y1) {
    for (int y = y0; y < y1; ++y) {
        for (int x = x0; x < x1; ++x) {
            if (cropped.row(y)[x] != 255) return false;
        }
    }
    return true;
}

}  // namespace

double impulse_share(const Page& grey) {
    if (grey.width < 3 || grey.height < 3) return 0;
    std::int64_t impulses = 0, seen = 0;
    std::vector<unsigned char> company(static_cast<std::size_t>(grey.width));
    for (int y = 1; y + 1 < grey.height; y += kSampledRows, seen += grey.width - 2) {
        for_each_impulse(grey, y, company, [&](int, unsigned char) { ++impulses; });
    }
    return static_cast<double>(impulses) / static_cast<double>(seen);
}

void remove_impulses(Page& grey) {
    Page result = copy_of(grey);
    std::vector<unsigned char> company(static_cast<std::size_t>(grey.width));
    for (int y = 1; y + 1 < grey.height; ++y) {
        unsigned char* row = result.row(y);
        for_each_impulse(grey, y, company, [&](int x, unsigned char median) { row[x] = median; });
    }
    grey = std::move(result);
}

void sharpen(Page& grey) {
    const Page soft = copy_of(grey);
    for (int y = 1; y + 1 < grey.height; ++y) {
        unsigned char* row = grey.row(y);
        for (int x = 1; x + 1 < grey.width; ++x) {
            int around = 0;
            for (int v = y - 1; v <= y + 1; ++v) {
                const unsigned char* at = soft.row(v) + x;
                around += at[-1] + at[0] + at[1];
            }
            const int own = soft.row(y)[x];
            row[x] = static_cast<unsigned char>(
                std::clamp(own + kSharpening * (9 * own - around) / 9, 0, 255));
        }
    }
}

void even_light(Page& grey) {
    const Blocks paper = paper_of(grey);
    const int whole = 2 * paper.side;
    std::vector<int> here(static_cast<std::size_t>(paper.across) + 2);  // the row's, per block
    std::vector<std::pair<int, int>> places;
    for (int x = 0; x < grey.width; ++x) places.push_back(between_blocks(x, paper.side));
    for (int y = 0; y < grey.height; ++y) {
        const auto [j, down] = between_blocks(y, paper.side);
        for (int i = 0; i < paper.across + 2; ++i) {
            here[static_cast<std::size_t>(i)] =
                paper.near(i - 1, j) * (whole - down) + paper.near(i - 1, j + 1) * down;
        }
        unsigned char* row = grey.row(y);
        for (int x = 0; x < grey.width; ++x) {
            const auto [i, across] = places[static_cast<std::size_t>(x)];
            const int* pair = &here[static_cast<std::size_t>(i + 1)];
            const int level = std::max(pair[0] * (whole - across) + pair[1] * across,
                                       kDarkestPaper * whole * whole);
            const int evened = (row[x] * kPaper * whole * whole + level / 2) / level;
            row[x] = static_cast<unsigned char>(std::min(evened, 255));
        }
    }
}

int ink_contrast(const Page& grey) {
    const int side = std::max(2, scaled_length(grey, kBlock));
    std::vector<int> contrasts;
    for (int y = 0; y + side < grey.height; y += side) {
        for (int x = 0; x + side < grey.width; x += side) {
            if (const int contrast = contrast_of_block(grey, x, y, side);
                contrast >= kLeastContrast) {
                contrasts.push_back(contrast);
            }
        }
    }
    if (contrasts.empty()) return 0;
    const auto tenth = contrasts.begin() + static_cast<std::ptrdiff_t>(contrasts.size() * 9 / 10);
    std::nth_element(contrasts.begin(), tenth, contrasts.end());
    return *tenth;
}

bool print_was_painted(const Page& grey, const Page& cropped) {
    // Deep in the border there is nothing but its own dark; the page's rim lies within a block of
    // what was left.
    int printed = 0, painted = 0;
    for (int y = 16; y + 32 <= grey.height; y += 16) {
        for (int x = 16; x + 32 <= grey.width; x += 16) {
            const auto [least, most] = soft_range(grey, x, y);
            if ((most - least) * 5 < most * 2) continue;
            ++printed;
            painted += all_painted(cropped, x - 16, x + 32, y - 16, y + 32);
        }
    }
    return painted * 50 > printed;
}

}  // namespace tool
