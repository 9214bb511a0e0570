// Names in a folder are the input's name with the extension of the format. Pages that need a file
// each are numbered from 1, with as many digits as the last one has, so that sorting by name keeps
// their order.
#include "run/output_plan.h"

#include <sys/stat.h>

#include <filesystem>

#include "files/file_error.h"

namespace tool::run {
namespace {

bool is_folder(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::string folder_of(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

const char* extension_of(files::OutputFormat format, bool keeps_kind) {
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
    if (options.format) return *options.format;
    if (folder || options.output_is_stdout()) return files::OutputFormat::kTiff;
    if (const auto format = format_by_name(options.output)) return *format;
    if (files::is_stream(options.output)) return files::OutputFormat::kTiff;
    throw UsageError("-o " + options.output +
                     ": the name ends in no known format (.tif, .png, .pbm); use --format");
}

}  // namespace

OutputPlan::OutputPlan(const Options& options)
    : output_(options.output),
      overwrite_(options.overwrite),
      keeps_kind_(steps::keeps_kind(options.steps.command)) {
    if (output_.empty()) throw UsageError("-o: the name is empty");
    const bool exists = is_folder(output_);
    folder_ = exists || options.inputs.size() > 1 || output_.back() == '/';
    if (folder_ && !exists) throw files::FileError(output_, "no such folder");
    if (!folder_ && output_ != "-" && !is_folder(folder_of(output_))) {
        throw files::FileError(output_, "no such folder: " + folder_of(output_));
    }
    format_ = format_of(options, folder_);
    remember_inputs(options.inputs);
}

void OutputPlan::remember_inputs(const std::vector<std::string>& inputs) {
    for (const std::string& input : inputs) {
        struct stat status {};
        if (input != "-" && stat(input.c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
            inputs_.emplace(status.st_dev, status.st_ino);
        }
    }
}

std::vector<std::string> OutputPlan::names_in_folder(const std::string& input,
                                                     std::size_t page_count) const {
    const std::string start = output_ + (output_.back() == '/' ? "" : "/") + stem_of(input);
    const std::string end = extension_of(format_, keeps_kind_);
    if (page_count == 1 || format_ == files::OutputFormat::kTiff) return {start + end};
    std::vector<std::string> names;
    for (std::size_t number = 1; number <= page_count; ++number) {
        names.push_back(start + "-" + page_number(number, page_count) + end);
    }
    return names;
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
    const auto [taken, is_new] = taken_.emplace(output, input);
    if (!is_new) {
        throw files::FileError(input, "gives the same output as " + taken->second + ": " + output);
    }
}

OutputNames OutputPlan::names_for(const std::string& input, std::size_t page_count) {
    OutputNames names;
    names.format = format_;
    if (folder_) {
        names.files = names_in_folder(input, page_count);
    } else {
        if (format_ == files::OutputFormat::kPng && page_count > 1) {
            throw files::FileError(
                input, "holds " + std::to_string(page_count) +
                           " pages and a PNG file only one; name a folder, or a TIFF file");
        }
        names.files = {output_};
    }
    for (const std::string& output : names.files) claim(output, input);
    return names;
}

}  // namespace tool::run
