// Nothing but what is used is kept while the text is parsed, so that neither the number of keys nor
// the depth of what is left out costs more than reading it; the depth is bounded all the same.
#include "run/record_reading.h"

#include <cstdint>
#include <cstdio>
#include <exception>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "files/file_error.h"
#include "run/shown_text.h"

namespace tool::run {
namespace {

using Json = nlohmann::json;

// Twice the depth of a record.
constexpr int kDeepest = 16;
// Some 100,000 pages.
constexpr std::size_t kLargestRecord = std::size_t{256} << 20;
constexpr std::size_t kLongestReason = 200;

bool is_used(const std::string& key) {
    for (const char* used : {"files", "pages", "skew", "numerator", "denominator", "threshold"}) {
        if (key == used) return true;
    }
    return false;
}

// For every piece that is parsed: whether it is kept.
bool keep_what_is_used(int depth, Json::parse_event_t event, const Json& parsed) {
    if (depth > kDeepest) throw std::length_error("nested too deeply");
    if (event != Json::parse_event_t::key) return true;
    return is_used(parsed.get_ref<const std::string&>());
}

// A whole number that an int holds; Json converts everything else without a word.
int whole_number(const Json& json, const char* name) {
    const bool fits = json.is_number_unsigned()
                          ? json.get<std::uint64_t>() <= INT32_MAX
                          : json.is_number_integer() && json.get<std::int64_t>() >= INT32_MIN;
    if (!fits) throw std::out_of_range(std::string(name) + " is no whole number of 32 bits");
    return json.get<int>();
}

steps::Findings findings_of(const Json& page) {
    steps::Findings findings;
    const Json& skew = page.at("skew");
    if (!skew.is_null()) {
        findings.skew = steps::Skew{whole_number(skew.at("numerator"), "numerator"),
                                    whole_number(skew.at("denominator"), "denominator")};
        if (!findings.skew->in_range()) throw std::out_of_range("a skew beyond 10.6 degrees");
    }
    const Json& threshold = page.at("threshold");
    if (!threshold.is_null()) {
        findings.threshold = whole_number(threshold, "threshold");
        if (*findings.threshold < 1 || *findings.threshold > 255) {
            throw std::out_of_range("a threshold beyond 1 .. 255");
        }
    }
    return findings;
}

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

std::string text_of(const std::string& path) {
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rb"));
    if (!file) throw files::system_error_of(path);
    std::string text;
    char buffer[1 << 16];
    while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, file.get())) {
        text.append(buffer, count);
        if (text.size() > kLargestRecord) {
            throw files::FileError(path, "larger than 256 MB, which no record of --json is");
        }
    }
    if (std::ferror(file.get()) != 0) throw files::system_error_of(path);
    return text;
}

// Without "[json.exception.parse_error.101] ", which nobody needs to know.
std::string reason_of(const std::exception& error) {
    std::string reason = error.what();
    if (reason.front() == '[') reason.erase(0, reason.find("] ") + 2);
    return shortened(reason, kLongestReason);
}

}  // namespace

RecordedFindings findings_in(const std::string& text, const std::string& path) {
    try {
        RecordedFindings files;
        const Json record = Json::parse(text, keep_what_is_used);
        for (const Json& file : record.at("files")) {
            std::vector<steps::Findings> pages;
            for (const Json& page : file.at("pages")) pages.push_back(findings_of(page));
            files.push_back(std::move(pages));
        }
        return files;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        throw files::FileError(path, "not a record of --json: " + reason_of(error));
    }
}

RecordedFindings read_findings(const std::string& path) {
    return findings_in(text_of(path), path);
}

}  // namespace tool::run
