// A Desk of small random pages.
#pragma once

#include "calls/calls.h"
#include "support/random_page.h"

namespace calls {

inline Desk random_desk() {
    constexpr int kHeight = 300;
    constexpr int kWidth = 333;
    constexpr int kStride = 44;
    constexpr std::size_t kPixels = std::size_t{kHeight} * kWidth;
    return {kHeight,
            kWidth,
            kStride,
            support::random_text(kHeight, kWidth, kStride, 5),
            support::random_bytes(kPixels, 7),
            support::random_bytes(3 * kPixels, 6)};
}

}  // namespace calls
