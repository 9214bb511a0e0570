#include "report/page_markup.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "report/fan_plot.h"
#include "report/figure_text.h"
#include "report/html_text.h"
#include "steps/ink_removal.h"
#include "steps/number_text.h"

namespace tool::report {
namespace {

std::string css_colour(Colour colour) {
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", colour.red, colour.green, colour.blue);
    return text;
}

std::string warnings_markup(const PageRecord& record) {
    const std::vector<std::string> warnings = warnings_of(record);
    if (warnings.empty()) return "";
    std::string text =
        "<div class=\"warning\" role=\"note\"><b>Look at this page before trusting it.</b><ul>";
    for (const std::string& warning : warnings) text += "<li>" + escaped(warning) + "</li>";
    return text + "</ul></div>\n";
}

std::string row(const std::string& name, const std::string& value) {
    return "<div><dt>" + name + "</dt><dd>" + escaped(value) + "</dd></div>";
}

std::string shape_text(const PageShape& shape) {
    return std::string(name_of(shape.kind)) + ", " + size_text(shape.width, shape.height) +
           " pixels";
}

std::string figures_markup(const PageRecord& record) {
    std::string text = "<h2>Figures</h2><dl class=\"figures\">";
    text += row("Page", shape_text(record.source));
    text += row("Resolution", dpi_text(record.source.dpi) + " dpi, " + record.resolution.why);
    if (record.skew) text += row("Skew", degrees_text(record.skew->degrees()));
    if (record.threshold) text += row("Threshold", std::to_string(*record.threshold));
    if (record.content) {
        text += row("Content", size_text(record.content->width, record.content->height) + " at " +
                                   std::to_string(record.content->x) + ", " +
                                   std::to_string(record.content->y));
    }
    text += row("Result", shape_text(record.output) + ", " + dpi_text(record.output.dpi) + " dpi");
    if (record.kept) text += row("Kept", shape_text(record.kept->shape) + ", " + record.kept->file);
    return text + row("Time", seconds_text(record.seconds) + " s") + "</dl>\n";
}

std::string link(const std::string& target, const std::string& text) {
    return "<a href=\"" + target + "\">" + text + "</a>";
}

std::string pictures_markup(const PictureNames& names, const PagePictures& pictures) {
    std::string text = "<h2>Pictures at full size</h2><p class=\"files\">" +
                       link(names.before(pictures), "Before") +
                       link(names.after(pictures), "After");
    for (const RemovedInk& removed : pictures.removed) {
        text += link(names.removed(removed), "Removed by " + escaped(removed.step));
    }
    return text + "</p>\n";
}

std::string spots_button(const RemovedInk& removed) {
    std::string spots;
    for (const Point& spot : removed.spots) {
        if (!spots.empty()) spots += ' ';
        spots += steps::with_digits("%.0f", spot.x) + "," + steps::with_digits("%.0f", spot.y);
    }
    return "<button type=\"button\" class=\"spots\" data-step=\"" + escaped(removed.step) +
           "\" data-spots=\"" + spots + "\">Look closer</button>";
}

// What was done, or why not, and how much ink went with it.
std::string outcome_text(const steps::Outcome& outcome) {
    std::string text = (outcome.done ? "" : "skipped: ") + escaped(outcome.why);
    if (!outcome.done || !outcome.ink_removed) return text;
    if (text.find("of the ink") == std::string::npos) {
        text += ", " + escaped(share_text(*outcome.ink_removed)) + " of the ink";
    }
    if (*outcome.ink_removed <= steps::kMostInk) return text;
    return "<strong class=\"much\">" + text + "</strong>";
}

std::string step_markup(const steps::StepNote& step, const std::vector<RemovedInk>& removed) {
    const auto marked = std::find_if(removed.begin(), removed.end(),
                                     [&](const RemovedInk& ink) { return ink.step == step.name; });
    const steps::Outcome& outcome = step.outcome;
    std::string name = escaped(step.name);
    if (marked != removed.end()) {
        name = "<label><input type=\"checkbox\" checked data-step=\"" + name +
               "\"><i class=\"swatch\" style=\"background:" + css_colour(mark_colour(step.name)) +
               "\"></i>" + name + "</label>" + spots_button(*marked);
    }
    std::string text = std::string("<li class=\"") + (outcome.done ? "done" : "skipped") +
                       (outcome.warning ? " warned" : "") + "\"><b>" + name + "</b><span>" +
                       outcome_text(outcome) + "</span>";
    if (outcome.done) text += "<small>" + escaped(seconds_text(step.seconds)) + " s</small>";
    return text + "</li>";
}

std::string steps_markup(const PageRecord& record, const PagePictures& pictures) {
    std::string text = "<h2>Steps</h2>";
    if (!pictures.removed.empty()) {
        text += "<p class=\"hint\">Coloured on the page: what a step took off it.</p>";
    }
    text += "<ol class=\"steps\">";
    for (const steps::StepNote& step : record.steps) text += step_markup(step, pictures.removed);
    return text + "</ol>\n";
}

}  // namespace

std::string page_title(const std::string& input, std::size_t number, std::size_t page_count) {
    const std::string name = input == "-" ? "standard input" : input;
    if (page_count == 1) return name;
    return name + ", page " + std::to_string(number) + " of " + std::to_string(page_count);
}

std::string page_markup(const std::string& title, const PictureNames& names,
                        const PageRecord& record, const PagePictures& pictures) {
    std::string text = warnings_markup(record) + "<article class=\"columns\">" +
                       stage_markup(title, names, pictures) + "<div class=\"notes\">" +
                       steps_markup(record, pictures) + figures_markup(record) +
                       pictures_markup(names, pictures);
    if (pictures.fan) text += fan_markup(*pictures.fan, record);
    return text + "</div></article>\n";
}

}  // namespace tool::report
