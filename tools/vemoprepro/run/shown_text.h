// Text from outside (names, arguments, messages of decoders) on its way to a terminal.
#pragma once

#include <cstddef>
#include <string>

namespace tool::run {

// On one line and harmless: control characters, what turns the direction of writing, and bytes that
// are no UTF-8 as "\n", "\t", "\r" or "\x1b", one "\x.." per byte.
std::string shown(const std::string& text);

// At most `length` bytes of it (>= 8), with "..." in place of what is cut off at the end.
std::string shortened(const std::string& text, std::size_t length);

}  // namespace tool::run
