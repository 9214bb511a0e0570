// Morphology on runs of ink: gaps filled, short runs removed, runs widened or narrowed, along the
// rows or the columns of a zone of a bitonal image.
//
// All eight change the columns x0 <= x < x1 and the rows y0 <= y < y1 of `image` in place; ink is
// the 1-bits, a run a maximal stretch of ink inside the zone. Pixels outside the zone are neither
// used nor changed, also those that share a byte with it. They return 0, or -1 with the image
// unchanged and a record in the error log when there is no memory. They do not throw.
//
// A zone without columns or rows and an `n` below 1 change nothing.
//
// Keep true: the zone lies inside the image.
#pragma once

#include <cstdint>
#include <new>

#include "diag/logger.h"

namespace ink {

// Fills the gaps of fewer than `n` pixels between two runs. The white before the first and after
// the last run is no gap.
std::int32_t h_fill_gaps(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                         std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                         std::int32_t y1);
std::int32_t v_fill_gaps(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                         std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                         std::int32_t y1);

// Clears the runs of fewer than `n` pixels.
std::int32_t h_remove_short(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                            std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                            std::int32_t y1);
std::int32_t v_remove_short(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                            std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                            std::int32_t y1);

// Widens every run by `n` pixels at both ends, up to the border of the zone.
std::int32_t h_dilate(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                      std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                      std::int32_t y1);
std::int32_t v_dilate(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                      std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                      std::int32_t y1);

// Takes `n` pixels from both ends of every run of more than 2 n pixels and clears the others.
std::int32_t h_erode(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                     std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                     std::int32_t y1);
std::int32_t v_erode(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                     std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                     std::int32_t y1);

// Throws std::bad_alloc for the result of an operation that had no memory.
inline void require_memory(std::int32_t result) {
    if (result < 0) throw std::bad_alloc();
}

}  // namespace ink
