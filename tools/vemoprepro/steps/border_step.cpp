// Dark borders of scanned pages. The page keeps its size: a border is painted over with the colour
// of the paper beside it, so that the binarization finds no edge where it was.
#include <vemoprepro/cleaning.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "reading/border_print.h"
#include "steps/ink_removal.h"
#include "steps/number_text.h"
#include "steps/step.h"

namespace tool::steps {
namespace {

// Borders start at greys below `dark` on the page's edge and go on through greys below `light` that
// differ by less than `step`.
struct BorderGreys {
    int dark, light, step;
};
constexpr BorderGreys kBorder = {110, 190, 32};
// Told from paper that lies in deep shade.
constexpr BorderGreys kDeepBorder = {40, 90, 16};
constexpr int kShortestSide = 24;

std::string text_of(const Box& content) {
    return "content " + std::to_string(content.width) + " x " + std::to_string(content.height) +
           " pixels at " + std::to_string(content.x) + ", " + std::to_string(content.y);
}

// Ends inclusive.
Box box_between(int x0, int x1, int y0, int y1) {
    return {x0, y0, x1 - x0 + 1, y1 - y0 + 1};
}

Box paint_border_white(Page& page, const BorderGreys& border) {
    const bool grey = page.kind == PageKind::kGrey;
    int x0 = 0, x1 = 0, y0 = 0, y1 = 0;
    if (cropimg(page.bytes.get(), grey ? PREPRO_CROP_GREY : PREPRO_CROP_RGB, page.height,
                page.width, static_cast<int>(page.stride()), border.dark, border.light, border.step,
                &x0, &x1, &y0, &y1) != 0) {
        throw std::bad_alloc();
    }
    return box_between(x0, x1, y0, y1);
}

// The library's answer when it takes all of the page for border.
bool nothing_left(const Box& content) {
    return content.width <= 2 && content.height <= 2;
}

void repaint_white_as_paper(Page& page) {
    if (page.kind == PageKind::kGrey) {
        unsigned char paper = 255;
        cropgrey_get(&paper, page.bytes.get(), page.height, page.width, page.width);
        cropgrey_replace(255, paper, page.bytes.get(), page.height, page.width, page.width);
        return;
    }
    std::array<unsigned char, 3> paper{};
    cropcolor_get(paper.data(), page.bytes.get(), page.height, page.width, page.width);
    const std::vector<unsigned char> from(static_cast<std::size_t>(page.width) * 3, 255);
    std::vector<unsigned char> to(from.size());
    for (std::size_t i = 0; i < to.size(); ++i) to[i] = paper[i % 3];
    cropcolor_replace(from.data(), to.data(), page.bytes.get(), page.height, page.width,
                      page.width);
}

// Share of the dark pixels in the inner part of the page that became white.
double dark_lost(const Page& before, const Page& after) {
    const int channels = before.kind == PageKind::kGrey ? 1 : 3;
    std::int64_t dark = 0, lost = 0;
    for (int y = before.height / 8; y < before.height - before.height / 8; ++y) {
        const unsigned char* old_row = before.row(y);
        const unsigned char* new_row = after.row(y);
        for (int x = before.width / 8; x < before.width - before.width / 8; ++x) {
            if (old_row[x * channels] >= kBorder.dark) continue;
            ++dark;
            lost += new_row[x * channels] == 255;
        }
    }
    return dark > 0 ? static_cast<double>(lost) / static_cast<double>(dark) : 0;
}

Outcome crop_greys(PageWork& work, bool force) {
    Page cropped = copy_of(work.page);
    const Box content = paint_border_white(cropped, kBorder);
    if (nothing_left(content)) return {false, "all of the page would be border"};
    const double lost = dark_lost(work.page, cropped);
    if (!force && lost > kMostInk) {
        return {false, "would take " + percent(lost) + " of the ink inside the page", lost, true};
    }
    repaint_white_as_paper(cropped);
    work.page = std::move(cropped);
    work.content = content;
    return {true, text_of(content), lost};
}

// Whether no more than the frame of 8 pixels, which is always painted, was taken for border.
bool only_frame(const Page& page, const Box& content) {
    constexpr int kFrame = 9;
    return content.x < kFrame && content.y < kFrame &&
           content.x + content.width >= page.width - 2 * kFrame &&
           content.y + content.height >= page.height - 2 * kFrame;
}

// For reading no print may go with the border, whatever share of the ink it is.
Outcome crop_around_print(PageWork& work) {
    for (const BorderGreys& border : {kBorder, kDeepBorder}) {
        Page cropped = copy_of(work.page);
        const Box content = paint_border_white(cropped, border);
        if (only_frame(work.page, content)) return {false, "no border"};
        if (nothing_left(content) || reading::print_was_painted(work.page, cropped)) continue;
        repaint_white_as_paper(cropped);
        work.page = std::move(cropped);
        work.content = content;
        return {true, text_of(content)};
    }
    return {false, "print lies in the dark at the edges"};
}

// None without ink.
std::optional<Box> box_of_ink(const Page& page) {
    int x0 = page.width, x1 = -1, y0 = page.height, y1 = -1;
    for (int y = 0; y < page.height; ++y) {
        const unsigned char* row = page.row(y);
        for (int i = 0; i < static_cast<int>(page.stride()); ++i) {
            if (row[i] == 0) continue;
            x0 = std::min(x0, i * 8 + std::countl_zero(row[i]));
            x1 = std::max(x1, i * 8 + 7 - std::countr_zero(row[i]));
            y0 = std::min(y0, y);
            y1 = y;
        }
    }
    if (y1 < 0) return std::nullopt;
    return box_between(x0, x1, y0, y1);
}

Outcome crop_bits(PageWork& work, bool force) {
    const auto crop = [](Page& changed) {
        const Page source = copy_of(changed);
        if (cropbmp(0, source.bytes.get(), source.height, source.width,
                    static_cast<int>(source.stride()), changed.bytes.get()) != 0) {
            throw std::bad_alloc();
        }
    };
    Outcome outcome = remove_ink(work.page, force, inner_part(work.page), "border", crop);
    if (!outcome.done) return outcome;
    const std::optional<Box> content = box_of_ink(work.page);
    if (!content) return {true, "no ink left inside the border"};
    work.content = content;
    outcome.why = text_of(*content);
    return outcome;
}

}  // namespace

Step border_step(const StepOptions& options) {
    const bool wanted = options.crop_border;
    const bool force = options.force;
    const bool reading = options.for_reading;
    return {"crop", Effect::kTakesInk, [=](PageWork& work) -> Outcome {
                const Page& page = work.page;
                if (!wanted) return {false, kSwitchedOff};
                if (page.width < kShortestSide || page.height < kShortestSide) {
                    return {false, "smaller than 24 pixels a side"};
                }
                if (page.kind == PageKind::kBitonal) return crop_bits(work, force);
                if (reading) return crop_around_print(work);
                return crop_greys(work, force);
            }};
}

}  // namespace tool::steps
