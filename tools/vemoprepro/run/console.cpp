// Standard output belongs to the page with -o -, else to the record with --json, else to the words.
#include "run/console.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include "page/counted.h"
#include "run/messages.h"
#include "run/page_lines.h"
#include "run/shown_text.h"

namespace tool::run {
namespace {

// To the start of the terminal's line, and what is there goes.
constexpr const char* kNewLineInPlace = "\r\x1b[K";

// What a line about the page begins with.
std::string page_label(const std::string& input, const report::PageRecord& record,
                       std::size_t pages) {
    if (pages == 1) return input + ": ";
    return input + ": page " + std::to_string(record.number) + " of " + std::to_string(pages) +
           ": ";
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
    pages_done_ = 0;
    input_warned_ = false;
    if (json_) {
        files_.push_back(file_json(input, format));
        files_.back()["outputs"] = Json::array();
    }
}

void Console::page(report::PageRecord record, const std::string& output) {
    const std::string label = page_label(input_, record, page_count_);
    const std::vector<std::string> warnings = report::warnings_of(record);
    ++pages_done_;
    if (!quiet_ && verbose_) {
        print_line(label + source_line(record), false);
        print_steps(record, output);
    } else if (!quiet_) {
        // The next page must not take the place of a rectangle that was asked for.
        const bool passes = !record.content && warnings.empty();
        print_line(label + page_line(record), terminal_ && passes);
    }
    std::fflush(words_);
    for (const std::string& warning : warnings) complain(label + "warning: " + warning);
    if (!warnings.empty()) input_warned_ = true;
    if (json_) files_.back()["pages"].push_back(to_json(record));
}

void Console::print_line(const std::string& line, bool as_progress) {
    const std::string safe = shown(line);
    if (terminal_) std::fputs(kNewLineInPlace, words_);
    std::fputs((as_progress ? cut_to_terminal(safe, words_) : safe + "\n").c_str(), words_);
    progress_ = as_progress ? safe : "";
}

void Console::print_steps(const report::PageRecord& record, const std::string& output) {
    for (const std::string& line : step_lines(record)) print_line("  " + line, false);
    if (record.kept) {
        print_line("  kept: " + describe_size(record.kept->shape) + ", to " + record.kept->file,
                   false);
    }
    char seconds[32];
    std::snprintf(seconds, sizeof seconds, " (%.2f s)", record.seconds);
    print_line("  written: " + describe_size(record.output) + ", to " + output + seconds, false);
}

void Console::finish_input(const std::vector<std::string>& outputs) {
    ++tally_.done;
    tally_.pages += page_count_;
    if (input_warned_) ++tally_.warned;
    if (json_) files_.back()["outputs"] = outputs;
    input_.clear();
}

void Console::skip_input(const std::string& input, const std::string& output) {
    ++tally_.skipped;
    if (!quiet_) {
        print_line(input + ": skipped: " + output + " exists", terminal_);
        std::fflush(words_);
    }
    if (!json_) return;
    files_.push_back(file_json(input, ""));
    files_.back()["outputs"] = {output};
    files_.back()["skipped"] = true;
}

void Console::note(const std::string& line) {
    if (quiet_) return;
    clear_progress();
    print_line(line, false);
    std::fflush(words_);
}

void Console::fail(const files::FileError& error) {
    clear_progress();
    std::fflush(words_);
    complain(error.file(), error.what());
    status_ = kExitFailed;
}

void Console::fail_input(const files::FileError& error) {
    fail(error);
    ++tally_.failed;
    if (json_) {
        files_.back()["error"] =
            error.file() == input_ ? std::string(error.what()) : error.file() + ": " + error.what();
    }
    input_.clear();
}

void Console::clear_progress() {
    if (!progress_.empty()) std::fprintf(words_, "%s%s\n", kNewLineInPlace, progress_.c_str());
    progress_.clear();
}

void Console::print_record() {
    if (json_) std::fputs(document_text(files_).c_str(), record_);
}

void Console::interrupt(std::size_t inputs) {
    clear_progress();
    std::string text = "interrupted: ";
    if (inputs > 1) {
        text += std::to_string(tally_.done) + " of " + counted(inputs, "file") + " done (" +
                counted(tally_.pages, "page") + ")";
    } else if (input_.empty()) {
        text += "no page done";
    }
    if (!input_.empty()) {
        if (json_) files_.back()["error"] = "interrupted";
        text += (inputs > 1 ? ", and " : "") + std::to_string(pages_done_) + " of " +
                counted(page_count_, "page") + " of " + input_ + ", which is not written";
    }
    std::fflush(words_);
    complain(text);
    print_record();
    flush_output();
}

int Console::finish() {
    clear_progress();
    if (!quiet_ && tally_.files() > 1) print_line(tally_.text(), false);
    print_record();
    return flush_output() ? status_ : kExitFailed;
}

}  // namespace tool::run
