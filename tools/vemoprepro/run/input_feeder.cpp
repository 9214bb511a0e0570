// One input is open at a time here; pages still in work keep theirs open.
#include "run/input_feeder.h"

#include "page/counted.h"
#include "run/messages.h"

namespace tool::run {

InputFeeder::InputFeeder(const Options& options, const InputList& inputs)
    : options_(options), inputs_(inputs), plan_(options, inputs) {
    if (options.findings.empty()) return;
    findings_ = read_findings(options.findings);
    if (findings_.size() != 1 && findings_.size() != inputs.files.size()) {
        throw files::FileError(options.findings, "records " + counted(findings_.size(), "file") +
                                                     ", which fits neither one nor all inputs, " +
                                                     std::to_string(inputs.files.size()));
    }
}

std::optional<PageTask> InputFeeder::next() {
    if (current_ && current_->failed_page == Input::kNone && next_page_ < current_->page_count()) {
        return PageTask{current_, next_page_++, std::nullopt, ""};
    }
    current_.reset();
    if (next_input_ == inputs_.files.size()) return std::nullopt;
    return open_next();
}

PageTask InputFeeder::open_next() {
    const std::size_t number = next_input_++;
    PageTask task;
    task.input = std::make_shared<Input>();
    task.input->name = inputs_.files[number].path;
    try {
        open(task, number);
        if (task.existing.empty()) current_ = task.input;
        next_page_ = 1;
    } catch (const files::FileError& error) {
        task.error = error;
    } catch (const std::exception& error) {
        task.error = files::FileError(task.input->name, what_failed(error));
    }
    return task;
}

bool InputFeeder::skips(PageTask& task, const InputName& name, std::size_t page_count) const {
    if (!options_.skip_existing || !plan_.all_exist(name, page_count)) return false;
    task.existing = plan_.first_name(name, page_count);
    return true;
}

void InputFeeder::open(PageTask& task, std::size_t number) {
    const InputName& name = inputs_.files[number];
    Input& input = *task.input;
    if (!name.error.empty()) throw files::FileError(name.path, name.error);
    if (!plan_.numbers_pages() && skips(task, name, 1)) return;
    input.file.emplace(input.name);
    const std::size_t pages = input.page_count();
    if (skips(task, name, pages)) return;
    if (!findings_.empty()) {
        input.findings = findings_.size() == 1 ? findings_.front() : findings_[number];
        if (input.findings.size() != pages) {
            throw files::FileError(input.name, "holds " + counted(pages, "page") + ", but " +
                                                   options_.findings + " records " +
                                                   std::to_string(input.findings.size()));
        }
    }
    input.outputs = plan_.names_for(name, pages);
}

}  // namespace tool::run
