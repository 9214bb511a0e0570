// The list of steps of each command.
#include "steps/steps.h"

#include <chrono>
#include <utility>

namespace tool {
namespace {

double seconds_since(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The border goes while there are greys to tell it from the page by; specks go before the skew is
// measured, which they would blur; rules go last, since only level ones are straight runs of ink.
// For reading the page is turned while it is grey, which keeps the letters' edges where they are,
// and specks go last, so that crumbs of rules are among them.
Pipeline cleaning_steps(const Options& options) {
    if (options.for_reading) {
        return {orientation_step(),     border_step(options, true), prepare_step(options),
                deskew_step(options),   binarize_step(options),     unline_step(options),
                despeckle_step(options)};
    }
    return {orientation_step(),      border_step(options, true), binarize_step(options),
            despeckle_step(options), deskew_step(options),       unline_step(options)};
}

Pipeline single_step(Step step) {
    return {orientation_step(), std::move(step)};
}

}  // namespace

Pipeline make_pipeline(const Options& options) {
    switch (options.command) {
        case Command::kClean:
            return cleaning_steps(options);
        case Command::kBinarize:
            return single_step(binarize_step(options));
        case Command::kDeskew:
            return single_step(deskew_step(options));
        case Command::kRotate:
            return single_step(rotate_step(options.quarter_turns));
        case Command::kDespeckle:
            return single_step(despeckle_step(options));
        case Command::kUnline:
            return single_step(unline_step(options));
        case Command::kUnderlines:
            return single_step(underlines_step(options));
        case Command::kCrop:
            return single_step(border_step(options, false));
        case Command::kTextmask:
            return single_step(textmask_step(options));
        case Command::kInfo:
            break;
    }
    return {};
}

void process(const Pipeline& pipeline, Page& page, const PageFindings& findings, PageRecord& record,
             PageWatcher* watcher) {
    if (watcher != nullptr) watcher->source(page);
    for (const Step& step : pipeline) {
        if (watcher != nullptr) watcher->before(step.name, page);
        const auto start = std::chrono::steady_clock::now();
        Outcome outcome = step.run(page, findings, record);
        record.steps.push_back({step.name, outcome.done, std::move(outcome.why),
                                outcome.ink_removed, seconds_since(start)});
        if (watcher != nullptr && outcome.done) watcher->after(step.name, page);
    }
    record.output_kind = page.kind;
    record.output_width = page.width;
    record.output_height = page.height;
}

}  // namespace tool
