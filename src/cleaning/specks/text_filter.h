// Erases what is not text from a bitonal page: components that are too high, or too sparse for
// their longer side.
#pragma once

#include <cstdint>

#include "common/views.h"

namespace cleaning {

struct TextShape {
    std::int16_t max_height;   // rows
    std::int16_t min_density;  // pixels per pixel of the longer side
};

// Erases, in place, the components that do not have the shape of text. Single white pixels between
// ink in a row count as ink when components are formed and measured, but stay white. Throws
// std::bad_alloc; the page may then be filtered in part.
void keep_text(common::MutableBitonalView page, const TextShape& shape);

}  // namespace cleaning
