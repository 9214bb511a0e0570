// Letters that stand in rows.
#pragma once

#include <vector>

#include "page/page.h"
#include "reading/components.h"

namespace tool::reading {

// For each component of the page whether it is a letter beside others, or a word whose letters
// touch. letter_height: of small letters.
std::vector<bool> find_letters_in_rows(const std::vector<Component>& components, const Page& page,
                                       double letter_height);

}  // namespace tool::reading
