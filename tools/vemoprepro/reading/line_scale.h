// What counts as a ruled line of a page, in pixels of that page.
#pragma once

namespace tool::reading {

struct LineScale {
    int shortest;        // length of a line that joins another one, as the sides of a box do
    int shortest_alone;  // length of a line that joins none: far longer than a word
    int thickest;        // what is thicker is no line
    int gap;             // a line that is printed weakly has breaks that are shorter than this
    int dash;            // a piece beyond a line's end that belongs to it is at least this long
    int around;          // how far from a line ink is looked for that tells a screen
    int pitch;           // lines of a stave or a barcode lie no farther apart
    double letter;       // height of the page's small letters
};

}  // namespace tool::reading
