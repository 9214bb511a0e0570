// Ruled lines: taking them off a page (reading/ruled_lines.h), or keeping nothing else, for which
// the library's search for lines of one thickness does.
#include <vemoprepro/cleaning.h>

#include <new>
#include <optional>
#include <string>
#include <utility>

#include "page/paper_scale.h"
#include "reading/faint_lines.h"
#include "reading/ruled_lines.h"
#include "steps/ink_removal.h"
#include "steps/step.h"

namespace tool::steps {
namespace {

// All of these are pixels at 300 dots per inch.
// A line is longer than the bars of any letter: 13 mm. Thicker ones than 0.8 mm are bars.
constexpr double kShortestLine = 150;
constexpr double kThickestLine = 10;
// A line that is printed weakly has breaks of up to this length.
constexpr double kGap = 5;
// The pieces of a broken line are at least this long.
constexpr double kDash = 16;
// How far from a line other ink is counted: 1.4 mm.
constexpr double kAround = 16;
// A line that is not quite level steps aside by this much.
constexpr double kStep = 1;
// Ink of up to this area beside a faint line is no letter.
constexpr double kCrumb = 4;

reading::LineScale line_scale(const Page& page, const LineOptions& wanted) {
    return {wanted.min_length.value_or(scaled_length(page, kShortestLine)),
            wanted.max_thickness.value_or(scaled_length(page, kThickestLine)),
            scaled_length(page, kGap), scaled_length(page, kDash), scaled_length(page, kAround)};
}

void remove_lines(Page& page, const LineOptions& wanted) {
    const reading::LineScale scale = line_scale(page, wanted);
    if (wanted.horizontal) reading::remove_level_lines(page, scale);
    if (wanted.vertical) reading::remove_upright_lines(page, scale);
}

void remove_stubs(Page& page, const Page& with_faint_ink, const LineOptions& wanted) {
    Page without_lines = copy_of(with_faint_ink);
    remove_lines(without_lines, wanted);
    reading::remove_line_stubs(page, with_faint_ink, without_lines, scaled_area(page, kCrumb));
}

std::string directions(const LineOptions& wanted) {
    if (!wanted.horizontal) return "vertical lines";
    return wanted.vertical ? "horizontal and vertical lines" : "horizontal lines";
}

}  // namespace

Step unline_step(const StepOptions& options) {
    const LineOptions asked = options.lines;
    const Excess excess = options.force         ? Excess::kAllowed
                          : options.for_reading ? Excess::kWarnedOf
                                                : Excess::kHeldBack;
    return {"unline", Effect::kTakesInk, [=](PageWork& work) -> Outcome {
                if (!asked.wanted()) return {false, kSwitchedOff};
                require_bitonal(work.page, "unline");
                return remove_ink(
                    work.page, excess, box_of(work.page), directions(asked), [&](Page& changed) {
                        const auto faint = std::exchange(work.with_faint_ink, std::nullopt);
                        if (faint) remove_stubs(changed, *faint, asked);
                        remove_lines(changed, asked);
                    });
            }};
}

Step underlines_step(const StepOptions& options) {
    const LineOptions asked = options.lines;
    return {"underlines", Effect::kTakesInk, [=](PageWork& work) -> Outcome {
                const Page& page = work.page;
                require_bitonal(page, "underlines");
                Page lines = copy_of(page);
                const int stride = static_cast<int>(page.stride());
                const int length = asked.min_length.value_or(scaled_length(page, kShortestLine));
                const int thickness =
                    asked.max_thickness.value_or(scaled_length(page, kThickestLine));
                const int covered =
                    extract_underline(0, asked.vertical ? 1 : 0, length, length / 2, thickness,
                                      scaled_length(page, kStep), page.bytes.get(),
                                      lines.bytes.get(), page.height, stride, 0, page.width);
                if (covered < 0) throw std::bad_alloc();
                work.page = std::move(lines);
                return {true, "lines over " + std::to_string(covered) +
                                  (asked.vertical ? " rows" : " columns")};
            }};
}

}  // namespace tool::steps
