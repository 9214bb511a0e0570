#include "reading/page_lie.h"

#include <utility>

#include "page/turn.h"
#include "reading/ink_pieces.h"
#include "reading/lined_ink.h"
#include "reading/small_ink.h"
#include "reading/text_way.h"

namespace tool::reading {
namespace {

constexpr int kShortestSide = 8;  // of a page with a fan

JudgedFan judged_fan(const Page& ink) {
    if (ink.width < kShortestSide || ink.height < kShortestSide) return {};
    return judge(fan_along_rows(ink));
}

// Lines of text go along columns when these are far clearer than rows, and far more letters stand
// side by side along columns. Stems of letters, the columns of a table and bars are the one or the
// other, but not both.
constexpr double kClearColumns = 2.2;
constexpr double kFarClearer = 1.5;
constexpr int kLeastLetters = 80;
constexpr double kFarMoreLetters = 1.5;

void look_at_text(const InkPieces& ink, PageLie& lie) {
    const TextWay along_rows = way_of_text(ink, Reading::kAlongRows, lie.lines.slope);
    const bool columns_stand_out = lie.stems.clear() && lie.stems.height >= kClearColumns &&
                                   lie.stems.height >= kFarClearer * lie.lines.height;
    if (columns_stand_out) {
        const TextWay along_columns = way_of_text(ink, Reading::kAlongColumns, lie.stems.slope);
        lie.sideways = along_columns.letters >= kLeastLetters &&
                       along_columns.letters >= kFarMoreLetters * along_rows.letters;
        if (lie.sideways && along_columns.upright()) lie.turns_to_upright = 1;
        if (lie.sideways && along_columns.upside_down()) lie.turns_to_upright = 3;
    } else if (lie.lines.clear()) {
        if (along_rows.upright()) lie.turns_to_upright = 0;
        if (along_rows.upside_down()) lie.turns_to_upright = 2;
    }
}

}  // namespace

// Turned by a quarter, rows become columns. Their slopes stay: all of the page is turned alike.
void PageLie::turn_a_quarter() {
    std::swap(lines, stems);
}

PageLie look_how_it_lies(const Page& page) {
    const Page small = small_ink(page);
    const InkPieces ink(small);
    Page lined = lined_ink(ink);
    PageLie lie;
    lie.has_ink = !ink.pieces().empty();
    lie.lines = judged_fan(lined);
    turn(lined, 1);
    lie.stems = judged_fan(lined);
    look_at_text(ink, lie);
    return lie;
}

}  // namespace tool::reading
