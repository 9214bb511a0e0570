/* The JPEG and PNG decoders print their own messages to the stream `stderr`, and there is no way
 * past Leptonica to tell them not to. In the GNU C library that stream is a variable which may be
 * set. */
#include "messages.h"

namespace tool {
namespace {

std::FILE* errors = stderr;

}  // namespace

void take_standard_error() {
    if (std::FILE* nowhere = std::fopen("/dev/null", "we")) stderr = nowhere;
}

std::FILE* error_stream() {
    return errors;
}

void complain(const std::string& file, const std::string& what) {
    std::string line = "vemoprepro: " + file + ": " + what;
    for (char& letter : line)
        if (letter == '\n' || letter == '\r') letter = ' ';
    std::fprintf(errors, "%s\n", line.c_str());
    std::fflush(errors);
}

}  // namespace tool
