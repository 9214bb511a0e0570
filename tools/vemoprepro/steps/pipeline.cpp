#include "steps/pipeline.h"

#include <utility>

#include "steps/stopwatch.h"

namespace tool::steps {
namespace {

// The border goes while there are greys to tell it from the page by; specks go before the skew is
// measured, which they would blur; ruled lines go last, since only level ones are straight runs of
// ink. For reading the page is turned while it is grey, which keeps the letters' edges where they
// are, and specks go last, so that crumbs of ruled lines are among them.
Pipeline cleaning_steps(const StepOptions& options) {
    if (options.for_reading) {
        return {orientation_step(options), grey_step(options),
                negative_step(options),    border_step(options),
                prepare_step(options),     deskew_step(options),
                binarize_step(options),    unline_step(options),
                despeckle_step(options),   positive_step()};
    }
    return {orientation_step(options), grey_step(options),     negative_step(options),
            border_step(options),      binarize_step(options), despeckle_step(options),
            deskew_step(options),      unline_step(options),   positive_step()};
}

}  // namespace

Pipeline make_pipeline(const StepOptions& options) {
    switch (options.command) {
        case Command::kClean:
            break;
        case Command::kBinarize:
            return {orientation_step(options), grey_step(options), negative_step(options),
                    binarize_step(options), positive_step()};
        case Command::kDeskew:
            return {orientation_step(options), deskew_step(options)};
        case Command::kRotate:
            return {orientation_step(options), rotate_step(options)};
        case Command::kScale:
            return {orientation_step(options), scale_step(options)};
        case Command::kPerspective:
            return {orientation_step(options), perspective_step(options)};
        case Command::kDespeckle:
            return {orientation_step(options), negative_step(options), despeckle_step(options),
                    positive_step()};
        case Command::kUnline:
            return {orientation_step(options), negative_step(options), unline_step(options),
                    positive_step()};
        case Command::kUnderlines:
            return {orientation_step(options), underlines_step(options)};
        case Command::kCrop:
            return {orientation_step(options), border_step(options)};
        case Command::kTextmask:
            return {orientation_step(options), textmask_step(options)};
    }
    return cleaning_steps(options);
}

void process(const Pipeline& pipeline, PageWork& work, PageWatcher* watcher) {
    work.source = shape_of(work.page);
    if (watcher != nullptr) watcher->source(work.page);
    for (const Step& step : pipeline) {
        const Stopwatch watch;
        const Outcome outcome = step.run(work);
        if (step.name == nullptr || outcome.why.empty()) continue;
        work.notes.push_back({step.name, outcome, watch.seconds()});
        if (watcher != nullptr && outcome.done) watcher->after(step, work);
    }
}

}  // namespace tool::steps
