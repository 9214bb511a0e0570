#include "run/inputs.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <system_error>
#include <utility>

#include "page/counted.h"
#include "report/report_frame.h"
#include "run/file_names.h"
#include "run/natural_order.h"
#include "run/usage.h"

namespace tool::run {
namespace {

namespace fs = std::filesystem;

struct Folder {
    std::vector<std::string> images;  // names without the folder
    std::vector<std::string> folders;
    std::vector<std::string> others;
    std::string error;
};

Folder contents_of(const std::string& path) {
    Folder folder;
    std::error_code failed;
    fs::directory_iterator entry(path, failed);
    for (; !failed && entry != fs::directory_iterator(); entry.increment(failed)) {
        const std::string name = entry->path().filename().string();
        std::error_code unknown;
        if (name.front() == '.') continue;
        // A link to nothing is missed as a damaged file is.
        const bool lost = entry->is_symlink(unknown) && !entry->exists(unknown);
        if (entry->is_regular_file(unknown) || lost) {
            (names_image(name) ? folder.images : folder.others).push_back(name);
        } else if (entry->is_directory(unknown) && !entry->is_symlink(unknown)) {
            folder.folders.push_back(name);
        }
    }
    if (failed) folder.error = failed.message();
    std::sort(folder.images.begin(), folder.images.end(), natural_less);
    std::sort(folder.folders.begin(), folder.folders.end(), natural_less);
    std::sort(folder.others.begin(), folder.others.end(), natural_less);
    return folder;
}

// What the program has drawn is no scan.
bool holds_report(const std::string& folder) {
    std::ifstream page(folder + "/index.html");
    std::string start(256, '\0');
    page.read(start.data(), static_cast<std::streamsize>(start.size()));
    return start.find(report::kReportMark) != std::string::npos;
}

class Lister {
  public:
    explicit Lister(const Options& options) : recursive_(options.recursive) {
        for (const std::string& own : {options.output, options.report_folder}) {
            if (const auto identity = folder_identity(own)) own_folders_.insert(*identity);
        }
    }

    void add(const std::string& name) {
        const auto identity = name == "-" ? std::nullopt : folder_identity(name);
        if (!identity) {
            list_.files.push_back({name, "", ""});
            return;
        }
        if (own_folders_.count(*identity) != 0) {
            throw UsageError(name +
                             ": is a folder of inputs and of what is written; name another "
                             "folder for one of them");
        }
        list_.has_folder = true;
        add_named_folder(with_slash(name));
    }

    InputList take() { return std::move(list_); }

  private:
    void add_named_folder(const std::string& path) {
        const std::size_t files_before = list_.files.size();
        others_ = 0;
        folders_left_out_ = 0;
        add_folder(path, "");
        if (others_ > 0) {
            list_.notes.push_back(path + ": " + counted(others_, "file") +
                                  " left out, no image by the name: " + first_other_ +
                                  (others_ > 1 ? " ..." : ""));
        }
        if (list_.files.size() == files_before) {
            list_.files.push_back({path, "",
                                   folders_left_out_ > 0
                                       ? "no images in it (-r looks into its folders)"
                                       : "no images in it"});
        }
    }

    // path: ends in a slash.
    void add_folder(const std::string& path, const std::string& below) {
        const Folder folder = contents_of(path);
        if (!folder.error.empty()) list_.files.push_back({path, below, folder.error});
        for (const std::string& name : folder.images) {
            list_.files.push_back({path + name, below, ""});
        }
        if (others_ == 0 && !folder.others.empty()) first_other_ = below + folder.others.front();
        others_ += folder.others.size();
        if (!recursive_) folders_left_out_ += folder.folders.size();
        for (const std::string& name : folder.folders) {
            const auto identity = folder_identity(path + name);
            const bool own =
                (identity && own_folders_.count(*identity) != 0) || holds_report(path + name);
            if (recursive_ && !own) add_folder(path + name + "/", below + name + "/");
        }
    }

    bool recursive_;
    std::set<FileIdentity> own_folders_;
    InputList list_;
    std::size_t others_ = 0;  // files of the named folder that are no images
    std::string first_other_;
    std::size_t folders_left_out_ = 0;
};

}  // namespace

InputList list_inputs(const Options& options) {
    Lister lister(options);
    for (const std::string& name : options.inputs) lister.add(name);
    return lister.take();
}

}  // namespace tool::run
