#include "report/report_folder.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <regex>
#include <set>
#include <utility>

#include "files/file_error.h"
#include "files/output_file.h"
#include "files/temporary_file.h"

namespace tool::report {
namespace {

using FileIds = std::set<std::pair<dev_t, ino_t>>;

FileIds ids_of(const std::vector<std::string>& paths) {
    FileIds ids;
    struct stat status {};
    for (const std::string& path : paths) {
        if (stat(path.c_str(), &status) == 0) ids.emplace(status.st_dev, status.st_ino);
    }
    return ids;
}

void make_folder(const std::string& folder) {
    if (mkdir(folder.c_str(), 0777) != 0 && errno != EEXIST) {
        if (errno != ENOENT) throw files::system_error_of(folder);
        throw files::FileError("--report " + folder, "the folder to make it in does not exist");
    }
    struct stat status {};
    if (stat(folder.c_str(), &status) != 0) throw files::system_error_of(folder);
    if (!S_ISDIR(status.st_mode)) throw files::system_error_of(folder, ENOTDIR);
}

// Paths of the files in pages/ that have names as a report gives them.
std::vector<std::string> page_files(const std::string& folder) {
    static const std::regex kName(
        "[0-9]{4,}(\\.html|-(thumbnail|before|after|removed-[a-z]+)\\.(png|jpg))");
    std::vector<std::string> paths;
    const std::string pages = folder + kPagesFolder;
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(pages.c_str()), closedir);
    if (!directory) return paths;
    while (const dirent* entry = readdir(directory.get())) {
        if (std::regex_match(entry->d_name, kName)) paths.push_back(pages + entry->d_name);
    }
    return paths;
}

// Files of a report that is there already; the index first.
std::vector<std::string> files_of_report(const std::string& folder) {
    std::vector<std::string> paths = page_files(folder);
    std::sort(paths.begin(), paths.end());
    const std::string index = folder + kIndexName;
    struct stat status {};
    if (stat(index.c_str(), &status) != 0) return paths;
    if (S_ISDIR(status.st_mode)) throw files::system_error_of(index, EISDIR);
    paths.insert(paths.begin(), index);
    return paths;
}

void remove_report(const std::vector<std::string>& paths, const std::vector<std::string>& inputs,
                   bool overwrite) {
    const FileIds ids = ids_of(inputs);
    struct stat status {};
    for (const std::string& path : paths) {
        if (stat(path.c_str(), &status) == 0 && ids.count({status.st_dev, status.st_ino}) != 0) {
            throw files::FileError(path, "the report would overwrite an input");
        }
        if (!overwrite) throw files::FileError(path, "exists already (--overwrite replaces it)");
    }
    for (const std::string& path : paths) {
        if (unlink(path.c_str()) != 0) throw files::system_error_of(path);
    }
}

}  // namespace

ReportFolder::ReportFolder(const std::string& folder, const std::vector<std::string>& inputs,
                           bool overwrite)
    : folder_(folder) {
    if (folder_.back() != '/') folder_ += '/';
    make_folder(folder);
    remove_report(files_of_report(folder_), inputs, overwrite);
}

void ReportFolder::write(const std::string& name, const std::string& bytes) const {
    if (name.rfind(kPagesFolder, 0) == 0) make_folder(folder_ + kPagesFolder);
    files::OutputFile file(folder_ + name, false);
    files::write_all(file.descriptor(), bytes.data(), bytes.size(), file.name());
    file.publish();
}

std::string page_stem(std::size_t number) {
    char text[24];
    std::snprintf(text, sizeof text, "%04zu", number);
    return text;
}

}  // namespace tool::report
