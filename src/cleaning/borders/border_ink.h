// Ink of a bitonal page that hangs together with the page's edge.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/views.h"

namespace cleaning {

enum class EdgeInk { kErased, kKept };

// Copies the height * stride bytes of the page to `target`, which does not overlap it. With kErased
// the copy lacks the runs of ink that can be reached from the page's edges by going down the page
// and then up. Throws std::bad_alloc before it writes, also when no ink is to be erased.
void copy_without_edge_ink(common::BitonalView page, EdgeInk ink, std::uint8_t* target);

}  // namespace cleaning
