// The table of figures. Every cell has the value that it is sorted by; those without one are empty
// and go last.
#include "report/figures_table.h"

#include <algorithm>
#include <cmath>

#include "report/html_text.h"
#include "steps/number_text.h"

namespace tool::report {
namespace {

std::string cell(const std::string& value, const std::string& text) {
    return "<td data-value=\"" + escaped(value) + "\">" + text + "</td>";
}

std::string number_cell(double value, const std::string& text) {
    return cell(steps::with_digits("%.10g", value), text);
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
        if (step.name == name && step.outcome.done && step.outcome.ink_removed) {
            return number_cell(std::round(*step.outcome.ink_removed * 1e5) / 1e5,
                               steps::with_digits("%.3g", *step.outcome.ink_removed * 100) + " %");
        }
    }
    return empty_cell();
}

std::string size_text(int width, int height) {
    return std::to_string(width) + " × " + std::to_string(height);
}

std::string dpi_text(Resolution dpi) {
    return dpi.x == dpi.y ? std::to_string(dpi.x) : size_text(dpi.x, dpi.y);
}

std::string content_cell(const std::optional<Box>& box) {
    if (!box) return empty_cell();
    return number_cell(double{1} * box->width * box->height, size_text(box->width, box->height) +
                                                                 " at " + std::to_string(box->x) +
                                                                 ", " + std::to_string(box->y));
}

std::string measured_cells(const PageRecord& record) {
    std::string text = record.skew
                           ? number_cell(record.skew->degrees(),
                                         steps::with_digits("%.2f°", record.skew->degrees()))
                           : empty_cell();
    text += record.confidence && std::isfinite(*record.confidence)
                ? number_cell(*record.confidence, steps::with_digits("%.2f", *record.confidence))
                : empty_cell();
    return text + (record.threshold
                       ? number_cell(*record.threshold, std::to_string(*record.threshold))
                       : empty_cell());
}

std::string row_markup(const FigureRow& row, const std::vector<std::string>& steps) {
    const PageRecord& record = row.record;
    const std::string file =
        cell(row.input, "<a href=\"#" + row.anchor + "\">" + escaped(row.input) + "</a>");
    if (!row.error.empty()) {
        return "<tr class=\"failed\">" + file + "<td class=\"none\" colspan=\"" +
               std::to_string(9 + steps.size()) + "\">" + escaped(row.error) + "</td></tr>\n";
    }
    std::string text =
        "<tr>" + file +
        number_cell(static_cast<double>(record.number), std::to_string(record.number)) +
        number_cell(double{1} * record.source.width * record.source.height,
                    size_text(record.source.width, record.source.height)) +
        number_cell(record.source.dpi.x, dpi_text(record.source.dpi)) +
        cell(name_of(record.source.kind), name_of(record.source.kind)) + measured_cells(record);
    for (const std::string& step : steps) text += removed_cell(record, step);
    return text + content_cell(record.content) +
           number_cell(record.seconds, steps::with_digits("%.3f", record.seconds)) + "</tr>\n";
}

std::string column(const std::string& name) {
    return "<th scope=\"col\" aria-sort=\"none\"><button type=\"button\">" + escaped(name) +
           "</button></th>";
}

}  // namespace

std::string figures_markup(const std::vector<FigureRow>& rows) {
    const std::vector<std::string> steps = counting_steps(rows);
    std::string text =
        "<section id=\"figures\"><h2>Figures</h2><div class=\"scroll\"><table><thead><tr>";
    for (const char* name :
         {"File", "Page", "Size", "Dpi", "Kind", "Skew", "Confidence", "Threshold"}) {
        text += column(name);
    }
    for (const std::string& step : steps) text += column("Ink off, " + step);
    for (const char* name : {"Content", "Seconds"}) text += column(name);
    text += "</tr></thead><tbody>\n";
    for (const FigureRow& row : rows) text += row_markup(row, steps);
    return text + "</tbody></table></div></section>\n";
}

}  // namespace tool::report
