// Right-angle turns.
#include <string>
#include <utility>

#include "page/turn.h"
#include "reading/small_ink.h"
#include "steps/step.h"

namespace tool::steps {
namespace {

Outcome turn_by(PageWork& work, int quarter_turns, const std::string& why) {
    turn(work.page, quarter_turns);
    work.quarter_turns += quarter_turns;
    return {true, "turned " + std::to_string(quarter_turns * 90) + " degrees clockwise" + why};
}

Outcome bring_upright(PageWork& work) {
    const int turns = std::exchange(work.page.quarter_turns, 0);
    if (turns == 0) return {false, "already upright"};
    return turn_by(work, turns, ", as the file asks for");
}

}  // namespace

Step orientation_step(const StepOptions& options) {
    const bool measures = options.command == Command::kClean;
    return {"orientation", Effect::kBringsUpright, [=](PageWork& work) -> Outcome {
                Outcome outcome = bring_upright(work);
                if (measures) work.small_ink = reading::small_ink(work.page);
                return outcome;
            }};
}

Step rotate_step(int quarter_turns) {
    return {"rotate", Effect::kTurnsPage,
            [quarter_turns](PageWork& work) { return turn_by(work, quarter_turns, ""); }};
}

}  // namespace tool::steps
