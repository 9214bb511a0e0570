// Numbers of things in words.
#pragma once

#include <string>

namespace tool {

// "1 page", "7 pages"
template <typename Number>
std::string counted(Number number, const char* thing) {
    return std::to_string(number) + " " + thing + (number == 1 ? "" : "s");
}

}  // namespace tool
