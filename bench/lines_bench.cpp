// Line removal and extraction of underlines on a ruled page beside the same recipes of brick
// morphology in Leptonica, in its fastest form: destination word accumulation.
#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "harness.h"
#include "leptonica_page.h"
#include "vemoprepro/cleaning.h"

namespace {

// The page of text with a form drawn over it: ruled lines all over its width every 150 rows, 3
// pixels thick, and its height every 400 columns.
const bench::Page& ruled_page() {
    static const bench::Page ruled = [] {
        bench::Page page = bench::bitonal_page();
        const auto ink = [&page](int x, int y) {
            page.data[static_cast<std::size_t>(y) * static_cast<std::size_t>(page.stride) +
                      static_cast<std::size_t>(x / 8)] |=
                static_cast<std::uint8_t>(0x80 >> (x % 8));
        };
        for (int y = 150; y + 3 < page.height; y += 150) {
            for (int x = 100; x < page.width - 100; ++x) {
                for (int dy = 0; dy < 3; ++dy) ink(x, y + dy + x / 1000);
            }
        }
        for (int x = 200; x + 3 < page.width; x += 400) {
            for (int y = 150; y < page.height - 150; ++y) {
                for (int dx = 0; dx < 3; ++dx) ink(x + dx, y);
            }
        }
        return page;
    }();
    return ruled;
}

using Pix = std::unique_ptr<PIX, void (*)(PIX*)>;

Pix own(PIX* pix) {
    return {pix, [](PIX* held) { pixDestroy(&held); }};
}

// A brick along the lines or across them.
struct Bricks {
    bool horizontal;

    using Operation = PIX* (*)(PIX*, PIX*, l_int32, l_int32);
    Pix along(Operation operation, PIX* pix, int n) const {
        return own(operation(nullptr, pix, horizontal ? n : 1, horizontal ? 1 : n));
    }
    Pix across(Operation operation, PIX* pix, int n) const {
        return own(operation(nullptr, pix, horizontal ? 1 : n, horizontal ? n : 1));
    }
};

void remove_with_leptonica(PIX* page, bool horizontal) {
    const Bricks bricks{horizontal};
    Pix mask = bricks.along(pixCloseBrickDwa, page, 2);
    mask = bricks.across(pixDilateBrickDwa, mask.get(), 3);
    mask = bricks.along(pixOpenCompBrickDwa, mask.get(), 128);
    pixAnd(mask.get(), mask.get(), page);
    mask = own(pixDilateBrickDwa(nullptr, mask.get(), 3, 3));
    const Pix strokes = bricks.across(pixOpenCompBrickDwa, page, 16);
    pixSubtract(page, page, mask.get());
    pixOr(page, page, strokes.get());
}

void remove_carefully_with_leptonica(PIX* page) {
    const Bricks bricks{true};
    Pix lines = bricks.along(pixOpenCompBrickDwa, page, 60);
    lines = bricks.across(pixCloseBrickDwa, lines.get(), 3);
    lines = bricks.across(pixOpenCompBrickDwa, lines.get(), 8);
    pixXor(lines.get(), lines.get(), page);
    lines = bricks.along(pixCloseCompBrickDwa, lines.get(), 5);
    lines = bricks.along(pixOpenCompBrickDwa, lines.get(), 128);
    lines = bricks.across(pixDilateBrickDwa, lines.get(), 3);
    const Pix strokes = bricks.across(pixOpenCompBrickDwa, page, 8);
    pixSubtract(lines.get(), lines.get(), strokes.get());
    Pix cut = own(pixSubtract(nullptr, page, lines.get()));
    cut = bricks.across(pixCloseCompBrickDwa, cut.get(), 8);
    pixAnd(page, page, cut.get());
}

void extract_with_leptonica(PIX* page) {
    const Bricks bricks{true};
    Pix lines = bricks.across(pixDilateBrickDwa, page, 3);
    lines = bricks.along(pixOpenCompBrickDwa, lines.get(), 60);
    pixAnd(lines.get(), lines.get(), page);
    const Pix thick = bricks.across(pixOpenCompBrickDwa, lines.get(), 8);
    pixSubtract(lines.get(), lines.get(), thick.get());
    const Pix kept =
        own(pixSelectBySize(lines.get(), 101, 0, 8, L_SELECT_WIDTH, L_SELECT_IF_GTE, nullptr));
}

// Runs both sides on fresh copies of the page.
bench::Sides on_copies(void (*ours)(bench::Page&), void (*theirs)(PIX*)) {
    const bench::Page& page = ruled_page();
    auto work = std::make_shared<bench::Page>(page);
    return {.ours =
                [&page, work, ours] {
                    std::memcpy(work->data.data(), page.data.data(), page.data.size());
                    ours(*work);
                },
            .theirs =
                [pix = bench::to_leptonica(page), copy = bench::to_leptonica(page), theirs] {
                    pixCopy(copy.get(), pix.get());
                    theirs(copy.get());
                }};
}

bool add_removal(const char* name, void (*ours)(bench::Page&), void (*theirs)(PIX*)) {
    return bench::add({.name = name,
                       .peer = "Leptonica pixOpenCompBrickDwa and others",
                       .required = 5.0,
                       .floor_bytes = 2 * bench::bitonal_page().data.size(),
                       .prepare = [=] { return on_copies(ours, theirs); }});
}

const bool lrm = add_removal(
    "lrm_do_horz and lrm_do_vert on a ruled page",
    [](bench::Page& page) {
        lrm_settings* const handle = lrm_init_mem(
            page.data.data(), static_cast<unsigned short>(page.height),
            static_cast<unsigned short>(page.width), static_cast<unsigned short>(page.stride));
        lrm_do_horz(handle);
        lrm_do_vert(handle);
        lrm_exit(handle);
    },
    [](PIX* page) {
        remove_with_leptonica(page, true);
        remove_with_leptonica(page, false);
    });

const bool careful = add_removal(
    "linerm_h on a ruled page",
    [](bench::Page& page) {
        linerm_h(page.data.data(), page.height, page.width, page.stride, 8, 128, 5, 60, 3, 1);
    },
    remove_carefully_with_leptonica);

const bool underlines = bench::add(
    {.name = "extract_underline on a ruled page",
     .peer = "Leptonica pixOpenCompBrickDwa, pixSelectBySize",
     .required = 3.0,
     .floor_bytes = 2 * bench::bitonal_page().data.size(),
     .prepare = [] {
         const bench::Page& page = ruled_page();
         auto target = std::make_shared<std::vector<std::uint8_t>>(page.data.size());
         return bench::Sides{
             .ours =
                 [&page, target] {
                     extract_underline(0, 0, 100, 60, 8, 1, page.data.data(), target->data(),
                                       page.height, page.stride, 0, page.width);
                 },
             .theirs = [pix = bench::to_leptonica(page)] { extract_with_leptonica(pix.get()); }};
     }});

}  // namespace
