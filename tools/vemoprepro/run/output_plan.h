// Which files the pages of an input go to.
//
// Use: one plan per run; names_for() once per input, in the order of the inputs. A refusal (the
// output exists, would replace an input, was taken by an earlier input) comes before any work on
// the pages.
#pragma once

#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "files/page_writer.h"
#include "run/options.h"

namespace tool::run {

// The options do not fit together; exit status 2.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct OutputNames {
    files::OutputFormat format = files::OutputFormat::kTiff;
    // One name for all pages, or one per page.
    std::vector<std::string> files;

    const std::string& of_page(std::size_t index) const {
        return files.size() == 1 ? files.front() : files[index];
    }
};

class OutputPlan {
  public:
    // Throws UsageError, or FileError when the folder is missing.
    explicit OutputPlan(const Options& options);

    // Throws FileError.
    OutputNames names_for(const std::string& input, std::size_t page_count);

  private:
    std::vector<std::string> names_in_folder(const std::string& input,
                                             std::size_t page_count) const;
    void claim(const std::string& output, const std::string& input);
    void remember_inputs(const std::vector<std::string>& inputs);

    using FileIdentity = std::pair<unsigned long, unsigned long>;

    std::string output_;
    bool folder_ = false;
    bool overwrite_ = false;
    bool keeps_kind_ = false;
    files::OutputFormat format_ = files::OutputFormat::kTiff;
    std::set<FileIdentity> inputs_;
    std::map<std::string, std::string> taken_;  // output: input
};

}  // namespace tool::run
