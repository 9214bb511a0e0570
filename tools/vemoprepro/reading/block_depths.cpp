// Noise is measured by the difference of two second derivatives (J. Immerkaer, Fast noise variance
// estimation, 1996), which straight edges leave out, and by its median, which letters leave alone.
// One row in two or four is enough for all of this.
#include "reading/block_depths.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "reading/grey_counts.h"
#include "reading/paper.h"

namespace tool::reading {
namespace {

constexpr int kDarkestPaper = 16;
// A block has ink when one pixel in 32 is as deep as this and as so many deviations of the noise.
constexpr int kDarkShare = 32;
constexpr int kInk = 12;
constexpr double kInkOverNoise = 6;
constexpr int kNoiseRows = 4;
constexpr int kDepthRows = 2;

// Sizes of the responses to noise in the rows that are looked at in a row of blocks.
class NoiseRows {
  public:
    explicit NoiseRows(const Page& grey)
        : grey_(grey), across_(static_cast<std::size_t>(grey.width)) {}

    // For the blocks of which this is one.
    void begin(const Box& block) {
        const int bottom = std::min(block.y + block.height, grey_.height - 1);
        rows_ = 0;
        for (int y = std::max(block.y, 1); y < bottom; y += kNoiseRows) ++rows_;
        sizes_.resize(static_cast<std::size_t>(rows_) * across_.size());
        for (int k = 0; k < rows_; ++k) respond(std::max(block.y, 1) + k * kNoiseRows, k);
    }

    // The deviation of the noise, in greys.
    double deviation(const Box& block) const {
        const int x = std::max(block.x, 1);
        const int width = std::min(block.x + block.width, grey_.width - 1) - x;
        if (width <= 0 || rows_ == 0) return 0;
        const GreyCounts counts(sizes_.data() + x, across_.size(), width, rows_);
        // The operator's deviation is 6 times that of the noise, the median of normally distributed
        // sizes 0.6745 times their deviation.
        return counts.reached_from_below(counts.counted() / 2) * kParts / (6 * 0.6745);
    }

  private:
    static constexpr int kParts = 4;  // of a response fall together, and the strongest ones

    void respond(int y, int k) {
        const unsigned char* __restrict above = grey_.row(y - 1);
        const unsigned char* __restrict own = grey_.row(y);
        const unsigned char* __restrict below = grey_.row(y + 1);
        std::int16_t* __restrict across = across_.data();
        for (int x = 0; x < grey_.width; ++x) {
            across[x] = static_cast<std::int16_t>(above[x] - 2 * own[x] + below[x]);
        }
        unsigned char* __restrict sizes =
            sizes_.data() + static_cast<std::size_t>(k) * across_.size();
        for (int x = 1; x + 1 < grey_.width; ++x) {
            const auto response =
                static_cast<std::int16_t>(across[x - 1] - 2 * across[x] + across[x + 1]);
            const std::int16_t size = std::max(response, static_cast<std::int16_t>(-response));
            constexpr std::int16_t kMost = 255 * kParts;
            sizes[x] = static_cast<unsigned char>(std::min(size, kMost) / kParts);
        }
    }

    const Page& grey_;
    int rows_ = 0;
    std::vector<std::int16_t> across_;
    std::vector<unsigned char> sizes_;
};

// What is known of blocks before their paper is.
struct BlockGreys {
    BlockGrid upper_quartiles;
    std::vector<int> darkest;
};

BlockGreys greys_of(const Page& grey) {
    BlockGreys greys{BlockGrid(grey), {}};
    BlockGrid& grid = greys.upper_quartiles;
    greys.darkest.reserve(grid.values.size());
    for (int j = 0; j < grid.down; ++j) {
        for (int i = 0; i < grid.across; ++i) {
            const Box box = grid.box(grey, i, j);
            const GreyCounts counts = count_greys(grey, box);
            grid.at(i, j) = upper_quartile(counts);
            greys.darkest.push_back(counts.reached_from_below(
                std::max(1, box.width * box.height / kDepthRows / kDarkShare)));
        }
    }
    return greys;
}

void add_depths(const GreyCounts& greys, BlockDepths& block,
                std::array<std::int64_t, 256>& of_ink) {
    int darker = 0;
    std::int64_t squares = 0, cubes = 0;
    for (int level = greys.no_lower_than(); level < std::min(block.paper, 256); ++level) {
        const int count = greys.of(level);
        if (count == 0) continue;
        // Divided as floating point numbers, which is as exact here, and faster.
        const int lightness = static_cast<int>(static_cast<float>(level * kWhiteDepth) /
                                               static_cast<float>(block.paper));
        const int depth = kWhiteDepth - lightness;
        of_ink[static_cast<std::size_t>(depth)] += count;
        darker += count;
        squares += std::int64_t{count} * (depth * depth);
        cubes += std::int64_t{count} * (depth * depth * depth);
    }
    of_ink[0] += greys.counted() - darker;
    block.squares = static_cast<double>(squares);
    block.cubes = static_cast<double>(cubes);
}

}  // namespace

PageDepths depths_of(const Page& grey) {
    BlockGreys greys = greys_of(grey);
    Paper paper = paper_from(std::move(greys.upper_quartiles));
    PageDepths depths{std::move(paper.greys), std::move(paper.seen), {}};
    depths.blocks.resize(depths.paper.values.size());
    NoiseRows noise(grey);
    for (int j = 0; j < depths.paper.down; ++j) {
        noise.begin(depths.paper.box(grey, 0, j));
        for (int i = 0; i < depths.paper.across; ++i) {
            const Box box = depths.paper.box(grey, i, j);
            const int darkest = greys.darkest[depths.paper.index(i, j)];
            BlockDepths& block = depths.blocks[depths.paper.index(i, j)];
            block.paper = std::max(depths.paper.at(i, j), kDarkestPaper);
            block.noise = noise.deviation(box) * kWhiteDepth / block.paper;
            block.contrast = block.paper - darkest;
            const int depth = kWhiteDepth - darkest * kWhiteDepth / block.paper;
            block.has_ink = depth >= std::max<double>(kInk, kInkOverNoise * block.noise);
            if (block.has_ink) add_depths(count_greys(grey, box), block, depths.of_ink);
        }
    }
    return depths;
}

bool stands_out(const PageDepths& depths) {
    const auto blocks = std::count_if(depths.blocks.begin(), depths.blocks.end(),
                                      [](const BlockDepths& block) { return block.has_ink; });
    return blocks * 100 >= static_cast<std::ptrdiff_t>(depths.blocks.size());
}

double depth_of_ink(const PageDepths& depths, int i, int j) {
    const BlockGrid& grid = depths.paper;
    double squares = 0, cubes = 0;
    for (int v = std::max(0, j - 1); v <= std::min(grid.down - 1, j + 1); ++v) {
        for (int u = std::max(0, i - 1); u <= std::min(grid.across - 1, i + 1); ++u) {
            const BlockDepths& block = depths.blocks[grid.index(u, v)];
            squares += block.squares;
            cubes += block.cubes;
        }
    }
    return squares > 0 ? cubes / squares : 0;
}

}  // namespace tool::reading
