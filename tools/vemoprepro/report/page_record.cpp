// The JSON form of a page's record, and its way back.
#include "report/page_record.h"

#include <cmath>
#include <cstdlib>
#include <fstream>

#include "files/file_error.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

Json size_json(PageKind kind, int width, int height) {
    return {{"kind", name_of(kind)}, {"width", width}, {"height", height}};
}

Json skew_json(const PageRecord& record) {
    if (!record.skew) return nullptr;
    Json json = {{"degrees", record.skew->degrees()},
                 {"numerator", record.skew->numerator},
                 {"denominator", record.skew->denominator},
                 {"confidence", nullptr}};
    if (record.confidence && std::isfinite(*record.confidence)) {
        json["confidence"] = *record.confidence;
    }
    return json;
}

Json box_json(const std::optional<Box>& box) {
    if (!box) return nullptr;
    return {{"x", box->x}, {"y", box->y}, {"width", box->width}, {"height", box->height}};
}

Json share_json(const std::optional<double>& share) {
    if (!share) return nullptr;
    return std::round(*share * 1e5) / 1e5;
}

// Milliseconds are as fine as a time is worth reading.
double rounded(double seconds) {
    return std::round(seconds * 1e4) / 1e4;
}

// A whole number that an int holds; Json converts everything else without a word.
int whole_number(const Json& json) {
    const bool fits = json.is_number_unsigned()
                          ? json.get<std::uint64_t>() <= INT32_MAX
                          : json.is_number_integer() && json.get<std::int64_t>() >= INT32_MIN;
    if (!fits) throw std::out_of_range(json.dump() + " is no whole number of 32 bits");
    return json.get<int>();
}

PageFindings findings_of(const Json& page) {
    PageFindings findings;
    const Json& skew = page.at("skew");
    if (!skew.is_null()) {
        findings.skew =
            Skew{whole_number(skew.at("numerator")), whole_number(skew.at("denominator"))};
        const auto numerator = std::abs(static_cast<std::int64_t>(findings.skew->numerator));
        const auto denominator = static_cast<std::int64_t>(findings.skew->denominator);
        if (denominator < 1 || numerator * Skew::kScale > denominator * Skew::kLargest) {
            throw std::out_of_range("a skew beyond 10.6 degrees");
        }
    }
    const Json& threshold = page.at("threshold");
    if (!threshold.is_null()) {
        findings.threshold = whole_number(threshold);
        if (*findings.threshold < 1 || *findings.threshold > 255) {
            throw std::out_of_range("a threshold beyond 1 .. 255");
        }
    }
    return findings;
}

}  // namespace

double Skew::degrees() const {
    return std::atan2(numerator, denominator) * 57.29577951308232;
}

std::string StepRecord::line() const {
    return name + ": " + (done ? "done: " : "skipped: ") + why;
}

void describe_source(PageRecord& record, const Page& page) {
    record.kind = page.kind;
    record.width = page.width;
    record.height = page.height;
    record.dpi = page.dpi;
}

std::string describe(const PageRecord& record) {
    std::string text = std::string(name_of(record.kind)) + ", " + std::to_string(record.width) +
                       " x " + std::to_string(record.height) + " pixels";
    if (record.dpi.x == 0) return text + ", no resolution";
    text += ", " + std::to_string(record.dpi.x);
    if (record.dpi.y != record.dpi.x) text += " x " + std::to_string(record.dpi.y);
    return text + " dpi";
}

Json to_json(const PageRecord& record) {
    Json json = {{"page", record.number}};
    json.update(size_json(record.kind, record.width, record.height));
    json["dpi"] = {record.dpi.x, record.dpi.y};
    json["dpi_source"] = record.dpi_source;
    json["skew"] = skew_json(record);
    json["threshold"] = record.threshold ? Json(*record.threshold) : Json(nullptr);
    json["content"] = box_json(record.content);
    json["steps"] = Json::array();
    for (const StepRecord& step : record.steps) {
        json["steps"].push_back({{"name", step.name},
                                 {"status", step.done ? "done" : "skipped"},
                                 {"why", step.why},
                                 {"ink_removed", share_json(step.ink_removed)},
                                 {"seconds", rounded(step.seconds)}});
    }
    json["output"] = size_json(record.output_kind, record.output_width, record.output_height);
    json["seconds"] = rounded(record.seconds);
    return json;
}

std::vector<std::vector<PageFindings>> read_findings(const std::string& path) {
    std::ifstream stream(path);
    if (!stream) throw system_error_of(path);
    try {
        std::vector<std::vector<PageFindings>> files;
        const Json document = Json::parse(stream);
        for (const Json& file : document.at("files")) {
            std::vector<PageFindings> pages;
            for (const Json& page : file.at("pages")) pages.push_back(findings_of(page));
            files.push_back(std::move(pages));
        }
        return files;
    } catch (const std::exception& error) {
        throw FileError(path, std::string("not a record of --json: ") + error.what());
    }
}

}  // namespace tool
