// The JSON form of page records, which --json prints. record_reading.h is the way back.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "report/page_record.h"

namespace tool::run {

using Json = nlohmann::ordered_json;

Json to_json(const report::PageRecord& record);

// A file's entry before anything is known of it. format: empty when it is not known.
Json file_json(const std::string& input, const std::string& format);

// The whole document, as text that is UTF-8 whatever the file names are.
std::string document_text(const Json& files);

}  // namespace tool::run
