// The JSON form of page records, which --json prints, and the way back, which --apply goes.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "report/page_record.h"

namespace tool::run {

using Json = nlohmann::ordered_json;

Json to_json(const report::PageRecord& record);

// A file's entry before anything is known of it. format: empty when it is not known.
Json file_json(const std::string& input, const std::string& format);

// The whole document, as text that is UTF-8 whatever the file names are.
std::string document_text(const Json& files);

// The pages of each file of a document. Throws FileError.
std::vector<std::vector<steps::Findings>> read_findings(const std::string& path);

}  // namespace tool::run
