#include "report/report_frame.h"

#include <map>
#include <string_view>

#include "report/html_text.h"

namespace tool::report {
namespace {

using Fillings = std::map<std::string_view, std::string>;

// What is put in is not looked into: it may have @ signs of its own.
std::string filled(std::string_view text, const Fillings& fillings) {
    std::string result;
    while (true) {
        const std::size_t start = text.find('@');
        const std::size_t end = text.find('@', start + 1);
        result += text.substr(0, start);
        if (start == std::string_view::npos) return result;
        const auto filling = fillings.find(text.substr(start + 1, end - start - 1));
        if (filling == fillings.end()) {
            result += '@';
            text.remove_prefix(start + 1);
            continue;
        }
        result += filling->second;
        text.remove_prefix(end + 1);
    }
}

std::string neighbour_link(const std::string& file, const std::string& relation,
                           const std::string& words) {
    if (file.empty()) return "<span>" + words + "</span>";
    return "<a rel=\"" + relation + "\" href=\"" + file + "\">" + words + "</a>";
}

}  // namespace

std::string index_file(const std::string& title, const std::string& summary,
                       const std::string& figures_markup) {
    return filled(
        kIndexTemplate,
        {{"title", escaped(title)}, {"summary", escaped(summary)}, {"figures", figures_markup}});
}

std::string page_file(const std::string& title, const std::string& page_markup,
                      const std::string& previous, const std::string& next) {
    return filled(kPageTemplate, {{"title", escaped(title)},
                                  {"page", page_markup},
                                  {"previous", neighbour_link(previous, "prev", "← Previous")},
                                  {"next", neighbour_link(next, "next", "Next →")}});
}

}  // namespace tool::report
