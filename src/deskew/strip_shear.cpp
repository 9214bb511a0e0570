// A strip is a column of 64-bit words. Its words of the row-sheared page are read straight out of
// the source, at any bit offset, into one array from top to bottom; a shear of columns then is, for
// each group of columns that move together, "or the array under the group's mask into a second
// array, some places further": a loop over consecutive words that compilers turn into vectors. No
// page-sized working image is needed, and the result is written once.
#include "deskew/strip_shear.h"

#include <algorithm>

#include "deskew/bit_words.h"
#include "simd/shift_bits.h"

namespace deskew {

StripShear::StripShear(common::BitonalView source, const frame::Buffer<std::int64_t>& row_shifts,
                       const std::vector<ColumnStep>& steps, common::MutableBitonalView result)
    : source_(source),
      row_shifts_(row_shifts),
      steps_(steps),
      result_(result),
      sheared_(static_cast<std::size_t>(source.height)),
      moved_(static_cast<std::size_t>(result.height)) {}

std::int64_t StripShear::strips() const {
    return (std::int64_t{result_.width} + kWordPixels - 1) / kWordPixels;
}

void StripShear::run(std::int64_t strip) {
    gather_rows(strip);
    move_columns(strip);
    store_rows(strip);
}

void StripShear::gather_rows(std::int64_t strip) {
    for (std::int32_t y = 0; y < source_.height; ++y) {
        const auto row = static_cast<std::size_t>(y);
        sheared_[row] = word_at(source_.row(y), source_.width, source_.stride,
                                strip * kWordPixels - row_shifts_[row]);
    }
}

void StripShear::move_columns(std::int64_t strip) {
    std::fill(moved_.begin(), moved_.end(), std::uint64_t{0});
    const std::int64_t left = strip * kWordPixels;
    const std::int64_t right = left + kWordPixels;
    const auto ends_left = [left](const ColumnStep& step) { return step.end <= left; };
    auto step = std::partition_point(steps_.begin(), steps_.end(), ends_left);
    for (; step != steps_.end() && step->begin < right; ++step) {
        const std::uint64_t mask =
            span_mask(std::max(step->begin, left) - left, std::min(step->end, right) - left);
        const std::uint64_t* from = sheared_.data();
        std::uint64_t* to = moved_.data() + step->down;
        for (std::size_t y = 0; y < sheared_.size(); ++y) to[y] |= from[y] & mask;
    }
}

void StripShear::store_rows(std::int64_t strip) const {
    const std::int64_t byte = strip * kWordBytes;
    const std::int64_t room = common::bitonal_bytes(result_.width) - byte;
    for (std::int32_t y = 0; y < result_.height; ++y) {
        store_word(result_.row(y) + byte, moved_[static_cast<std::size_t>(y)], room);
    }
}

void shear_rows(common::BitonalView source, const frame::Buffer<std::int64_t>& row_shifts,
                common::MutableBitonalView result) {
    const auto source_bytes = static_cast<std::size_t>(common::bitonal_bytes(source.width));
    const auto result_bytes = static_cast<std::size_t>(common::bitonal_bytes(result.width));
    for (std::int32_t y = 0; y < result.height; ++y) {
        const auto shift = static_cast<unsigned>(row_shifts[static_cast<std::size_t>(y)]);
        simd::shift_right(source.row(y), source_bytes, shift, result.row(y), result_bytes);
    }
}

}  // namespace deskew
