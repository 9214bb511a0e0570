// The order in which people sort names: "page 2" before "page 10".
#pragma once

#include <string>

namespace tool::run {

// Numbers by their value, letters of the alphabet whatever their case, all else by its bytes; the
// same in every locale. Different names are never equal.
bool natural_less(const std::string& one, const std::string& other);

}  // namespace tool::run
