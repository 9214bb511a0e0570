// What the run says: a line per page (or a line of progress on a terminal), all steps with -v,
// warnings and complaints, a last line about all files, and the record of --json at the end.
//
// Use: (start page* (finish_input | fail_input) | skip_input | note)* (finish | interrupt);
// finish() gives the exit status of the run. For one thread at a time.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "files/file_error.h"
#include "run/options.h"
#include "run/record_json.h"
#include "run/tally.h"

namespace tool::run {

class Console {
  public:
    explicit Console(const Options& options);

    void start(const std::string& input, const std::string& format, std::size_t page_count);
    void page(report::PageRecord record, const std::string& output);
    void finish_input(const std::vector<std::string>& outputs);
    void fail_input(const files::FileError& error);
    // Its output is there already.
    void skip_input(const std::string& input, const std::string& output);
    // What fails beside the inputs.
    void fail(const files::FileError& error);
    // What is worth knowing beside the pages.
    void note(const std::string& line);
    int finish();
    // In place of finish(): a signal ends the run. inputs: of all of it.
    void interrupt(std::size_t inputs);

  private:
    void print_line(const std::string& line, bool as_progress);
    void print_steps(const report::PageRecord& record, const std::string& output);
    // Ends the line of progress: the last page stays, with all that was said of it.
    void clear_progress();
    void print_record();

    bool quiet_;
    bool verbose_;
    bool json_;
    std::FILE* words_;      // page lines and steps
    std::FILE* record_;     // the JSON record
    bool terminal_;         // one line of progress instead of a line per page
    std::string progress_;  // the line that stands there, whole; empty: none
    std::string input_;     // the one in work; empty: none
    std::size_t page_count_ = 0;
    std::size_t pages_done_ = 0;
    bool input_warned_ = false;
    Tally tally_;
    Json files_ = Json::array();
    int status_ = kExitDone;
};

}  // namespace tool::run
