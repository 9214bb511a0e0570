// Where a page lies in its file, and its size in pixels as the header states it.
#pragma once

#include <cstddef>

namespace tool::files {

struct PagePlace {
    std::size_t offset = 0;
    int width = 0;
    int height = 0;
};

}  // namespace tool::files
