#include "report/html_report.h"

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
    : folder_(folder, inputs, overwrite), title_(title_of(inputs)) {}

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
    if (!error_) rows_.push_back({input, {}, "", "", what});
}

std::optional<files::FileError> HtmlReport::finish() {
    if (error_) return error_;
    try {
        write_waiting_page(false);
        folder_.write(kIndexName, index_file(title_, summary_text(rows_), figures_markup(rows_)));
    } catch (const files::FileError& error) {
        error_ = error;
    }
    return error_;
}

}  // namespace tool::report
