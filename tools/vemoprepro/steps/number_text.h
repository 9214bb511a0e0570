// Numbers in the words of the program.
#pragma once

#include <string>

namespace tool::steps {

// By a format of printf() for one double.
std::string with_digits(const char* format, double value);

// "0.3 %", "12 %"
std::string percent(double share);

}  // namespace tool::steps
