// Print that is much paler than the rest of its page breaks into crumbs by the page's threshold. So
// the page is made again with a lower one wherever all ink around is pale. Mended letters have
// fewer pieces and more closed bowls than broken ones, noise and stains that come up have more
// pieces: the second page is the better one when its Euler number is clearly the smaller one.
#include "reading/paper_bits.h"

#include <utility>

#include "reading/block_depths.h"
#include "reading/euler_number.h"
#include "reading/light_print.h"
#include "reading/limit_bits.h"
#include "reading/paper_limits.h"
#include "reading/resample.h"

namespace tool::reading {
namespace {

// The threshold for pale print is at least this share of the page's.
constexpr double kLowestShare = 0.4;
// The page with pale print is taken when this share of the pieces is left.
constexpr double kMended = 5.0 / 6;
// A lower threshold is tried where it would be below this share in one block with ink of so many.
constexpr double kPale = 0.8;
constexpr int kPaleBlocks = 8;

// Whether enough of the page's ink is so pale that a lower threshold may mend it.
bool has_pale_print(const PageDepths& depths, double threshold) {
    int pale = 0, all = 0;
    for (int j = 0; j < depths.paper.down; ++j) {
        for (int i = 0; i < depths.paper.across; ++i) {
            if (!depths.blocks[depths.paper.index(i, j)].has_ink) continue;
            pale += kPaleShare * depth_of_ink(depths, i, j) < kPale * threshold ? 1 : 0;
            ++all;
        }
    }
    return pale * kPaleBlocks > all;
}

Page bits_of(const Page& grey, const PageDepths& depths) {
    const double threshold = page_threshold(depths);
    Page bits = bits_within(grey, limits(depths, threshold, 1));
    if (!has_pale_print(depths, threshold)) return bits;
    Page with_pale = bits_within(grey, limits(depths, threshold, kLowestShare));
    const auto pieces = static_cast<double>(euler_number(with_pale));
    const bool mended = pieces > 0 && pieces < kMended * static_cast<double>(euler_number(bits));
    return mended ? std::move(with_pale) : std::move(bits);
}

}  // namespace

Page bits_by_paper(const Page& grey) {
    return bits_of(grey, depths_of(grey));
}

Page bits_by_paper_with_light_print(const Page& grey) {
    const PageDepths depths = depths_of(grey);
    Page bits = bits_of(grey, depths);
    add_light_print(bits, grey, depths);
    return bits;
}

// Depths are the same at any resolution.
Page doubled_bits_by_paper(const Page& grey) {
    PageDepths depths = depths_of(grey);
    depths.paper.side *= 2;
    const Page large = doubled(grey);
    Page bits = bits_of(large, depths);
    add_light_print(bits, large, depths);
    return bits;
}

}  // namespace tool::reading
