// Runs, components and run morphology of a page of text beside Leptonica.
#include <memory>
#include <vector>

#include "harness.h"
#include "ink/component_engine.h"
#include "ink/extract_runs.h"
#include "ink/run_labels.h"
#include "ink/run_morphology.h"
#include "ink/run_windows.h"
#include "leptonica_page.h"

namespace {

common::BitonalView view(const bench::Page& page) {
    return {page.data.data(), page.height, page.width, page.stride};
}

std::size_t page_bytes() {
    return bench::bitonal_page().data.size();
}

struct KeepingRule {
    bool finished(ink::ComponentEngine&, std::int32_t) { return true; }
    bool settled(const ink::component&) const { return false; }
};

void find_with_leptonica(PIX* page) {
    BOXA* boxes = pixConnCompBB(page, 8);
    boxaDestroy(&boxes);
}

bool add_labelling(const char* name, double required, void (*ours)(const bench::Page&)) {
    return bench::add(
        {.name = name,
         .peer = "Leptonica pixConnCompBB",
         .required = required,
         .floor_bytes = page_bytes(),
         .prepare = [=] {
             const bench::Page& page = bench::bitonal_page();
             return bench::Sides{
                 .ours = [=, &page] { ours(page); },
                 .theirs = [pix = bench::to_leptonica(page)] { find_with_leptonica(pix.get()); }};
         }});
}

const bool components =
    add_labelling("components of a text page with boxes and counts", 4.0,
                  [](const bench::Page& page) { ink::find_components(view(page)); });
const bool labelled_runs =
    add_labelling("components of a text page with labelled runs", 0, [](const bench::Page& page) {
        for (ink::RunWindows windows(view(page), page.height); windows.next();) continue;
    });

const bool engine =
    bench::add({.name = "component engine over a text page",
                .peer = "Leptonica pixConnComp",
                .required = 0,
                .floor_bytes = page_bytes(),
                .prepare = [] {
                    const bench::Page& page = bench::bitonal_page();
                    return bench::Sides{.ours =
                                            [&page] {
                                                KeepingRule rule;
                                                ink::scan_components(view(page), 0, page.width, 0,
                                                                     nullptr, rule);
                                            },
                                        .theirs =
                                            [pix = bench::to_leptonica(page)] {
                                                PIXA* pieces = nullptr;
                                                BOXA* boxes = pixConnComp(pix.get(), &pieces, 8);
                                                boxaDestroy(&boxes);
                                                pixaDestroy(&pieces);
                                            }};
                }});

// Both sides begin with a copy of the page and change that.
bool add_morphology(const char* name, const char* peer, ink::LoggedRunOperation* operation,
                    std::int32_t n, PIX* (*theirs)(PIX*, l_int32)) {
    return bench::add(
        {.name = name,
         .peer = peer,
         .required = 0,
         .floor_bytes = 2 * page_bytes(),
         .prepare = [=] {
             const bench::Page& page = bench::bitonal_page();
             const auto copy = std::make_shared<std::vector<std::uint8_t>>(page.data.size());
             return bench::Sides{.ours =
                                     [=, &page] {
                                         *copy = page.data;
                                         operation(nullptr, n, copy->data(), page.stride, 0,
                                                   page.width, 0, page.height);
                                     },
                                 .theirs =
                                     [=, pix = bench::to_leptonica(page)] {
                                         PIX* result = theirs(pix.get(), n);
                                         pixDestroy(&result);
                                     }};
         }});
}

const bool h_dilation = add_morphology(
    "dilation along rows by 3", "Leptonica pixDilateBrick", ink::h_dilate, 3,
    [](PIX* page, l_int32 n) { return pixDilateBrick(nullptr, page, 2 * n + 1, 1); });
const bool v_dilation = add_morphology(
    "dilation along columns by 3", "Leptonica pixDilateBrick", ink::v_dilate, 3,
    [](PIX* page, l_int32 n) { return pixDilateBrick(nullptr, page, 1, 2 * n + 1); });
const bool h_opening =
    add_morphology("short runs of rows removed, 128", "Leptonica pixOpenBrick", ink::h_remove_short,
                   128, [](PIX* page, l_int32 n) { return pixOpenBrick(nullptr, page, n, 1); });
const bool v_opening = add_morphology(
    "short runs of columns removed, 16", "Leptonica pixOpenBrick", ink::v_remove_short, 16,
    [](PIX* page, l_int32 n) { return pixOpenBrick(nullptr, page, 1, n); });
const bool v_closing =
    add_morphology("gaps of columns filled, 16", "Leptonica pixCloseSafeBrick", ink::v_fill_gaps,
                   16, [](PIX* page, l_int32 n) { return pixCloseSafeBrick(nullptr, page, 1, n); });

}  // namespace
