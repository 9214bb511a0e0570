// The JPEG and PNG decoders print their own messages to the stream `stderr`, and there is no way
// past Leptonica to tell them not to. In the GNU C library that stream is a variable which may be
// set.
#include "run/messages.h"

#include <fcntl.h>
#include <unistd.h>

#include <new>

#include "run/shown_text.h"

namespace tool::run {
namespace {

std::FILE* errors = stderr;

}  // namespace

// A standard stream that is closed at the start would become the number of the first file that is
// opened, a page among them. What holds its place can only be used the wrong way round, so that
// whatever is read or written through it fails.
void hold_standard_streams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0) {
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

void take_standard_error() {
    if (std::FILE* nowhere = std::fopen("/dev/null", "we")) stderr = nowhere;
}

std::FILE* error_stream() {
    return errors;
}

void complain(const std::string& line) {
    // Longer than every path that a system takes.
    constexpr std::size_t kLongestLine = 5000;
    std::fprintf(errors, "vemoprepro: %s\n", shown(shortened(line, kLongestLine)).c_str());
    std::fflush(errors);
}

void complain(const std::string& file, const std::string& what) {
    complain(file + ": " + what);
}

std::string what_failed(const std::exception& error) {
    if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) return "not enough memory";
    return error.what();
}

bool flush_output() {
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return true;
    complain("standard output", "cannot be written, lines are lost");
    return false;
}

}  // namespace tool::run
