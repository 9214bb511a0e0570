// The record that --apply reads: whatever it holds, either findings in range or one short line.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "files/file_error.h"
#include "run/record_reading.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    try {
        for (const auto& pages : tool::run::findings_in(text, "record")) {
            for (const auto& page : pages) {
                if (page.skew && !page.skew->in_range()) std::abort();
                if (page.threshold && (*page.threshold < 1 || *page.threshold > 255)) std::abort();
            }
        }
    } catch (const tool::files::FileError& error) {
        if (std::strlen(error.what()) > 300) std::abort();
    }
    return 0;
}
