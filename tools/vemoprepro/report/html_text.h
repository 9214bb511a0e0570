// Text and pictures from outside, safe inside HTML.
#pragma once

#include <string>

namespace tool::report {

// Safe in text and in quoted attributes; bytes that are not UTF-8 become U+FFFD.
std::string escaped(const std::string& text);

std::string base64(const std::string& bytes);

}  // namespace tool::report
