// Which files the pages of an input go to.
//
// Use: one plan per run; for each input, in their order, all_exist() if wanted, then names_for().
// What cannot be right (several inputs and one file, two inputs and one output) is refused by the
// constructor, before anything is written; what stands in the way of one input (the output exists,
// would replace an input) by names_for(), before any work on its pages.
#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "files/page_writer.h"
#include "run/file_names.h"
#include "run/inputs.h"
#include "run/options.h"
#include "run/usage.h"

namespace tool::run {

struct OutputNames {
    files::OutputFormat format = files::OutputFormat::kTiff;
    // One name for all pages, or one per page.
    std::vector<std::string> files;
    // As many, of the pages in their own kinds; empty unless they are kept.
    std::vector<std::string> kept;

    const std::string& of_page(std::size_t index) const {
        return files.size() == 1 ? files.front() : files[index];
    }
    const std::string& kept_of_page(std::size_t index) const {
        return kept.size() == 1 ? kept.front() : kept[index];
    }
    std::vector<std::string> all() const;
};

class OutputPlan {
  public:
    // Makes the folder of outputs when its parent is there. Throws UsageError, or FileError when
    // the folder is missing and cannot be made.
    OutputPlan(const Options& options, const InputList& inputs);
    // Removes the folders again that it has made and nothing was written to.
    ~OutputPlan();
    OutputPlan(const OutputPlan&) = delete;
    OutputPlan& operator=(const OutputPlan&) = delete;

    // Whether the names of an input's outputs depend on its number of pages.
    bool numbers_pages() const;
    // Whether all outputs of an input are there, none of them an input.
    bool all_exist(const InputName& input, std::size_t page_count) const;
    // Makes the folders that they are in. Throws FileError.
    OutputNames names_for(const InputName& input, std::size_t page_count);
    // The name itself, or the first of them.
    std::string first_name(const InputName& input, std::size_t page_count) const;

  private:
    OutputNames all_names(std::vector<std::string> files) const;
    std::vector<std::string> names_of(const InputName& input, std::size_t page_count) const;
    std::vector<std::string> names_in_folder(const InputName& input, std::size_t page_count) const;
    void check_place(const InputList& inputs);
    void check_unique(const InputList& inputs) const;
    void make_folder(const std::string& path);
    void make_folders(const std::string& below);
    void claim(const std::string& output, const std::string& input);
    void remember_inputs(const InputList& inputs);

    std::string output_;
    bool folder_ = false;
    bool overwrite_ = false;
    bool keeps_kind_ = false;
    bool keeps_colour_ = false;
    files::OutputFormat format_ = files::OutputFormat::kTiff;
    std::set<FileIdentity> inputs_;
    std::map<std::string, std::string> taken_;  // output: input
    std::vector<std::string> made_folders_;
};

}  // namespace tool::run
