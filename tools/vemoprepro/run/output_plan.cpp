// Names in a folder are the input's name with the extension of the format. Pages that need a file
// each are numbered from 1, with as many digits as the last one has, so that sorting by name keeps
// their order.
#include "run/output_plan.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "files/file_error.h"
#include "files/image_file.h"
#include "page/counted.h"

namespace tool::run {
namespace {

// The folder that a file or a folder is in.
std::string parent_of(const std::string& path) {
    const std::size_t end = path.find_last_not_of('/');
    const std::size_t slash = end == std::string::npos ? end : path.rfind('/', end);
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

const char* ending_of(files::OutputFormat format, bool keeps_kind) {
    switch (format) {
        case files::OutputFormat::kTiff:
            return ".tif";
        case files::OutputFormat::kPng:
            return ".png";
        case files::OutputFormat::kPnm:
            break;
    }
    return keeps_kind ? ".pnm" : ".pbm";
}

// "page.tif" becomes "page-colour.tif". A bitmap's name would promise too little.
std::string kept_name(const std::string& name) {
    const std::string extension = extension_of(name);
    if (extension.empty()) return name + "-colour";
    const std::size_t dot = name.size() - extension.size() - 1;
    return name.substr(0, dot) + "-colour" + (extension == "pbm" ? ".pnm" : name.substr(dot));
}

std::string stem_of(const std::string& input) {
    if (input == "-") return "stdin";
    return std::filesystem::path(input).stem().string();
}

// 7 of 12 becomes "07".
std::string page_number(std::size_t number, std::size_t count) {
    std::string text = std::to_string(number);
    return std::string(std::to_string(count).size() - text.size(), '0') + text;
}

files::OutputFormat format_of(const Options& options, bool folder) {
    const std::string& output = options.output;
    if (folder || options.output_is_stdout() || files::is_stream(output)) {
        return options.format.value_or(files::OutputFormat::kTiff);
    }
    const auto by_name = format_by_name(output);
    if (options.format && names_document(output) && by_name != options.format) {
        throw UsageError("-o " + output + ": the name ends in ." + extension_of(output) +
                         ", which is not what --format " + options.format_name + " writes");
    }
    if (options.format) return *options.format;
    if (by_name) return *by_name;
    throw UsageError("-o " + output +
                     ": the name ends in no format that is written (.tif, .png, .pbm); use "
                     "--format, or write " +
                     output + "/ for a folder");
}

bool is_terminal(const std::string& output) {
    if (output == "-") return isatty(STDOUT_FILENO) == 1;
    struct stat status {};
    if (stat(output.c_str(), &status) != 0 || !S_ISCHR(status.st_mode)) return false;
    const int file = open(output.c_str(), O_WRONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    const bool terminal = file >= 0 && isatty(file) == 1;
    if (file >= 0) close(file);
    return terminal;
}

// 1 also where it cannot be told: what is wrong with the file is said when its turn comes.
std::size_t pages_in(const std::string& input) {
    try {
        return input == "-" ? 1 : files::ImageFile(input).page_count();
    } catch (const std::exception&) {
        return 1;
    }
}

}  // namespace

std::vector<std::string> OutputNames::all() const {
    std::vector<std::string> names = files;
    names.insert(names.end(), kept.begin(), kept.end());
    return names;
}

OutputPlan::OutputPlan(const Options& options, const InputList& inputs)
    : output_(options.output),
      overwrite_(options.overwrite),
      keeps_kind_(steps::keeps_kind(options.steps.command)),
      keeps_colour_(options.steps.keep_colour) {
    if (output_.empty()) throw UsageError("-o: the name is empty");
    if (keeps_colour_ && (output_ == "-" || files::is_stream(output_))) {
        throw UsageError("--keep-colour writes two files, and -o " + output_ +
                         " is no place for them");
    }
    check_place(inputs);
    format_ = format_of(options, folder_);
    check_unique(inputs);
    remember_inputs(inputs);
    if (folder_) make_folder(output_);
}

OutputPlan::~OutputPlan() {
    while (!made_folders_.empty()) {
        rmdir(made_folders_.back().c_str());
        made_folders_.pop_back();
    }
}

void OutputPlan::check_place(const InputList& inputs) {
    const bool several = inputs.files.size() > 1 || inputs.has_folder;
    const bool exists = folder_identity(output_).has_value();
    struct stat status {};
    const bool in_the_way = !exists && stat(output_.c_str(), &status) == 0;
    if (several && output_ == "-") throw UsageError("-o -: standard output takes one input");
    if (several && !exists && output_.back() != '/' && (in_the_way || names_document(output_))) {
        throw UsageError("-o " + output_ + ": several inputs need a folder, and this names a file");
    }
    if (is_terminal(output_)) {
        throw UsageError("-o " + output_ +
                         ": is a terminal, which shows no pages; name a file, or put a pipe or "
                         "> FILE behind it");
    }
    folder_ = exists || several || output_.back() == '/';
    if (exists || output_ == "-") return;
    const std::string parent = parent_of(output_);
    if (!folder_identity(parent)) throw files::FileError(output_, "no such folder: " + parent);
}

void OutputPlan::check_unique(const InputList& inputs) const {
    if (!folder_ || inputs.files.size() < 2) return;
    std::map<std::string, std::string> taken;
    std::string first;
    std::size_t clashes = 0;
    for (const InputName& input : inputs.files) {
        if (!input.error.empty()) continue;
        const std::size_t pages = numbers_pages() ? pages_in(input.path) : 1;
        for (const std::string& output : all_names(names_in_folder(input, pages)).all()) {
            const auto [other, is_new] = taken.emplace(output, input.path);
            if (is_new) continue;
            if (first.empty()) {
                first = other->second == input.path
                            ? input.path + ": is named twice"
                            : other->second + " and " + input.path + " would both become " + output;
            }
            ++clashes;
            break;
        }
    }
    if (clashes == 0) return;
    const std::string more =
        clashes == 1 ? "" : " (and " + std::to_string(clashes - 1) + " more clash)";
    throw UsageError(first + more + "; nothing is written");
}

void OutputPlan::remember_inputs(const InputList& inputs) {
    for (const InputName& input : inputs.files) {
        struct stat status {};
        const bool is_file = input.path != "-" && stat(input.path.c_str(), &status) == 0;
        if (is_file && S_ISREG(status.st_mode)) inputs_.emplace(status.st_dev, status.st_ino);
    }
}

void OutputPlan::make_folder(const std::string& path) {
    if (mkdir(path.c_str(), 0777) == 0) {
        made_folders_.push_back(path);
    } else if (errno != EEXIST || !folder_identity(path)) {
        throw files::system_error_of(path);
    }
}

// One after the other: "letters/", "letters/1901/".
void OutputPlan::make_folders(const std::string& below) {
    for (std::size_t slash = below.find('/'); slash != std::string::npos;
         slash = below.find('/', slash + 1)) {
        make_folder(with_slash(output_) + below.substr(0, slash));
    }
}

bool OutputPlan::numbers_pages() const {
    return folder_ && format_ != files::OutputFormat::kTiff;
}

std::vector<std::string> OutputPlan::names_in_folder(const InputName& input,
                                                     std::size_t page_count) const {
    const std::string start = with_slash(output_) + input.below + stem_of(input.path);
    const std::string end = ending_of(format_, keeps_kind_);
    if (page_count == 1 || !numbers_pages()) return {start + end};
    std::vector<std::string> names;
    for (std::size_t number = 1; number <= page_count; ++number) {
        names.push_back(start + "-" + page_number(number, page_count) + end);
    }
    return names;
}

std::vector<std::string> OutputPlan::names_of(const InputName& input,
                                              std::size_t page_count) const {
    if (folder_) return names_in_folder(input, page_count);
    return {output_};
}

OutputNames OutputPlan::all_names(std::vector<std::string> files) const {
    OutputNames names{format_, std::move(files), {}};
    if (!keeps_colour_) return names;
    for (const std::string& name : names.files) names.kept.push_back(kept_name(name));
    return names;
}

std::string OutputPlan::first_name(const InputName& input, std::size_t page_count) const {
    return names_of(input, page_count).front();
}

bool OutputPlan::all_exist(const InputName& input, std::size_t page_count) const {
    for (const std::string& output : all_names(names_of(input, page_count)).all()) {
        struct stat status {};
        const bool is_file = output != "-" && stat(output.c_str(), &status) == 0;
        if (!is_file || !S_ISREG(status.st_mode)) return false;
        if (inputs_.count({status.st_dev, status.st_ino}) != 0) return false;
    }
    return true;
}

void OutputPlan::claim(const std::string& output, const std::string& input) {
    struct stat status {};
    if (output != "-" && stat(output.c_str(), &status) == 0) {
        if (S_ISDIR(status.st_mode)) throw files::system_error_of(output, EISDIR);
        if (inputs_.count({status.st_dev, status.st_ino}) != 0) {
            throw files::FileError(output, "the output would overwrite an input");
        }
        if (S_ISREG(status.st_mode) && !overwrite_) {
            throw files::FileError(output, "exists already (--overwrite replaces it)");
        }
    }
    files::check_output(output);
    const auto [taken, is_new] = taken_.emplace(output, input);
    if (!is_new) {
        throw files::FileError(input, "gives the same output as " + taken->second + ": " + output);
    }
}

OutputNames OutputPlan::names_for(const InputName& input, std::size_t page_count) {
    const bool one_page_only = !folder_ && format_ == files::OutputFormat::kPng;
    if (one_page_only && page_count > 1) {
        throw files::FileError(input.path, "holds " + counted(page_count, "page") +
                                               " and a PNG file only one; name a folder, or a "
                                               "TIFF file");
    }
    OutputNames names = all_names(names_of(input, page_count));
    for (const std::string& output : names.all()) claim(output, input.path);
    if (folder_) make_folders(input.below);
    return names;
}

}  // namespace tool::run
