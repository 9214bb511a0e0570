// Where letters touch a ruled line.
#pragma once

#include <vector>

#include "reading/line_scale.h"
#include "reading/ruled_line.h"

namespace tool::reading {

// For each column of the line, whether it has a letter's ink: beside the line's own, or in a gap of
// the line.
std::vector<bool> find_letters(const RuledLine& line, const LineScale& scale);

}  // namespace tool::reading
