// Ink of a bitonal page that hangs together with the page's edge.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/views.h"

namespace cleaning {

enum class EdgeInk { kErased, kKept };

// Copies the page, height * stride bytes of it, to `target`; with kErased without the runs of ink
// that are reachable from its edges: going down the page, then going up. A page without columns is
// copied. Throws std::bad_alloc before it writes, whichever is asked for. Target does not overlap
// the page.
void copy_without_edge_ink(common::BitonalView page, EdgeInk ink, std::uint8_t* target);

}  // namespace cleaning
