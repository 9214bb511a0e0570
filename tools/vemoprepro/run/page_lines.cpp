#include "run/page_lines.h"

#include "steps/step.h"

namespace tool::run {
namespace {

// Why a step that was asked for was not done, when that is worth a word on the page's line.
std::string why_not(const steps::StepNote& step) {
    const steps::Outcome& outcome = step.outcome;
    if (step.name == "deskew") return "; not straightened: " + outcome.why;
    const bool failed_crop = step.name == "crop" && outcome.why != steps::kSwitchedOff;
    if (outcome.warning || failed_crop) return "; " + step.name + " skipped: " + outcome.why;
    return "";
}

}  // namespace

std::string page_line(const report::PageRecord& record) {
    const steps::WorkingResolution& resolution = record.resolution;
    std::string text = describe(record.source);
    if (resolution.surprising) text += " (" + resolution.why + ")";
    for (const steps::StepNote& step : record.steps) {
        text += step.outcome.done ? "; " + step.outcome.why : why_not(step);
    }
    return text;
}

std::string source_line(const report::PageRecord& record) {
    const steps::WorkingResolution& resolution = record.resolution;
    const bool plain =
        resolution.source == steps::ResolutionSource::kFile && !resolution.surprising;
    return describe(record.source) + (plain ? "" : " (" + resolution.why + ")");
}

std::vector<std::string> step_lines(const report::PageRecord& record) {
    std::vector<std::string> lines;
    for (const steps::StepNote& step : record.steps) {
        lines.push_back(step.name + (step.outcome.done ? ": done: " : ": skipped: ") +
                        step.outcome.why);
    }
    return lines;
}

}  // namespace tool::run
