// The JPEG and PNG decoders print their own messages to the stream `stderr`, and there is no way
// past Leptonica to tell them not to. In the GNU C library that stream is a variable which may be
// set.
#include "run/messages.h"

#include <fcntl.h>
#include <unistd.h>

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

void complain(const std::string& file, const std::string& what) {
    std::string line = "vemoprepro: " + file + ": " + what;
    for (char& letter : line) {
        if (letter == '\n' || letter == '\r') letter = ' ';
    }
    std::fprintf(errors, "%s\n", line.c_str());
    std::fflush(errors);
}

}  // namespace tool::run
