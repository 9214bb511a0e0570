/* How a JPEG file asks to be shown: the orientation tag that cameras and scanner apps write. */
#ifndef VEMOPREPRO_TOOL_JPEG_ORIENTATION_H_
#define VEMOPREPRO_TOOL_JPEG_ORIENTATION_H_

#include <cstdio>

namespace tool {

/* Mirror the image left to right where asked for, then turn it clockwise. */
struct Orientation {
    bool mirror = false;
    int quarter_turns = 0; /* 0 .. 3 */
};

/* Reads the tag from the EXIF segment; upright when there is none or it makes no sense. */
Orientation jpeg_orientation(std::FILE* file);

}  // namespace tool

#endif  // VEMOPREPRO_TOOL_JPEG_ORIENTATION_H_
