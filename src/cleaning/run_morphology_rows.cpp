// Along rows: the runs of a row are extracted, and what changes is painted as spans. A row is read
// completely before any of it is painted, so no change feeds another.

#include <algorithm>
#include <cstddef>

#include "cleaning/buffer_logic.h"
#include "cleaning/extract_runs.h"
#include "cleaning/run_morphology.h"
#include "cleaning/try_buffer.h"

namespace cleaning {
namespace {

struct Zone {
    std::int32_t x0;
    std::int32_t x1;
    std::int32_t y0;
    std::int32_t y1;
};

void paint(std::uint8_t* row, std::int64_t start, std::int64_t end, int value) {
    paint_span(row, static_cast<std::int32_t>(start), static_cast<std::int32_t>(end - start),
               value);
}

// Calls change(row, runs, number of values) for every row of the zone that has ink.
template <class Change>
std::int32_t for_each_row(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                          std::int32_t stride, const Zone& zone, Change change) {
    if (n <= 0 || zone.x0 >= zone.x1 || zone.y0 >= zone.y1) return 0;
    const std::int32_t width = zone.x1 - zone.x0;
    const TryBuffer<std::int32_t> runs(static_cast<std::size_t>(width) + 1);
    if (!runs) {
        diag::report(logger, diag::kOwner, diag::kErrorLevel, diag::kListGrowthCode,
                     diag::kNoMemoryText);
        return -1;
    }
    std::uint8_t* row = image + std::ptrdiff_t{zone.y0} * stride;
    for (std::int32_t y = zone.y0; y < zone.y1; ++y, row += stride) {
        const std::int32_t values = extract_runs(0, row, zone.x0, width, runs.data());
        if (values > 0) change(row, runs.data(), values);
    }
    return 0;
}

}  // namespace

std::int32_t h_fill_gaps(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                         std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                         std::int32_t y1) {
    return for_each_row(logger, n, image, stride, Zone{x0, x1, y0, y1},
                        [n](std::uint8_t* row, const std::int32_t* runs, std::int32_t values) {
                            for (std::int32_t i = 1; i + 1 < values; i += 2) {
                                if (runs[i + 1] - runs[i] < n) paint(row, runs[i], runs[i + 1], 1);
                            }
                        });
}

std::int32_t h_remove_short(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                            std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                            std::int32_t y1) {
    return for_each_row(logger, n, image, stride, Zone{x0, x1, y0, y1},
                        [n](std::uint8_t* row, const std::int32_t* runs, std::int32_t values) {
                            for (std::int32_t i = 0; i < values; i += 2) {
                                if (runs[i + 1] - runs[i] < n) paint(row, runs[i], runs[i + 1], 0);
                            }
                        });
}

std::int32_t h_dilate(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                      std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                      std::int32_t y1) {
    // Widened runs that meet are painted as one: the work stays linear in the row however large n.
    return for_each_row(logger, n, image, stride, Zone{x0, x1, y0, y1},
                        [=](std::uint8_t* row, const std::int32_t* runs, std::int32_t values) {
                            const auto widened_start = [=](std::int32_t i) {
                                return std::max<std::int64_t>(std::int64_t{runs[i]} - n, x0);
                            };
                            std::int64_t start = widened_start(0);
                            for (std::int32_t i = 0; i < values; i += 2) {
                                const std::int64_t end =
                                    std::min<std::int64_t>(std::int64_t{runs[i + 1]} + n, x1);
                                if (i + 2 < values && widened_start(i + 2) <= end) continue;
                                paint(row, start, end, 1);
                                if (i + 2 < values) start = widened_start(i + 2);
                            }
                        });
}

std::int32_t h_erode(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                     std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                     std::int32_t y1) {
    return for_each_row(logger, n, image, stride, Zone{x0, x1, y0, y1},
                        [n](std::uint8_t* row, const std::int32_t* runs, std::int32_t values) {
                            for (std::int32_t i = 0; i < values; i += 2) {
                                const std::int64_t start = runs[i];
                                const std::int64_t end = runs[i + 1];
                                if (start + n < end - n) {
                                    paint(row, start, start + n, 0);
                                    paint(row, end - n, end, 0);
                                } else {
                                    paint(row, start, end, 0);
                                }
                            }
                        });
}

}  // namespace cleaning
