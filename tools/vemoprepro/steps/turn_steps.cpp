// Turns: as the file or the text asks for, and by an angle that was asked for.
#include <cmath>
#include <optional>
#include <string>
#include <utility>

#include "page/negative.h"
#include "page/turn.h"
#include "reading/page_lie.h"
#include "steps/number_text.h"
#include "steps/step.h"

namespace tool::steps {
namespace {

Outcome turn_by(PageWork& work, int quarter_turns, const std::string& why) {
    turn(work.page, quarter_turns);
    work.quarter_turns += quarter_turns;
    return {true, "turned " + std::to_string(quarter_turns * 90) + " degrees clockwise" + why};
}

Outcome turn_as_text_lies(PageWork& work) {
    const std::optional<int> turns = work.lie->turns_to_upright;
    if (!turns) {
        return {false,
                work.lie->sideways
                    ? "no orientation tag; the text seems to lie sideways, its top is not clear"
                    : "no orientation tag"};
    }
    if (*turns == 0) return {false, "already upright"};
    if (*turns != 2) work.lie->turn_a_quarter();
    return turn_by(work, *turns, ": the text lies so");
}

reading::PageLie look_at(PageWork& work) {
    if (!work.letters.light_on_dark) return reading::look_how_it_lies(work.page);
    complement(work.page);
    const reading::PageLie lie = reading::look_how_it_lies(work.page);
    complement(work.page);
    return lie;
}

// What a file asks for is done whatever the text says.
Outcome turn_as_file_asks(PageWork& work, int turns, bool looks) {
    Outcome outcome = turn_by(work, turns, ", as the file asks for");
    if (!looks) return outcome;
    work.lie = look_at(work);
    if (work.lie->turns_to_upright.value_or(0) != 0) {
        outcome.why += "; the text now seems to need " +
                       std::to_string(*work.lie->turns_to_upright * 90) + " degrees more";
        outcome.warning = true;
    }
    return outcome;
}

}  // namespace

Step orientation_step(const StepOptions& options) {
    const bool looks = options.command == Command::kClean && options.turn_by_text;
    return {"orientation", Effect::kBringsUpright, [=](PageWork& work) -> Outcome {
                const int turns = std::exchange(work.page.quarter_turns, 0);
                if (turns != 0) return turn_as_file_asks(work, turns, looks);
                if (!looks) return {false, "no orientation tag"};
                work.lie = look_at(work);
                return turn_as_text_lies(work);
            }};
}

Step rotate_step(const StepOptions& options) {
    const double angle = options.angle;
    const Background background = options.background.value_or(Background{});
    return {"rotate", Effect::kTurnsPage, [=](PageWork& work) -> Outcome {
                const double quarters = angle / 90;
                if (std::floor(quarters) == quarters) {
                    const int turns = (static_cast<int>(quarters) + 4) % 4;
                    if (turns == 0) return {false, "no angle"};
                    return turn_by(work, turns, "");
                }
                turn_by_degrees(work.page, angle, background_of(work.page, background));
                work.turned_degrees = angle;
                return {true, with_digits("turned %g degrees clockwise", angle)};
            }};
}

}  // namespace tool::steps
