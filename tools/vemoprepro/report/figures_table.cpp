// Every cell has the exact value that it is sorted by; those without one are empty and go last.
#include "report/figures_table.h"

#include <algorithm>
#include <cmath>

#include "report/figure_text.h"
#include "report/html_text.h"
#include "steps/ink_removal.h"
#include "steps/number_text.h"

namespace tool::report {
namespace {

std::string cell(const std::string& value, const std::string& text) {
    return "<td data-value=\"" + escaped(value) + "\">" + text + "</td>";
}

std::string number_cell(double value, const std::string& text) {
    return cell(steps::with_digits("%.17g", value), escaped(text));
}

std::string empty_cell() {
    return "<td class=\"none\">–</td>";
}

// The steps that count the ink they took, in the order of their first appearance.
std::vector<std::string> counting_steps(const std::vector<FigureRow>& rows) {
    std::vector<std::string> names;
    for (const FigureRow& row : rows) {
        for (const steps::StepNote& step : row.record.steps) {
            if (step.outcome.done && step.outcome.ink_removed &&
                std::find(names.begin(), names.end(), step.name) == names.end()) {
                names.push_back(step.name);
            }
        }
    }
    return names;
}

std::string removed_cell(const PageRecord& record, const std::string& name) {
    for (const steps::StepNote& step : record.steps) {
        if (step.name != name || !step.outcome.done || !step.outcome.ink_removed) continue;
        const double share = *step.outcome.ink_removed;
        if (share <= steps::kMostInk) return number_cell(share, share_text(share));
        return "<td class=\"much\" data-value=\"" + steps::with_digits("%.17g", share) +
               "\"><strong title=\"more than a tenth of the ink\">" + escaped(share_text(share)) +
               "</strong></td>";
    }
    return empty_cell();
}

std::string warning_cell(const PageRecord& record) {
    const std::vector<std::string> warnings = warnings_of(record);
    if (warnings.empty()) return empty_cell();
    std::string text;
    for (const std::string& warning : warnings) text += "<p>" + escaped(warning) + "</p>";
    return "<td class=\"words\" data-value=\"" + escaped(warnings.front()) + "\">" + text + "</td>";
}

std::string content_cell(const std::optional<Box>& box) {
    if (!box) return empty_cell();
    return number_cell(double{1} * box->width * box->height, size_text(box->width, box->height) +
                                                                 " at " + std::to_string(box->x) +
                                                                 ", " + std::to_string(box->y));
}

std::string measured_cells(const PageRecord& record) {
    std::string text =
        record.skew ? number_cell(record.skew->degrees(), degrees_text(record.skew->degrees()))
                    : empty_cell();
    text += record.confidence && std::isfinite(*record.confidence)
                ? number_cell(*record.confidence, steps::with_digits("%.2f", *record.confidence))
                : empty_cell();
    return text + (record.threshold
                       ? number_cell(*record.threshold, std::to_string(*record.threshold))
                       : empty_cell());
}

std::string dpi_cell(const PageRecord& record) {
    const std::string text = dpi_text(record.source.dpi);
    const steps::WorkingResolution& resolution = record.resolution;
    if (resolution.source == steps::ResolutionSource::kFile && !resolution.surprising) {
        return number_cell(record.source.dpi.x, text);
    }
    return "<td class=\"narrow\" data-value=\"" + std::to_string(record.source.dpi.x) + "\">" +
           text + " <small>" + escaped(resolution.why) + "</small></td>";
}

// The name of the file stands out from the folder that it is in.
std::string name_markup(const std::string& input) {
    const std::size_t end = input.rfind('/') + 1;
    const std::string folder =
        end == 0 ? "" : "<span class=\"folder\">" + escaped(input.substr(0, end)) + "</span>";
    return folder + escaped(input == "-" ? "standard input" : input.substr(end));
}

std::string failure_row(const FigureRow& row, std::size_t number, std::size_t columns) {
    return "<tr class=\"failed\" data-number=\"" + std::to_string(number) +
           "\"><td></td><th scope=\"row\" data-value=\"" + escaped(row.input) + "\">" +
           name_markup(row.input) + "</th><td class=\"words\" colspan=\"" +
           std::to_string(columns - 2) + "\"><p><b>Failed:</b> " + escaped(row.error) +
           ". Nothing was written for this file.</p></td></tr>\n";
}

std::string page_row(const FigureRow& row, std::size_t number,
                     const std::vector<std::string>& steps) {
    const PageRecord& record = row.record;
    const std::string link = "<a href=\"" + row.page_file + "\"";
    std::string text =
        std::string("<tr") + (has_warning(record) ? " class=\"warned\"" : "") + " data-number=\"" +
        std::to_string(number) + "\"><td>" + link +
        " tabindex=\"-1\" aria-hidden=\"true\"><img src=\"" + row.thumbnail +
        "\" alt=\"\" loading=\"lazy\"></a></td><th scope=\"row\" data-value=\"" +
        escaped(row.input) + "\">" + link + ">" + name_markup(row.input) + "</a></th>" +
        number_cell(static_cast<double>(record.number), std::to_string(record.number)) +
        warning_cell(record);
    for (const std::string& step : steps) text += removed_cell(record, step);
    return text + measured_cells(record) + dpi_cell(record) +
           number_cell(double{1} * record.source.width * record.source.height,
                       size_text(record.source.width, record.source.height)) +
           cell(name_of(record.source.kind), name_of(record.source.kind)) +
           content_cell(record.content) +
           number_cell(record.seconds, seconds_text(record.seconds)) + "</tr>\n";
}

std::vector<std::string> column_names(const std::vector<std::string>& steps) {
    std::vector<std::string> names = {"File", "Page", "Warning"};
    for (const std::string& step : steps) names.push_back("Ink off, " + step);
    for (const char* name :
         {"Skew", "Confidence", "Threshold", "Dpi", "Size", "Kind", "Content", "Seconds"}) {
        names.emplace_back(name);
    }
    return names;
}

bool failed(const FigureRow& row) {
    return !row.error.empty();
}

// Failures, then warnings, then the rest, each in the order of the run: their indices.
std::vector<std::size_t> reading_order(const std::vector<FigureRow>& rows) {
    std::vector<std::size_t> order(rows.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    const auto urgency = [&](std::size_t i) {
        return failed(rows[i]) ? 0 : has_warning(rows[i].record) ? 1 : 2;
    };
    std::stable_sort(order.begin(), order.end(), [&](std::size_t one, std::size_t other) {
        return urgency(one) < urgency(other);
    });
    return order;
}

}  // namespace

std::string summary_text(const std::vector<FigureRow>& rows) {
    const auto failures = std::count_if(rows.begin(), rows.end(), failed);
    const auto warnings = std::count_if(
        rows.begin(), rows.end(), [](const FigureRow& row) { return has_warning(row.record); });
    const auto pages = static_cast<std::ptrdiff_t>(rows.size()) - failures;
    std::string text = std::to_string(pages) + (pages == 1 ? " page" : " pages");
    if (failures > 0) text += ", " + std::to_string(failures) + " failed";
    if (warnings > 0) text += ", " + std::to_string(warnings) + " to look at";
    return text;
}

std::string figures_markup(const std::vector<FigureRow>& rows) {
    const std::vector<std::string> steps = counting_steps(rows);
    const std::vector<std::string> columns = column_names(steps);
    std::string text =
        "<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"Figures of all "
        "pages\"><table id=\"figures\"><thead><tr><td>Before, after</td>";
    for (const std::string& name : columns) {
        text += "<th scope=\"col\" aria-sort=\"none\"><button type=\"button\">" + escaped(name) +
                "</button></th>";
    }
    text += "</tr></thead><tbody>\n";
    for (const std::size_t i : reading_order(rows)) {
        text += failed(rows[i]) ? failure_row(rows[i], i, columns.size() + 1)
                                : page_row(rows[i], i, steps);
    }
    return text + "</tbody></table></div>\n";
}

}  // namespace tool::report
