#include "report/report_frame.h"

#include <string_view>

#include "report/html_text.h"

namespace tool::report {
namespace {

constexpr std::string_view kTitle = "@title@";
constexpr std::string_view kPages = "@pages@";

}  // namespace

std::string report_start(const std::string& title) {
    std::string text = kReportTemplate;
    text.resize(text.find(kPages));
    const std::string safe = escaped(title);
    for (std::size_t at = text.find(kTitle); at != std::string::npos;
         at = text.find(kTitle, at + safe.size())) {
        text.replace(at, kTitle.size(), safe);
    }
    return text;
}

std::string report_end() {
    const std::string text = kReportTemplate;
    return text.substr(text.find(kPages) + kPages.size());
}

}  // namespace tool::report
