// A strip is a column of 64-bit words, two words wide so that every cache line on the way down
// serves both. Its words of the row-sheared page are read straight out of the source, at any bit
// offset, into arrays from top to bottom; a shear of columns then is, for each group of columns
// that move together, "or the array under the group's mask into a second array, some places
// further": a loop over consecutive words that compilers turn into vectors. No page-sized working
// image is needed, and the result is written once.
#include "deskew/strip_shear.h"

#include <algorithm>

#include "ink/bit_words.h"
#include "simd/bits/shift_bits.h"

namespace deskew {
namespace {

constexpr std::int64_t kStripWords = kStripPixels / ink::kWordPixels;

frame::Buffer<std::uint64_t> strip_words(std::int32_t height) {
    return frame::Buffer<std::uint64_t>(static_cast<std::size_t>(height * kStripWords));
}

}  // namespace

StripShear::StripShear(common::BitonalView source, const frame::Buffer<std::int64_t>& row_shifts,
                       const std::vector<ColumnStep>& steps, common::MutableBitonalView result)
    : source_(source),
      row_shifts_(row_shifts),
      steps_(steps),
      result_(result),
      sheared_(strip_words(source.height)),
      moved_(strip_words(result.height)) {}

std::int64_t StripShear::strips() const {
    return (std::int64_t{result_.width} + kStripPixels - 1) / kStripPixels;
}

void StripShear::run(std::int64_t strip) {
    gather_rows(strip);
    std::fill(moved_.begin(), moved_.end(), std::uint64_t{0});
    for (std::int64_t word = 0; word < kStripWords; ++word) move_columns(strip, word);
    store_rows(strip);
}

void StripShear::gather_rows(std::int64_t strip) {
    for (std::int32_t y = 0; y < source_.height; ++y) {
        const std::uint8_t* row = source_.row(y);
        std::int64_t x = strip * kStripPixels - row_shifts_[static_cast<std::size_t>(y)];
        std::uint64_t* to = sheared_.data() + y;
        for (std::int64_t word = 0; word < kStripWords; ++word) {
            to[word * source_.height] = ink::word_at(row, source_.width, source_.stride, x);
            x += ink::kWordPixels;
        }
    }
}

void StripShear::move_columns(std::int64_t strip, std::int64_t word) {
    const std::int64_t left = strip * kStripPixels + word * ink::kWordPixels;
    const std::int64_t right = left + ink::kWordPixels;
    const std::uint64_t* from = sheared_.data() + word * source_.height;
    std::uint64_t* words = moved_.data() + word * result_.height;
    const auto ends_left = [left](const ColumnStep& step) { return step.end <= left; };
    auto step = std::partition_point(steps_.begin(), steps_.end(), ends_left);
    for (; step != steps_.end() && step->begin < right; ++step) {
        const std::uint64_t mask =
            ink::span_mask(std::max(step->begin, left) - left, std::min(step->end, right) - left);
        std::uint64_t* to = words + step->down;
        for (std::int32_t y = 0; y < source_.height; ++y) to[y] |= from[y] & mask;
    }
}

void StripShear::store_rows(std::int64_t strip) const {
    const std::int64_t begin = strip * kStripWords * ink::kWordBytes;
    const std::int64_t bytes = common::bitonal_bytes(result_.width);
    for (std::int32_t y = 0; y < result_.height; ++y) {
        const std::uint64_t* from = moved_.data() + y;
        std::uint8_t* row = result_.row(y);
        for (std::int64_t word = 0; word < kStripWords; ++word) {
            const std::int64_t byte = begin + word * ink::kWordBytes;
            if (byte >= bytes) break;
            ink::store_word(row + byte, from[word * result_.height], bytes - byte);
        }
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
