// The pages that the rows work on, made from the sample pages with Leptonica: scaled to A4 at 300
// dots per inch and straightened, so that every row sees a text page of real size with real dirt.
#include <leptonica/allheaders.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>

#include "harness.h"

namespace bench {
namespace {

constexpr int kHeight = 3508;
constexpr int kWidth = 2480;
constexpr double kSkewRadians = 1.5 * 3.14159265358979 / 180.0;

struct PixDelete {
    void operator()(Pix* pix) const { pixDestroy(&pix); }
};
using PixOwner = std::unique_ptr<Pix, PixDelete>;

PixOwner own(Pix* pix) {
    if (pix == nullptr) throw std::runtime_error("a sample page cannot be read");
    return PixOwner(pix);
}

// The text page of the samples, colour, at full size.
const Pix* text_page() {
    static const PixOwner page = [] {
        const PixOwner file = own(pixRead(VEMOPREPRO_SAMPLES "/letter.jpg"));
        const PixOwner colour = own(pixConvertTo32(file.get()));
        return own(pixScaleToSize(colour.get(), kWidth, kHeight));
    }();
    return page.get();
}

Page from_bits(const Pix* pix) {
    Page page{kHeight, kWidth, (kWidth + 31) / 32 * 4, {}};
    page.data.resize(static_cast<std::size_t>(page.height) * static_cast<std::size_t>(page.stride));
    for (int y = 0; y < page.height; ++y) {
        const l_uint32* words =
            pixGetData(const_cast<Pix*>(pix)) + std::ptrdiff_t{y} * pixGetWpl(pix);
        std::uint8_t* row = page.data.data() + std::ptrdiff_t{y} * page.stride;
        for (int i = 0; i < page.stride; ++i) {
            row[i] = static_cast<std::uint8_t>(words[i / 4] >> (24 - 8 * (i % 4)));
        }
    }
    return page;
}

// The text page in black and white, straight.
PixOwner straight_bits() {
    const PixOwner grey = own(pixConvertRGBToLuminance(const_cast<Pix*>(text_page())));
    const PixOwner bits = own(pixConvertTo1(grey.get(), 140));
    return own(pixDeskew(bits.get(), 0));
}

Page at_full_size(const PixOwner& bits) {
    return from_bits(own(pixResizeToMatch(bits.get(), nullptr, kWidth, kHeight)).get());
}

}  // namespace

const Page& colour_page() {
    static const Page page = [] {
        Page made{kHeight, kWidth, 3 * kWidth, {}};
        made.data.resize(static_cast<std::size_t>(made.height) *
                         static_cast<std::size_t>(made.stride));
        const Pix* pix = text_page();
        std::uint8_t* out = made.data.data();
        for (int y = 0; y < kHeight; ++y) {
            const l_uint32* words =
                pixGetData(const_cast<Pix*>(pix)) + std::ptrdiff_t{y} * pixGetWpl(pix);
            for (int x = 0; x < kWidth; ++x) {
                *out++ = static_cast<std::uint8_t>(words[x] >> 24);
                *out++ = static_cast<std::uint8_t>(words[x] >> 16);
                *out++ = static_cast<std::uint8_t>(words[x] >> 8);
            }
        }
        return made;
    }();
    return page;
}

const Page& grey_page() {
    static const Page page = [] {
        const Page& colour = colour_page();
        Page made{kHeight, kWidth, kWidth, {}};
        made.data.resize(static_cast<std::size_t>(kHeight) * static_cast<std::size_t>(kWidth));
        for (std::size_t i = 0; i < made.data.size(); ++i) {
            const std::uint8_t* pixel = colour.data.data() + 3 * i;
            made.data[i] = static_cast<std::uint8_t>((pixel[0] + 2 * pixel[1] + pixel[2]) / 4);
        }
        return made;
    }();
    return page;
}

const Page& bitonal_page() {
    static const Page page = at_full_size(straight_bits());
    return page;
}

const Page& skewed_bitonal_page() {
    static const Page page =
        at_full_size(own(pixRotate(straight_bits().get(), static_cast<float>(-kSkewRadians),
                                   L_ROTATE_SHEAR, L_BRING_IN_WHITE, kWidth, kHeight)));
    return page;
}

}  // namespace bench
