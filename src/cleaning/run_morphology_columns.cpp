// Along columns every operation is a pair of sliding windows over rows, all columns of a row at a
// time: a pixel becomes the OR (is there ink?) or the AND (is all ink?) of the rows of a window
// that starts or ends at it.
//
//   dilate        OR of n + 1 rows down, then of n + 1 rows up
//   erode         AND of n + 1 rows down, then up; rows outside the zone are white
//   remove_short  AND of n rows down: where runs of n start; OR of n rows up: those runs
//   fill_gaps     OR of n rows down, then AND of n rows up, which closes gaps below n
//
// A window of n rows is built by doubling: rows combined with the rows 1, 2, 4, ... further on, in
// place, since a pass in the direction of travel meets the rows it reads before they change. The
// cost is log2(n) passes over the zone and no memory.
//
// Closing would also fill the white above a column's first ink. What must stay white there is
// remembered before: for the first n - 1 rows, the OR of all rows from the top down to each.

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "cleaning/run_morphology.h"
#include "cleaning/try_buffer.h"

namespace cleaning {
namespace {

// The bytes of a row that hold the zone's columns. The pixels of the zone in the first and in the
// last of them are those of the masks; a single byte has both.
class ZoneRows {
  public:
    ZoneRows(std::uint8_t* image, std::int32_t stride, std::int32_t x0, std::int32_t x1,
             std::int32_t y0, std::int32_t y1)
        : first_row_(image + std::ptrdiff_t{y0} * stride + x0 / 8),
          stride_(stride),
          size_(static_cast<std::size_t>((std::int64_t{x1} + 7) / 8 - x0 / 8)),
          head_(static_cast<std::uint8_t>(0xFF >> (x0 % 8))),
          tail_(static_cast<std::uint8_t>(0xFF << (7 - (x1 - 1) % 8))),
          rows_(std::int64_t{y1} - y0) {
        if (size_ == 1) head_ = tail_ = head_ & tail_;
    }

    std::size_t size() const { return size_; }  // bytes of a row
    std::int64_t rows() const { return rows_; }
    std::uint8_t* row(std::int64_t y) const { return first_row_ + y * stride_; }

    void or_row(std::uint8_t* dst, const std::uint8_t* src) const {
        const std::size_t last = size_ - 1;
        dst[0] = static_cast<std::uint8_t>(dst[0] | (src[0] & head_));
        for (std::size_t i = 1; i < last; ++i) dst[i] = dst[i] | src[i];
        if (last > 0) dst[last] = static_cast<std::uint8_t>(dst[last] | (src[last] & tail_));
    }

    void and_row(std::uint8_t* dst, const std::uint8_t* src) const {
        const std::size_t last = size_ - 1;
        dst[0] = static_cast<std::uint8_t>(dst[0] & (src[0] | ~head_));
        for (std::size_t i = 1; i < last; ++i) dst[i] = dst[i] & src[i];
        if (last > 0) dst[last] = static_cast<std::uint8_t>(dst[last] & (src[last] | ~tail_));
    }

    void clear_row(std::uint8_t* dst) const {
        const std::size_t last = size_ - 1;
        dst[0] = static_cast<std::uint8_t>(dst[0] & ~head_);
        if (last > 1) std::memset(dst + 1, 0, last - 1);
        if (last > 0) dst[last] = static_cast<std::uint8_t>(dst[last] & ~tail_);
    }

  private:
    std::uint8_t* first_row_;
    std::ptrdiff_t stride_;
    std::size_t size_;
    std::uint8_t head_;
    std::uint8_t tail_;
    std::int64_t rows_;
};

enum class Combine { kOr, kAnd };
enum class Direction { kDown, kUp };
enum class Outside { kIgnored, kWhite };

// Combines each row with the following (kDown) or preceding (kUp) length - 1 rows.
template <Combine kCombine, Direction kDirection, Outside kOutside>
void slide_window(const ZoneRows& zone, std::int64_t length) {
    length = std::min(length, zone.rows() + 1);  // one more than all rows reaches outside already
    const auto row_from_end = [&](std::int64_t i) {
        return zone.row(kDirection == Direction::kDown ? i : zone.rows() - 1 - i);
    };
    for (std::int64_t have = 1; have < length;) {
        const std::int64_t step = std::min(have, length - have);
        for (std::int64_t i = 0; i < zone.rows() - step; ++i) {
            if constexpr (kCombine == Combine::kOr) {
                zone.or_row(row_from_end(i), row_from_end(i + step));
            } else {
                zone.and_row(row_from_end(i), row_from_end(i + step));
            }
        }
        if constexpr (kOutside == Outside::kWhite) {
            static_assert(kCombine == Combine::kAnd);
            for (std::int64_t i = std::max<std::int64_t>(zone.rows() - step, 0); i < zone.rows();
                 ++i) {
                zone.clear_row(row_from_end(i));
            }
        }
        have += step;
    }
}

bool nothing_to_do(std::int32_t n, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                   std::int32_t y1) {
    return n <= 0 || x0 >= x1 || y0 >= y1;
}

// For each of the first `count` rows the OR of the zone's rows down to it.
void collect_ink_above(const ZoneRows& zone, std::int64_t count, std::uint8_t* above) {
    std::memset(above, 0, zone.size());
    for (std::int64_t y = 0; y < count; ++y) {
        std::uint8_t* const current = above + static_cast<std::size_t>(y) * zone.size();
        if (y > 0) std::memcpy(current, current - zone.size(), zone.size());
        zone.or_row(current, zone.row(y));
    }
}

}  // namespace

std::int32_t v_fill_gaps(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                         std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                         std::int32_t y1) {
    // A gap is at least a pixel long: none is shorter than 1.
    if (n == 1 || nothing_to_do(n, x0, x1, y0, y1)) return 0;
    const ZoneRows zone(image, stride, x0, x1, y0, y1);
    const std::int64_t top_rows = std::min<std::int64_t>(n - 1, zone.rows());
    const TryBuffer<std::uint8_t> above(static_cast<std::size_t>(top_rows) * zone.size());
    if (!above) {
        diag::report(logger, diag::kOwner, diag::kErrorLevel, diag::kListGrowthCode,
                     diag::kNoMemoryText);
        return -1;
    }
    collect_ink_above(zone, top_rows, above.data());
    slide_window<Combine::kOr, Direction::kDown, Outside::kIgnored>(zone, n);
    slide_window<Combine::kAnd, Direction::kUp, Outside::kIgnored>(zone, n);
    for (std::int64_t y = 0; y < top_rows; ++y) {
        zone.and_row(zone.row(y), above.data() + static_cast<std::size_t>(y) * zone.size());
    }
    return 0;
}

std::int32_t v_remove_short(diag::LoggerSlot, std::int32_t n, std::uint8_t* image,
                            std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                            std::int32_t y1) {
    if (nothing_to_do(n, x0, x1, y0, y1)) return 0;
    const ZoneRows zone(image, stride, x0, x1, y0, y1);
    slide_window<Combine::kAnd, Direction::kDown, Outside::kWhite>(zone, n);
    slide_window<Combine::kOr, Direction::kUp, Outside::kIgnored>(zone, n);
    return 0;
}

std::int32_t v_dilate(diag::LoggerSlot, std::int32_t n, std::uint8_t* image, std::int32_t stride,
                      std::int32_t x0, std::int32_t x1, std::int32_t y0, std::int32_t y1) {
    if (nothing_to_do(n, x0, x1, y0, y1)) return 0;
    const ZoneRows zone(image, stride, x0, x1, y0, y1);
    slide_window<Combine::kOr, Direction::kDown, Outside::kIgnored>(zone, std::int64_t{n} + 1);
    slide_window<Combine::kOr, Direction::kUp, Outside::kIgnored>(zone, std::int64_t{n} + 1);
    return 0;
}

std::int32_t v_erode(diag::LoggerSlot, std::int32_t n, std::uint8_t* image, std::int32_t stride,
                     std::int32_t x0, std::int32_t x1, std::int32_t y0, std::int32_t y1) {
    if (nothing_to_do(n, x0, x1, y0, y1)) return 0;
    const ZoneRows zone(image, stride, x0, x1, y0, y1);
    slide_window<Combine::kAnd, Direction::kDown, Outside::kWhite>(zone, std::int64_t{n} + 1);
    slide_window<Combine::kAnd, Direction::kUp, Outside::kWhite>(zone, std::int64_t{n} + 1);
    return 0;
}

}  // namespace cleaning
