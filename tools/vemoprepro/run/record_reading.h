// From the record of --json back to what is used of it, for --apply. The file may be anything.
#pragma once

#include <string>
#include <vector>

#include "steps/page_work.h"

namespace tool::run {

// The pages of each file of a record.
using RecordedFindings = std::vector<std::vector<steps::Findings>>;

// Throws FileError, with a short text whatever the file holds.
RecordedFindings read_findings(const std::string& path);

// Of the record's text; path is its name in errors.
RecordedFindings findings_in(const std::string& text, const std::string& path);

}  // namespace tool::run
