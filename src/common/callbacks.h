// The functions of the caller that the library calls, as plain types: the families know them
// without the public headers. src/api ties each to its public name.
//
// Keep true: callbacks run on the thread of the call. They do not throw and do not leave by
// longjmp; what a C++ callback throws all the same passes through the families like any failure and
// ends at the C boundary.
#pragma once

namespace common {

// Delivers a source image row by row: mode 0 puts the top row into `row`, mode 1 the one below the
// last. The result is ignored.
using RowReader = int (*)(void* context, int mode, unsigned char* row);

// Exactly 1 asks for ink of this colour to be dropped; the three bytes stand as the source stores
// them.
using DropoutFunction = int (*)(void* context, const unsigned char* colour);

// Exactly 1 asks for a component to be erased; sizes of its box and its area in pixels.
using ComponentRule = int (*)(void* user, int height, int width, int area);

// Steps done out of a total.
using ProgressCallback = void (*)(unsigned int done, unsigned int total);

}  // namespace common
