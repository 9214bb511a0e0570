// Opens the inputs one after the other and gives out their pages as tasks.
//
// Use: next() until it gives none. By one thread at a time; tasks may be worked on by any.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "files/file_error.h"
#include "files/image_file.h"
#include "run/options.h"
#include "run/output_plan.h"
#include "run/record_reading.h"
#include "steps/page_work.h"

namespace tool::run {

// What the pages of one input share.
struct Input {
    std::string name;
    std::optional<files::ImageFile> file;  // none when it could not be opened
    OutputNames outputs;
    std::vector<steps::Findings> findings;  // of --apply, one per page; else empty
    // Set when a page fails: the pages behind it need no work. Those before it are still worked on,
    // so that what is reported does not depend on which page came first.
    std::atomic<std::size_t> failed_page = kNone;
    static constexpr std::size_t kNone = SIZE_MAX;

    void fail_from(std::size_t page) {
        std::size_t earlier = failed_page;
        while (page < earlier && !failed_page.compare_exchange_weak(earlier, page)) {
        }
    }
    std::size_t page_count() const { return file ? file->page_count() : 0; }
};

struct PageTask {
    std::shared_ptr<Input> input;
    std::size_t page = 0;
    std::optional<files::FileError> error;  // the input cannot be worked on at all
    std::string existing;                   // its output, when it is skipped for that
};

class InputFeeder {
  public:
    // Throws as OutputPlan, and FileError for the file of --apply.
    InputFeeder(const Options& options, const InputList& inputs);

    // The next page of the current input, or the first one of the next input.
    std::optional<PageTask> next();

  private:
    PageTask open_next();
    void open(PageTask& task, std::size_t number);
    bool skips(PageTask& task, const InputName& name, std::size_t page_count) const;

    const Options& options_;
    const InputList& inputs_;
    OutputPlan plan_;
    RecordedFindings findings_;
    std::size_t next_input_ = 0;
    std::size_t next_page_ = 0;
    std::shared_ptr<Input> current_;
};

}  // namespace tool::run
