// Writes the pieces of markup aside, in their order, and renames at the end.
#include "report/html_report.h"

#include <sys/stat.h>

#include "files/temporary_file.h"
#include "report/page_markup.h"
#include "report/report_frame.h"

namespace tool::report {
namespace {

bool is_same_file(const std::string& path, const struct stat& other) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && status.st_dev == other.st_dev &&
           status.st_ino == other.st_ino;
}

// The path of the report in its folder, which is there afterwards.
std::string report_path(const std::string& folder, const std::vector<std::string>& inputs,
                        bool overwrite) {
    if (mkdir(folder.c_str(), 0777) != 0 && errno != EEXIST) {
        if (errno != ENOENT) throw files::system_error_of(folder);
        throw files::FileError("--report " + folder, "the folder to make it in does not exist");
    }
    struct stat status {};
    if (stat(folder.c_str(), &status) != 0) throw files::system_error_of(folder);
    if (!S_ISDIR(status.st_mode)) throw files::system_error_of(folder, ENOTDIR);
    std::string path = folder + (folder.back() == '/' ? "" : "/") + "index.html";
    if (stat(path.c_str(), &status) != 0) return path;
    if (S_ISDIR(status.st_mode)) throw files::system_error_of(path, EISDIR);
    for (const std::string& input : inputs) {
        if (is_same_file(input, status)) {
            throw files::FileError(path, "the report would overwrite an input");
        }
    }
    if (!overwrite) throw files::FileError(path, "exists already (--overwrite replaces it)");
    return path;
}

// "letter.jpg", or "letter.jpg and 3 more"
std::string title_of(const std::vector<std::string>& inputs) {
    std::string title = inputs.front() == "-" ? "standard input" : inputs.front();
    if (inputs.size() > 1) title += " and " + std::to_string(inputs.size() - 1) + " more";
    return title;
}

}  // namespace

HtmlReport::HtmlReport(const std::string& folder, const std::vector<std::string>& inputs,
                       bool overwrite)
    : file_(report_path(folder, inputs, overwrite), overwrite) {
    write(report_start(title_of(inputs)));
}

void HtmlReport::page(const std::string& input, std::size_t page_count, const PageRecord& record,
                      const PagePictures& pictures) {
    if (error_) return;
    write(page_markup(next_anchor(), input, page_count, record, pictures));
    rows_.push_back({next_anchor(), input, record, ""});
}

void HtmlReport::fail(const std::string& input, const std::string& what) {
    if (error_) return;
    write(failure_markup(next_anchor(), input, what));
    rows_.push_back({next_anchor(), input, {}, what});
}

std::string HtmlReport::next_anchor() const {
    return "page-" + std::to_string(rows_.size() + 1);
}

std::optional<files::FileError> HtmlReport::finish() {
    write(figures_markup(rows_));
    write(report_end());
    try {
        if (!error_) file_.publish();
    } catch (const files::FileError& error) {
        error_ = error;
    }
    return error_;
}

void HtmlReport::write(const std::string& text) {
    if (error_) return;
    try {
        files::write_all(file_.descriptor(), text.data(), text.size(), file_.name());
    } catch (const files::FileError& error) {
        error_ = error;
    }
}

}  // namespace tool::report
