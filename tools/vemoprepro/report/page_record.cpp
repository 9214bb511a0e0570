#include "report/page_record.h"

#include <algorithm>

namespace tool::report {

bool has_warning(const PageRecord& record) {
    return std::any_of(record.steps.begin(), record.steps.end(),
                       [](const steps::StepNote& step) { return step.outcome.warning; });
}

std::vector<std::string> warnings_of(const PageRecord& record) {
    std::vector<std::string> warnings;
    for (const steps::StepNote& step : record.steps) {
        if (!step.outcome.warning) continue;
        warnings.push_back(step.name + (step.outcome.done ? ": " : " skipped: ") +
                           step.outcome.why);
    }
    return warnings;
}

PageRecord record_of(std::size_t number, const steps::PageWork& work, double seconds) {
    PageRecord record;
    record.number = number;
    record.source = work.source;
    record.source.dpi = work.resolution.dpi;
    record.resolution = work.resolution;
    record.skew = work.skew;
    record.confidence = work.confidence;
    record.threshold = work.threshold;
    record.content = work.content;
    record.corners = work.corners;
    record.steps = work.notes;
    record.output = shape_of(work.page);
    record.seconds = seconds;
    return record;
}

}  // namespace tool::report
