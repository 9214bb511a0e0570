// Everything lies on a sheet that is as large as the page after, in its pixels. Small pictures are
// part of the file, those at full size are loaded when the sheet is zoomed.
#include "report/stage_markup.h"

#include "report/html_text.h"
#include "steps/number_text.h"

namespace tool::report {
namespace {

std::string css_place(const EncodedPicture& picture, const Placement& placement) {
    std::string text = "width:" + std::to_string(picture.covered_width) +
                       "px;height:" + std::to_string(picture.covered_height) +
                       "px;transform:matrix(";
    for (const double part :
         {placement.a, placement.b, placement.c, placement.d, placement.e, placement.f}) {
        text += steps::with_digits("%.7g,", part);
    }
    text.back() = ')';
    return text;
}

// The picture twice, small and at full size.
std::string images(const PageView& view, const std::string& full_name,
                   const std::string& attributes, const std::string& alternative) {
    const auto image = [&](const EncodedPicture& picture, const char* kind,
                           const std::string& source) {
        return std::string("<img class=\"") + kind + "\"" + attributes + " style=\"" +
               css_place(picture, view.placement) + "\" alt=\"" + escaped(alternative) +
               "\" draggable=\"false\" " + source + "\">";
    };
    return image(view.small, "small",
                 std::string("src=\"data:") + view.small.type + ";base64," +
                     base64(view.small.bytes)) +
           image(view.full, "full", "data-src=\"" + full_name);
}

std::string layer(const std::string& name, const std::string& content) {
    return "<div class=\"layer " + name + "\">" + content + "</div>";
}

constexpr const char* kToolbar =
    "<div class=\"bar\" role=\"toolbar\" aria-label=\"View\">"
    "<button type=\"button\" data-zoom=\"fit\">Whole page</button>"
    "<button type=\"button\" data-zoom=\"1\">100 %</button>"
    "<button type=\"button\" data-zoom=\"2\">200 %</button>"
    "<button type=\"button\" data-zoom=\"4\">400 %</button>"
    "<button type=\"button\" data-flip aria-pressed=\"false\">Flip before / after</button></div>\n";

constexpr const char* kSlider =
    "<div class=\"cut\"><label for=\"cut\">Before</label><input type=\"range\" id=\"cut\" "
    "min=\"0\" max=\"100\" step=\"0.5\" value=\"50\" aria-label=\"How much of the page before "
    "shows, in percent\"><span>After</span></div>\n"
    "<p class=\"hint\">Click a place to see it at full size, and again for the whole page; drag to "
    "compare, or to move the page when it is zoomed. Keys: <kbd>+</kbd> <kbd>−</kbd> zoom, "
    "<kbd>0</kbd> whole page, <kbd>f</kbd> flips before and after, arrows move, "
    "<kbd>n</kbd> <kbd>p</kbd> next and previous page.</p>\n";

}  // namespace

std::string PictureNames::before(const PagePictures& pictures) const {
    return stem + "-before" + pictures.before.full.extension;
}

std::string PictureNames::after(const PagePictures& pictures) const {
    return stem + "-after" + pictures.after.full.extension;
}

std::string PictureNames::removed(const RemovedInk& removed) const {
    return stem + "-removed-" + removed.step + removed.marks.full.extension;
}

std::string PictureNames::thumbnail(const PagePictures& pictures) const {
    return stem + "-thumbnail" + pictures.thumbnail.extension;
}

std::string stage_markup(const std::string& page_name, const PictureNames& names,
                         const PagePictures& pictures) {
    const std::string width = std::to_string(pictures.after.full.covered_width);
    const std::string height = std::to_string(pictures.after.full.covered_height);
    std::string marks;
    for (const RemovedInk& removed : pictures.removed) {
        marks +=
            images(removed.marks, names.removed(removed),
                   " data-step=\"" + escaped(removed.step) + "\"", "removed by " + removed.step);
    }
    return "<div class=\"viewer\">" + std::string(kToolbar) +
           "<div class=\"stage\" tabindex=\"0\" role=\"group\" aria-label=\"The page before and "
           "after; plus and minus zoom, arrow keys move\" style=\"aspect-ratio:" +
           width + "/" + height + "\"><div class=\"sheet\" data-width=\"" + width +
           "\" data-height=\"" + height + "\" style=\"width:" + width + "px;height:" + height +
           "px\">" +
           layer("after",
                 images(pictures.after, names.after(pictures), "", page_name + ", after")) +
           layer("before",
                 images(pictures.before, names.before(pictures), "", page_name + ", before")) +
           layer("marks", marks) + "</div><div class=\"edge\" aria-hidden=\"true\"></div></div>\n" +
           kSlider + "</div>\n";
}

}  // namespace tool::report
