#include "run/record_json.h"

#include <cmath>

namespace tool::run {
namespace {

Json size_json(const PageShape& shape) {
    return {{"kind", name_of(shape.kind)}, {"width", shape.width}, {"height", shape.height}};
}

Json dpi_json(Resolution dpi) {
    if (dpi.x == 0) return nullptr;
    return {dpi.x, dpi.y};
}

const char* source_json(steps::ResolutionSource source) {
    switch (source) {
        case steps::ResolutionSource::kFile:
            return "file";
        case steps::ResolutionSource::kOption:
            return "option";
        case steps::ResolutionSource::kLetters:
            return "estimate";
        case steps::ResolutionSource::kPageSize:
            return "page-size";
        case steps::ResolutionSource::kDefault:
            break;
    }
    return "default";
}

Json skew_json(const report::PageRecord& record) {
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

Json corners_json(const Corners& corners) {
    Json json = Json::array();
    for (const Corner& corner : corners) json.push_back({corner.x, corner.y});
    return json;
}

Json share_json(const std::optional<double>& share) {
    if (!share) return nullptr;
    return std::round(*share * 1e5) / 1e5;
}

// Milliseconds are as fine as a time is worth reading.
double rounded(double seconds) {
    return std::round(seconds * 1e4) / 1e4;
}

Json kept_json(const report::KeptRecord& kept) {
    Json json = size_json(kept.shape);
    json["dpi"] = dpi_json(kept.shape.dpi);
    json["file"] = kept.file;
    return json;
}

Json step_json(const steps::StepNote& step) {
    const steps::Outcome& outcome = step.outcome;
    return {{"name", step.name},          {"status", outcome.done ? "done" : "skipped"},
            {"why", outcome.why},         {"ink_removed", share_json(outcome.ink_removed)},
            {"warning", outcome.warning}, {"seconds", rounded(step.seconds)}};
}

}  // namespace

Json to_json(const report::PageRecord& record) {
    Json json = {{"page", record.number}};
    json.update(size_json(record.source));
    const steps::WorkingResolution& resolution = record.resolution;
    json["dpi"] = {resolution.dpi.x, resolution.dpi.y};
    json["dpi_source"] = source_json(resolution.source);
    json["dpi_reason"] = resolution.why;
    json["dpi_stated"] = dpi_json(resolution.stated);
    json["skew"] = skew_json(record);
    json["threshold"] = record.threshold ? Json(*record.threshold) : Json(nullptr);
    json["content"] = box_json(record.content);
    if (record.corners) json["corners"] = corners_json(*record.corners);
    json["steps"] = Json::array();
    for (const steps::StepNote& step : record.steps) json["steps"].push_back(step_json(step));
    json["output"] = size_json(record.output);
    json["output"]["dpi"] = dpi_json(record.output.dpi);
    if (record.kept) json["kept"] = kept_json(*record.kept);
    json["seconds"] = rounded(record.seconds);
    return json;
}

Json file_json(const std::string& input, const std::string& format) {
    return {{"input", input},
            {"format", format.empty() ? Json(nullptr) : Json(format)},
            {"error", nullptr},
            {"pages", Json::array()}};
}

std::string document_text(const Json& files) {
    const Json document = {{"program", "vemoprepro " VEMOPREPRO_VERSION}, {"files", files}};
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace tool::run
