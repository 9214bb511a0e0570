// Writes the pieces of markup aside, in their order, and renames at the end.
#include "report/picture_report.h"

#include <sys/stat.h>

#include "files/temporary_file.h"
#include "report/report_template.h"
#include "run/messages.h"

namespace tool {
namespace {

bool is_same_file(const std::string& path, const struct stat& other) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && status.st_dev == other.st_dev &&
           status.st_ino == other.st_ino;
}

// The path of the report in its folder, which is there afterwards.
std::string report_path(const Options& options) {
    const std::string& folder = options.report_folder;
    if (mkdir(folder.c_str(), 0777) != 0 && errno != EEXIST) throw system_error_of(folder);
    struct stat status {};
    if (stat(folder.c_str(), &status) != 0) throw system_error_of(folder);
    if (!S_ISDIR(status.st_mode)) throw system_error_of(folder, ENOTDIR);
    std::string path = folder + (folder.back() == '/' ? "" : "/") + "index.html";
    if (stat(path.c_str(), &status) != 0) return path;
    if (S_ISDIR(status.st_mode)) throw system_error_of(path, EISDIR);
    for (const std::string& input : options.inputs) {
        if (is_same_file(input, status)) {
            throw FileError(path, "the report would overwrite an input");
        }
    }
    if (!options.overwrite) throw FileError(path, "exists already (--overwrite replaces it)");
    return path;
}

// "letter.jpg", or "letter.jpg and 3 more"
std::string title_of(const std::vector<std::string>& inputs) {
    std::string title = inputs.front() == "-" ? "standard input" : inputs.front();
    if (inputs.size() > 1) title += " and " + std::to_string(inputs.size() - 1) + " more";
    return title;
}

}  // namespace

PictureReport::PictureReport(const Options& options)
    : file_(report_path(options), options.overwrite) {
    write(head_markup(title_of(options.inputs)));
}

void PictureReport::page(const std::string& input, std::size_t page_count, const PageRecord& record,
                         const PagePictures& pictures) {
    if (error_) return;
    const std::string anchor = "page-" + std::to_string(rows_.size() + 1);
    write(page_markup(anchor, input, page_count, record, pictures));
    rows_.push_back({anchor, input, record, ""});
}

void PictureReport::fail(const std::string& input, const std::string& what) {
    if (error_) return;
    const std::string anchor = "page-" + std::to_string(rows_.size() + 1);
    write(failure_markup(anchor, input, what));
    rows_.push_back({anchor, input, {}, what});
}

bool PictureReport::finish() {
    try {
        write(figures_markup(rows_));
        write(kReportEnd);
        if (!error_) file_.publish();
    } catch (const FileError& error) {
        error_ = error;
    }
    if (error_) complain(error_->file(), error_->what());
    return !error_;
}

void PictureReport::write(const std::string& text) {
    if (error_) return;
    try {
        write_all(file_.descriptor(), text.data(), text.size(), file_.name());
    } catch (const FileError& error) {
        error_ = error;
    }
}

}  // namespace tool
