// How many files of a run were done, failed, were skipped or need a look.
#pragma once

#include <cstddef>
#include <string>

namespace tool::run {

struct Tally {
    std::size_t done = 0;
    std::size_t pages = 0;   // of the files that are done
    std::size_t warned = 0;  // of the files that are done
    std::size_t failed = 0;
    std::size_t skipped = 0;

    std::size_t files() const { return done + failed + skipped; }
    // "14 files: 10 done (57 pages), 2 of them with warnings, 1 failed, 3 skipped"
    std::string text() const;
};

}  // namespace tool::run
