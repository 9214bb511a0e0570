// The command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "files/page_writer.h"
#include "steps/step_options.h"

namespace tool::run {

struct Options {
    std::string command;
    bool info = false;  // the info command, which has no steps
    steps::StepOptions steps;
    std::vector<std::string> inputs;            // as named: files, folders or "-"
    bool recursive = false;                     // folders in folders, too
    std::string output;                         // a file, a folder or "-"
    std::optional<files::OutputFormat> format;  // none: by the name of the output
    std::string format_name;                    // as asked for
    unsigned jobs = 1;
    std::string findings;       // file of --apply; empty: none
    std::string report_folder;  // of --report; empty: none
    bool quiet = false;
    bool verbose = false;
    bool overwrite = false;
    bool skip_existing = false;
    bool json = false;

    // Standard output carries the page, so no words may go there.
    bool output_is_stdout() const { return output == "-"; }
};

constexpr int kExitDone = 0;
constexpr int kExitFailed = 1;  // some file could not be worked on
constexpr int kExitUsage = 2;

// None when there is nothing to run: help was asked for or the usage was wrong; both have been
// answered and `exit_status` is set.
std::optional<Options> parse_options(int argc, char** argv, int& exit_status);

}  // namespace tool::run
