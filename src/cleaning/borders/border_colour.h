// The colour of a page just inside a border that was painted white, and repainting one colour with
// another.
#pragma once

#include <cstdint>

#include "common/views.h"

namespace cleaning {

// The mean of the first pixels other than white on the way in from the ends of the rows and of the
// columns: 255 if there is none. The first and the last row are not searched, and the search from
// the left leaves out the first and the last column.
std::uint8_t inner_grey(common::GreyView page);

struct Colour {
    std::uint8_t bytes[3];
};

// The same over all rows and columns; black if there is no pixel other than white.
Colour inner_colour(common::ColourView page);

// Sets the pixels that are `from` to `to`.
void replace_grey(common::MutableGreyView page, std::uint8_t from, std::uint8_t to);

// Sets the pixels of column x that are triple x of `from` to triple x of `to`.
void replace_colour(common::MutableColourView page, const std::uint8_t* from,
                    const std::uint8_t* to);

}  // namespace cleaning
