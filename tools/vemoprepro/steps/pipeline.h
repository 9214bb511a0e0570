// The steps of a command, in their order.
//
// Use: make_pipeline() once per run; process() takes one page through it and notes for each step
// what it found and whether it was done, and why. Any number of pages may go through the same
// pipeline at once.
#pragma once

#include <vector>

#include "steps/step.h"

namespace tool::steps {

using Pipeline = std::vector<Step>;

Pipeline make_pipeline(const StepOptions& options);

// Sees a page before its first step, and after each step that was done and noted.
class PageWatcher {
  public:
    virtual ~PageWatcher() = default;
    virtual void source(const Page& page) = 0;
    virtual void after(const Step& step, const PageWork& work) = 0;
};

// watcher: may be null.
void process(const Pipeline& pipeline, PageWork& work, PageWatcher* watcher);

}  // namespace tool::steps
