// Where letters touch a ruled line.
#pragma once

#include <vector>

#include "reading/ruled_line.h"

namespace tool::reading {

// For each column of the line, whether it has a letter's ink beside the line's own.
std::vector<bool> find_letters(const RuledLine& line);

}  // namespace tool::reading
