// What was found on a page and what was done to it: the one record that every report is made from.
#pragma once

#include <cstddef>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "page/page.h"

namespace tool {

// Drift of `numerator` pixels over `denominator` pixels of width, positive when text rises to the
// right.
struct Skew {
    static constexpr int kScale = 512;
    static constexpr int kLargest = 96;  // of kScale

    int numerator = 0;
    int denominator = kScale;

    double degrees() const;
};

// In pixels of the upright page.
struct Box {
    int x, y, width, height;
};

struct StepRecord {
    std::string name;
    bool done = false;
    std::string why;                    // what was done, or why it was skipped
    std::optional<double> ink_removed;  // share of the ink before the step
    double seconds = 0;

    // "deskew: skipped: no clear skew (confidence 1.23)"
    std::string line() const;
};

struct PageRecord {
    std::size_t number = 1;
    PageKind kind = PageKind::kBitonal;
    int width = 0;
    int height = 0;
    Resolution dpi;
    std::string dpi_source;  // "file", "option" or "default"
    std::optional<Skew> skew;
    std::optional<double> confidence;  // none when the skew was not measured
    std::optional<int> threshold;
    std::optional<Box> content;  // inside the border that was taken off
    bool specked = false;        // heavily; not printed
    // The page with ink that is faint beside the rest of it as well, from binarizing it for reading
    // until its rules are removed; not printed.
    std::shared_ptr<const Page> with_faint_ink;
    std::vector<StepRecord> steps;
    PageKind output_kind = PageKind::kBitonal;
    int output_width = 0;
    int output_height = 0;
    double seconds = 0;
};

// Size, kind and resolution before the first step.
void describe_source(PageRecord& record, const Page& page);

// "colour, 2480 x 3508 pixels, 300 dpi"
std::string describe(const PageRecord& record);

nlohmann::ordered_json to_json(const PageRecord& record);

// What an earlier run found on a page, for use on another scan of it.
struct PageFindings {
    std::optional<Skew> skew;
    std::optional<int> threshold;
};

// The pages of each file of a record that --json printed. Throws FileError.
std::vector<std::vector<PageFindings>> read_findings(const std::string& path);

}  // namespace tool
