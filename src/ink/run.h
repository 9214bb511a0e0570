// Runs of ink: the record that lists of bitonal components are made of, and the plain pair.
#pragma once

#include <cstdint>

namespace ink {

// Coordinates are 16-bit patterns. Read them through the functions below, which take them as
// unsigned: pages of up to 65,535 pixels a side keep their coordinates.
struct run {
    std::int16_t x0;     // first ink pixel
    std::int16_t x1;     // one past the last ink pixel
    std::int16_t y;      // row
    std::int32_t owner;  // slot of the record that the run belongs to
    std::int32_t next;   // next run of the same segment or zone, -1 at the end
};

constexpr std::int32_t kMaxRunCoordinate = 65535;

constexpr std::int32_t unsigned_coordinate(std::int16_t stored) {
    return static_cast<std::uint16_t>(stored);
}
constexpr std::int16_t stored_coordinate(std::int32_t value) {
    return static_cast<std::int16_t>(value);
}

// A run of a row that is known.
struct PixelRun {
    std::int32_t x0;  // first ink pixel
    std::int32_t x1;  // one past the last ink pixel

    std::int32_t length() const { return x1 - x0; }
};

static_assert(sizeof(PixelRun) == 2 * sizeof(std::int32_t));  // as extract_runs() writes them

}  // namespace ink
