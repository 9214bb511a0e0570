// Ruled lines: taking them off a page (reading/ruled_lines.h), or keeping nothing else, for which
// the library's search for lines of one thickness does.
#include <vemoprepro/cleaning.h>

#include <algorithm>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "page/paper_scale.h"
#include "reading/faint_lines.h"
#include "reading/letters.h"
#include "reading/ruled_lines.h"
#include "steps/ink_removal.h"
#include "steps/step.h"

namespace tool::steps {
namespace {

// All of these are pixels at 300 dots per inch.
// A line is longer than the bars of any letter: 13 mm. One that joins no other may be an underline,
// the bar of a fraction or a long dash unless it is longer: 20 mm. Thicker ones than 0.8 mm are
// bars.
constexpr double kShortestLine = 150;
constexpr double kShortestAlone = 240;
constexpr double kThickestLine = 10;
// A line that is printed weakly has breaks of up to this length.
constexpr double kGap = 5;
// The pieces of a broken line are at least this long.
constexpr double kDash = 16;
// On a coarse page a row of small letters is hardly higher than a line; it is told by ink nearby
// and by breaks, for which fewer pixels do not do.
constexpr int kLeastDash = 8;
// How far from a line other ink is counted: 1.4 mm.
constexpr double kAround = 16;
// The distance of the lines of a large stave, 2.2 mm; no line of text fits between them.
constexpr double kPitch = 26;
// A line that is not quite level steps aside by this much.
constexpr double kStep = 1;
// Ink of up to this area beside a faint line is no letter.
constexpr double kCrumb = 4;

reading::LineScale line_scale(const PageWork& work, const LineOptions& wanted) {
    const Page& page = work.page;
    reading::LineScale scale;
    scale.shortest = wanted.min_length.value_or(scaled_length(page, kShortestLine));
    scale.shortest_alone = wanted.min_length.value_or(scaled_length(page, kShortestAlone));
    scale.thickest = wanted.max_thickness.value_or(scaled_length(page, kThickestLine));
    scale.gap = scaled_length(page, kGap);
    scale.dash = std::max(kLeastDash, scaled_length(page, kDash));
    scale.around = scaled_length(page, kAround);
    scale.pitch = scaled_length(page, kPitch);
    scale.letter = reading::letter_height(work.letters, page);
    return scale;
}

reading::Sureness remove_stubs(Page& page, const Page& with_faint_ink,
                               const reading::LineScale& scale, reading::LineChoice choice,
                               reading::Sureness least) {
    Page without_lines = copy_of(with_faint_ink);
    const auto least_taken = reading::remove_ruled_lines(without_lines, scale, choice, least);
    reading::remove_line_stubs(page, with_faint_ink, without_lines, scaled_area(page, kCrumb));
    return least_taken;
}

std::string direction_words(const LineOptions& wanted) {
    if (!wanted.horizontal) return "vertical lines";
    return wanted.vertical ? "horizontal and vertical lines" : "horizontal lines";
}

// Where all lines would be too much of the ink, those that are sure are taken none the less, since
// a form may have more ink in its lines than in its text; but never in silence.
Outcome take_lines(PageWork& work, const LineOptions& wanted, bool force) {
    const auto faint = std::exchange(work.with_faint_ink, std::nullopt);
    const reading::LineScale scale = line_scale(work, wanted);
    const reading::LineChoice choice = {wanted.horizontal, wanted.vertical, force};
    auto least_taken = reading::Sureness::kSure;
    const auto remove = [&](Page& changed, reading::Sureness least) {
        if (faint) least_taken = remove_stubs(changed, *faint, scale, choice, least);
        least_taken =
            std::min(least_taken, reading::remove_ruled_lines(changed, scale, choice, least));
    };
    Page without_lines;
    const auto take = [&](Excess excess, const auto& change) {
        return remove_ink(work.page, excess, box_of(work.page), direction_words(wanted), change);
    };
    const Outcome all = take(force ? Excess::kAllowed : Excess::kHeldBack, [&](Page& changed) {
        remove(changed, reading::Sureness::kLikely);
        without_lines = copy_of(changed);
    });
    if (all.done) return all;
    const Outcome sure = take(Excess::kWarnedOf, [&](Page& changed) {
        if (least_taken == reading::Sureness::kSure) {
            changed = std::move(without_lines);
        } else {
            remove(changed, reading::Sureness::kSure);
        }
    });
    return sure.ink_removed > 0.0 ? sure : all;
}

}  // namespace

Step unline_step(const StepOptions& options) {
    const LineOptions asked = options.lines;
    const bool force = options.force;
    return {"unline", Effect::kTakesInk, [=](PageWork& work) -> Outcome {
                if (!asked.wanted()) return {false, kSwitchedOff};
                require_bitonal(work.page, "unline");
                return take_lines(work, asked, force);
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
