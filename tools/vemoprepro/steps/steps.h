// The steps that a page goes through.
//
// Use: make_pipeline() gives the steps of a command in their order; process() runs them on one page
// and notes in the page's record what each found and whether it was done, and why.
//
// Keep true: a step either replaces the page or leaves it alone; it holds no state, so that any
// number of pages can go through the same pipeline at once. What a page does not allow is thrown as
// PageError.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "page/page.h"
#include "report/page_record.h"
#include "run/options.h"

namespace tool {

// Why a step is skipped that nobody asked for.
constexpr const char* kSwitchedOff = "switched off";

struct Outcome {
    bool done;
    std::string why;
    std::optional<double> ink_removed = {};  // share of the ink, for steps that take some away
};

struct Step {
    const char* name;
    std::function<Outcome(Page&, const PageFindings&, PageRecord&)> run;
};
using Pipeline = std::vector<Step>;

Pipeline make_pipeline(const Options& options);

// Sees a page before its first step, before each step, and after each step that was done.
class PageWatcher {
  public:
    virtual ~PageWatcher() = default;
    virtual void source(const Page& page) = 0;
    virtual void before(const std::string& step, const Page& page) = 0;
    virtual void after(const std::string& step, const Page& page) = 0;
};

// findings: what is to be used instead of being measured; empty members are measured. watcher: may
// be null.
void process(const Pipeline& pipeline, Page& page, const PageFindings& findings, PageRecord& record,
             PageWatcher* watcher);

// Turns the page as its file asks for.
Step orientation_step();
// Turns the page clockwise.
Step rotate_step(int quarter_turns);

// Takes the dark border off. A colour page becomes grey when `to_grey` (it will be binarized).
Step border_step(const Options& options, bool to_grey);
// What --for ocr does to grey and colour pages beforehand: strong specks, uneven light and low
// resolutions, which the later steps see no more.
Step prepare_step(const Options& options);
// Makes the page bitonal.
Step binarize_step(const Options& options);
// Measures the skew of a bitonal page (or takes the one of the findings or of --skew) and turns the
// page straight. With --for ocr it does so with grey pages, too.
Step deskew_step(const Options& options);

// Steps on bitonal pages.
Step despeckle_step(const Options& options);
Step unline_step(const Options& options);
// Keeps the lines only.
Step underlines_step(const Options& options);
// Keeps the text only.
Step textmask_step(const Options& options);

}  // namespace tool
