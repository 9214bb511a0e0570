// Pages of the report: pictures one above the other, the steps with what they removed, the fan.
#include "report/page_markup.h"

#include <algorithm>
#include <cstdio>

#include "report/fan_plot.h"
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

// Both pictures at one scale, with their centres at the same place: a page is turned about it.
struct Stage {
    double width, height;

    explicit Stage(const PagePictures& pictures)
        : width(std::max(pictures.before.page_width, pictures.after.page_width)),
          height(std::max(pictures.before.page_height, pictures.after.page_height)) {}

    std::string place(const EncodedPicture& picture) const {
        const auto share = [](double part, double whole) {
            return steps::with_digits("%.4f%%", part * 100 / whole);
        };
        return "left:" + share((width - picture.page_width) / 2, width) +
               ";top:" + share((height - picture.page_height) / 2, height) +
               ";width:" + share(picture.covered_width, width) +
               ";height:" + share(picture.covered_height, height);
    }

    std::string image(const EncodedPicture& picture, const std::string& attributes,
                      const std::string& alternative) const {
        return "<img " + attributes + " style=\"" + place(picture) + "\" alt=\"" +
               escaped(alternative) + "\" draggable=\"false\" src=\"data:" + picture.type +
               ";base64," + base64(picture.bytes) + "\">";
    }
};

std::string marks_in(const PagePictures& pictures, const Stage& stage, bool before, bool after) {
    std::string text;
    for (const RemovedInk& removed : pictures.removed) {
        if (removed.fits_before == before && removed.fits_after == after) {
            text += stage.image(removed.marks,
                                "class=\"marks\" data-step=\"" + escaped(removed.step) + "\"",
                                "removed by " + removed.step);
        }
    }
    return text;
}

std::string stage_markup(const std::string& anchor, const std::string& name,
                         const PagePictures& pictures) {
    const Stage stage(pictures);
    const std::string range = anchor + "-cut";
    return "<div class=\"compare\"><div class=\"stage\" style=\"aspect-ratio:" +
           steps::with_digits("%.0f", stage.width) + "/" +
           steps::with_digits("%.0f", stage.height) + "\"><div class=\"layer after\">" +
           stage.image(pictures.after, "", name + ", after") +
           marks_in(pictures, stage, false, true) + "</div><div class=\"layer before\">" +
           stage.image(pictures.before, "", name + ", before") +
           marks_in(pictures, stage, true, false) + "</div><div class=\"layer\">" +
           marks_in(pictures, stage, true, true) +
           "</div><div class=\"edge\" aria-hidden=\"true\"></div></div><div class=\"cut\"><label "
           "for=\"" +
           range + "\">Before</label><input type=\"range\" id=\"" + range +
           "\" min=\"0\" max=\"100\" step=\"0.5\" value=\"50\" aria-label=\"How much of the page "
           "before shows, in percent\"><span>After</span></div></div>\n";
}

std::string step_markup(const steps::StepNote& step, const std::vector<RemovedInk>& removed) {
    const bool marked = std::any_of(removed.begin(), removed.end(),
                                    [&](const RemovedInk& ink) { return ink.step == step.name; });
    std::string name = escaped(step.name);
    if (marked) {
        name = "<label><input type=\"checkbox\" checked data-step=\"" + name +
               "\"><i class=\"swatch\" style=\"background:" + css_colour(mark_colour(step.name)) +
               "\"></i>" + name + "</label>";
    }
    std::string text = std::string("<li class=\"") + (step.outcome.done ? "done" : "skipped") +
                       "\"><b>" + name + "</b><span>" + (step.outcome.done ? "" : "skipped: ") +
                       escaped(step.outcome.why) + "</span>";
    if (step.outcome.done)
        text += "<small>" + steps::with_digits("%.0f ms", step.seconds * 1000) + "</small>";
    return text + "</li>";
}

std::string heading(const std::string& input, std::size_t number, std::size_t page_count) {
    const std::string name = input == "-" ? "standard input" : input;
    if (page_count == 1) return name;
    return name + ", page " + std::to_string(number) + " of " + std::to_string(page_count);
}

}  // namespace

std::string page_markup(const std::string& anchor, const std::string& input, std::size_t page_count,
                        const PageRecord& record, const PagePictures& pictures) {
    const std::string name = heading(input, record.number, page_count);
    std::string text = "<article id=\"" + anchor + "\"><h2>" + escaped(name) + "</h2><p>" +
                       escaped(describe(record.source)) + "</p>\n<div class=\"columns\">" +
                       stage_markup(anchor, name, pictures) + "<div class=\"notes\"><h3>Steps</h3>";
    if (!pictures.removed.empty()) {
        text += "<p class=\"hint\">Coloured: what a step took off the page.</p>";
    }
    text += "<ol class=\"steps\">";
    for (const steps::StepNote& step : record.steps) text += step_markup(step, pictures.removed);
    text += "</ol>\n";
    if (pictures.fan) text += fan_markup(*pictures.fan, record);
    return text + "</div></div></article>\n";
}

std::string failure_markup(const std::string& anchor, const std::string& input,
                           const std::string& what) {
    return "<article class=\"failed\" id=\"" + anchor + "\"><h2>" + escaped(heading(input, 1, 1)) +
           "</h2><p role=\"alert\"><b>Failed:</b> " + escaped(what) +
           ". Nothing was written for this file.</p></article>\n";
}

}  // namespace tool::report
