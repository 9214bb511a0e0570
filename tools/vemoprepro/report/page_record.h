// What was found on a page and what was done to it: the one record that the words, the JSON and the
// report to look at are made from.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "steps/page_work.h"

namespace tool::report {

// The page in its own kind that lies beside the result.
struct KeptRecord {
    PageShape shape;
    std::string file;
};

struct PageRecord {
    std::size_t number = 1;
    PageShape source;
    steps::WorkingResolution resolution;
    std::optional<steps::Skew> skew;
    std::optional<double> confidence;  // none when the skew was not measured
    std::optional<int> threshold;
    std::optional<Box> content;
    std::optional<Corners> corners;  // of the page on its photograph
    std::vector<steps::StepNote> steps;
    PageShape output;
    std::optional<KeptRecord> kept;
    double seconds = 0;
};

// Whether a step on the page has something to warn about.
bool has_warning(const PageRecord& record);
// For each step that warns: "despeckle skipped: would take 13 % of the ink"
std::vector<std::string> warnings_of(const PageRecord& record);

// Of a page that has gone through all of its steps.
PageRecord record_of(std::size_t number, const steps::PageWork& work, double seconds);

}  // namespace tool::report
