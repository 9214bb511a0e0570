// Standard output belongs to the page with -o -, else to the record with --json, else to the words.
#include "run/console.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>

#include "run/messages.h"
#include "steps/step.h"

namespace tool::run {
namespace {

// To the start of the terminal's line, and what is there goes.
constexpr const char* kNewLineInPlace = "\r\x1b[K";

std::string page_label(const std::string& input, const report::PageRecord& record,
                       std::size_t pages) {
    if (pages == 1) return input + ": ";
    return input + ": page " + std::to_string(record.number) + " of " + std::to_string(pages) +
           ": ";
}

// Why a step that was asked for was not done, when that is worth a word on the page's line.
std::string why_not(const steps::StepNote& step) {
    const steps::Outcome& outcome = step.outcome;
    if (step.name == "deskew") return "; not straightened: " + outcome.why;
    if (outcome.ink_removed) return "; " + step.name + " skipped: it " + outcome.why;
    if (step.name == "crop" && outcome.why != steps::kSwitchedOff)
        return "; crop skipped: " + outcome.why;
    return "";
}

// "colour, 2480 x 3508 pixels, 300 dpi; threshold 143 (Otsu's method); skew 1.34 degrees (...)"
std::string summary(const report::PageRecord& record) {
    std::string text = describe(record.source);
    for (const steps::StepNote& step : record.steps) {
        text += step.outcome.done ? "; " + step.outcome.why : why_not(step);
    }
    return text;
}

// What must not be written over by the next page: a step that was held back, and the content's
// rectangle that was asked for.
bool must_stay(const report::PageRecord& record) {
    return record.content ||
           std::any_of(record.steps.begin(), record.steps.end(), [](const steps::StepNote& step) {
               return !step.outcome.done && step.outcome.ink_removed.has_value();
           });
}

// "deskew: skipped: no clear skew (confidence 1.23)"
std::string line_of(const steps::StepNote& step) {
    return step.name + ": " + (step.outcome.done ? "done: " : "skipped: ") + step.outcome.why;
}

// As much of a line of UTF-8 as fits beside the terminal's edge; a longer one would wrap, and the
// next one could not take its place.
std::string cut_to_terminal(const std::string& line, std::FILE* terminal) {
    winsize size{};
    if (ioctl(fileno(terminal), TIOCGWINSZ, &size) != 0 || size.ws_col < 2) return line;
    int columns = size.ws_col;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if ((line[i] & 0xC0) != 0x80 && --columns == 0) return line.substr(0, i);
    }
    return line;
}

const char* resolution_words(steps::ResolutionSource source) {
    switch (source) {
        case steps::ResolutionSource::kDefault:
            return " (the file has none)";
        case steps::ResolutionSource::kOption:
            return " (as given)";
        case steps::ResolutionSource::kFile:
            break;
    }
    return "";
}

}  // namespace

Console::Console(const Options& options)
    : quiet_(options.quiet || (options.json && !options.verbose)),
      verbose_(options.verbose),
      json_(options.json),
      words_(options.output_is_stdout() || options.json ? error_stream() : stdout),
      record_(options.output_is_stdout() ? error_stream() : stdout),
      terminal_(!verbose_ && isatty(fileno(words_)) == 1) {}

void Console::start(const std::string& input, const std::string& format, std::size_t page_count) {
    input_ = input;
    page_count_ = page_count;
    if (json_) {
        files_.push_back(file_json(input, format));
        files_.back()["outputs"] = Json::array();
    }
}

void Console::page(report::PageRecord record, const std::string& output) {
    if (!quiet_) {
        const std::string label = page_label(input_, record, page_count_);
        if (verbose_) {
            std::fprintf(words_, "%s%s%s\n", label.c_str(), describe(record.source).c_str(),
                         resolution_words(record.resolution_source));
            print_steps(record, output);
        } else {
            print_line(label + summary(record), terminal_ && !must_stay(record));
        }
        std::fflush(words_);
    }
    if (json_) files_.back()["pages"].push_back(to_json(record));
}

void Console::print_line(const std::string& line, bool as_progress) {
    if (terminal_) std::fputs(kNewLineInPlace, words_);
    const std::string shown = as_progress ? cut_to_terminal(line, words_) : line + "\n";
    std::fputs(shown.c_str(), words_);
    progress_ = as_progress ? line : "";
}

void Console::print_steps(const report::PageRecord& record, const std::string& output) {
    for (const steps::StepNote& step : record.steps) {
        std::fprintf(words_, "  %s\n", line_of(step).c_str());
    }
    std::fprintf(words_, "  written: %s, %d x %d pixels, to %s (%.2f s)\n",
                 name_of(record.output.kind), record.output.width, record.output.height,
                 output.c_str(), record.seconds);
}

void Console::finish_input(const std::vector<std::string>& outputs) {
    if (json_) files_.back()["outputs"] = outputs;
}

void Console::fail(const files::FileError& error) {
    clear_progress();
    std::fflush(words_);
    complain(error.file(), error.what());
    status_ = kExitFailed;
}

void Console::fail_input(const files::FileError& error) {
    fail(error);
    if (json_) {
        files_.back()["error"] =
            error.file() == input_ ? std::string(error.what()) : error.file() + ": " + error.what();
    }
}

void Console::clear_progress() {
    if (!progress_.empty()) std::fprintf(words_, "%s%s\n", kNewLineInPlace, progress_.c_str());
    progress_.clear();
}

int Console::finish() {
    clear_progress();
    bool good = !json_ || (std::fputs(document_text(files_).c_str(), record_) >= 0 &&
                           std::fflush(record_) == 0);
    if (std::fflush(words_) != 0) good = false;
    if (good) return status_;
    complain("standard output", "cannot be written");
    return kExitFailed;
}

}  // namespace tool::run
