#include "report/html_report.h"

#include <algorithm>
#include <utility>

#include "report/page_markup.h"
#include "report/report_frame.h"

namespace tool::report {
namespace {

// "letter.jpg", or "letter.jpg and 3 more"
std::string title_of(const std::vector<std::string>& inputs) {
    if (inputs.empty()) return "no pages";
    std::string title = inputs.front() == "-" ? "standard input" : inputs.front();
    if (inputs.size() > 1) title += " and " + std::to_string(inputs.size() - 1) + " more";
    return title;
}

}  // namespace

HtmlReport::HtmlReport(const std::string& folder, const std::vector<std::string>& inputs,
                       bool overwrite)
    : folder_(folder, inputs, overwrite),
      title_(title_of(inputs)),
      inputs_to_come_(inputs.size()) {}

void HtmlReport::count_input(const std::string& input, std::size_t pages_to_come) {
    const bool is_new = rows_.empty() || rows_.back().input != input;
    if (is_new && inputs_to_come_ > 0) --inputs_to_come_;
    pages_to_come_ = pages_to_come;
}

std::string HtmlReport::missing_text() const {
    std::vector<std::string> missing;
    const auto add = [&](std::size_t number, const std::string& one, const std::string& more) {
        if (number > 0)
            missing.push_back(std::to_string(number) + " " + (number == 1 ? one : more));
    };
    add(pages_to_come_, "page of the last file", "pages of the last file");
    add(inputs_to_come_, "file", "files");
    if (missing.empty()) return "";
    return "; not in this report: " + missing.front() +
           (missing.size() > 1 ? " and " + missing.back() : "");
}

void HtmlReport::page(const std::string& input, std::size_t page_count, const PageRecord& record,
                      const PagePictures& pictures) {
    if (error_) return;
    try {
        write_page(input, page_count, record, pictures);
    } catch (const files::FileError& error) {
        error_ = error;
    }
}

void HtmlReport::write_page(const std::string& input, std::size_t page_count,
                            const PageRecord& record, const PagePictures& pictures) {
    write_waiting_page(true);
    const std::string stem = page_stem(page_count_ + 1);
    const PictureNames names{stem};
    const auto write = [&](const std::string& name, const EncodedPicture& picture) {
        folder_.write(kPagesFolder + name, picture.bytes);
    };
    write(names.before(pictures), pictures.before.full);
    write(names.after(pictures), pictures.after.full);
    for (const RemovedInk& removed : pictures.removed) {
        write(names.removed(removed), removed.marks.full);
    }
    write(names.thumbnail(pictures), pictures.thumbnail);
    const std::string title = page_title(input, record.number, page_count);
    waiting_ = {title, page_markup(title, names, record, pictures)};
    count_input(input, page_count - std::min(page_count, record.number));
    rows_.push_back({input, record, kPagesFolder + stem + ".html",
                     kPagesFolder + names.thumbnail(pictures), ""});
    ++page_count_;
}

void HtmlReport::write_waiting_page(bool another_follows) {
    if (!waiting_) return;
    const std::string name = kPagesFolder + page_stem(page_count_) + ".html";
    folder_.write(name, page_file(waiting_->title, waiting_->content,
                                  page_count_ > 1 ? page_stem(page_count_ - 1) + ".html" : "",
                                  another_follows ? page_stem(page_count_ + 1) + ".html" : ""));
    waiting_.reset();
}

void HtmlReport::fail(const std::string& input, const std::string& what) {
    if (error_) return;
    count_input(input, 0);
    rows_.push_back({input, {}, "", "", what});
}

std::optional<files::FileError> HtmlReport::finish() {
    if (error_) return error_;
    try {
        write_waiting_page(false);
        folder_.write(kIndexName, index_file(title_, summary_text(rows_) + missing_text(),
                                             figures_markup(rows_)));
    } catch (const files::FileError& error) {
        error_ = error;
    }
    return error_;
}

}  // namespace tool::report
