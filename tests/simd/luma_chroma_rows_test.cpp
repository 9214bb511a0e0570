#include "simd/pixels/plain/luma_chroma_rows.h"

#include "support/kernel_frame.h"

namespace simd {
namespace {

TEST(LumaChromaRows, OfEveryWidth) {
    on_every_width(0, [](std::size_t width, Random& random) {
        Row colours(3 * width, random);
        expect_twins(3, width, random, [&](bool fast, const auto& out) {
            TWIN(separate_row)(colours, width, {out[0], out[1], out[2]});
        });
        Row y(width, random), cr(width, random), cb(width, random);
        expect_twins(1, 3 * width, random, [&](bool fast, const auto& out) {
            TWIN(join_row)({y, cr, cb}, width, out[0]);
        });
    });
}

TEST(LumaChromaRows, SeparateAllColours) {
    on_colours(5, [](const Bytes& colours) {
        Random random(1);
        expect_twins(3, colours.size() / 3, random, [&](bool fast, const auto& out) {
            TWIN(separate_row)(colours.data(), colours.size() / 3, {out[0], out[1], out[2]});
        });
    });
}

// Green is all but independent of the luma, as red and blue are.
TEST(LumaChromaRows, JoinAllChroma) {
    on_every_target([] {
        Bytes y(65536), cr(65536), cb(65536);
        for (std::size_t i = 0; i < y.size(); ++i) {
            cr[i] = static_cast<std::uint8_t>(i);
            cb[i] = static_cast<std::uint8_t>(i >> 8);
        }
        Random random(1);
        for (const int luma : {0, 60, 130, 200, 255}) {
            std::fill(y.begin(), y.end(), static_cast<std::uint8_t>(luma));
            expect_twins(1, 3 * y.size(), random, [&](bool fast, const auto& out) {
                TWIN(join_row)({y.data(), cr.data(), cb.data()}, y.size(), out[0]);
            });
        }
    });
}

}  // namespace
}  // namespace simd
