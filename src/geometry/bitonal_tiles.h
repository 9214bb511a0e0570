// The turn of a bitonal page, in tiles of the destination: what a tile comes from is spread to a
// byte per pixel, where it is blended like a grey page.
#pragma once

#include "common/views.h"
#include "geometry/source_line.h"

namespace geometry {

// Keep true: the destination is white, with sides of at least 1.
void rotate_tiles(common::BitonalView src, common::MutableBitonalView dst,
                  const SourceLines& lines);

}  // namespace geometry
