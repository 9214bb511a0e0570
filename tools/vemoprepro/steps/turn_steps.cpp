// Right-angle turns.
#include <string>
#include <utility>

#include "page/turn.h"
#include "steps/steps.h"

namespace tool {
namespace {

Outcome turn_by(Page& page, int quarter_turns, const std::string& why) {
    turn(page, quarter_turns);
    return {true, "turned " + std::to_string(quarter_turns * 90) + " degrees clockwise" + why};
}

}  // namespace

Step orientation_step() {
    return {"orientation", [](Page& page, const PageFindings&, PageRecord&) -> Outcome {
                const int turns = std::exchange(page.quarter_turns, 0);
                if (turns == 0) return {false, "already upright"};
                return turn_by(page, turns, ", as the file asks for");
            }};
}

Step rotate_step(int quarter_turns) {
    return {"rotate", [quarter_turns](Page& page, const PageFindings&, PageRecord&) {
                return turn_by(page, quarter_turns, "");
            }};
}

}  // namespace tool
