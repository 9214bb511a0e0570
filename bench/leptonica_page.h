// Pages in the form that Leptonica works on.
#pragma once

#include <leptonica/allheaders.h>

#include <cstddef>
#include <cstring>
#include <memory>

#include "harness.h"

namespace bench {

using LeptonicaPage = std::shared_ptr<PIX>;

// A copy of a bitonal page.
inline LeptonicaPage to_leptonica(const Page& page) {
    PIX* pix = pixCreate(page.width, page.height, 1);
    for (int y = 0; y < page.height; ++y)
        std::memcpy(pixGetData(pix) + static_cast<std::ptrdiff_t>(y) * pixGetWpl(pix),
                    page.data.data() + static_cast<std::ptrdiff_t>(y) * page.stride,
                    4 * static_cast<std::size_t>(pixGetWpl(pix)));
    pixEndianByteSwap(pix);
    return {pix, [](PIX* held) { pixDestroy(&held); }};
}

}  // namespace bench
