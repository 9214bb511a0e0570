// Which way up the text of a page stands.
#pragma once

#include "reading/ink_pieces.h"

namespace tool::reading {

// How many letters stand out of the band of the small ones beside them.
struct TextWay {
    int letters = 0;   // that stand in a line and were looked at
    int rising = 0;    // that stand out to the top: b, d, t, capitals; g and p upside down
    int sinking = 0;   // to the bottom
    int standing = 0;  // dots on the line, such as full stops
    int hanging = 0;   // dots at the top of the band

    // Clear for most texts in Latin letters. Where as many sink as rise (Greek), few do (Cyrillic,
    // Hebrew), none does (capitals, digits) or letters are joined (Arabic), neither is.
    bool upright() const;
    bool upside_down() const;
};

// The pieces of ink on a page from small_ink().
enum class Reading { kAlongRows, kAlongColumns };  // the latter after a quarter turn clockwise

// slope: of the lines, in pixels over 512.
TextWay way_of_text(const InkPieces& ink, Reading direction, double slope);

}  // namespace tool::reading
