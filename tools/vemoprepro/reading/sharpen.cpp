// Unsharp masking: what a pixel differs by from the mean of the 3 x 3 pixels around it is added to
// it once more.
#include "reading/sharpen.h"

#include <algorithm>

namespace tool::reading {

void sharpen(Page& grey) {
    const Page soft = copy_of(grey);
    for (int y = 1; y + 1 < grey.height; ++y) {
        unsigned char* row = grey.row(y);
        for (int x = 1; x + 1 < grey.width; ++x) {
            int around = 0;
            for (int v = y - 1; v <= y + 1; ++v) {
                const unsigned char* at = soft.row(v) + x;
                around += at[-1] + at[0] + at[1];
            }
            const int own = soft.row(y)[x];
            row[x] = static_cast<unsigned char>(std::clamp(own + (9 * own - around) / 9, 0, 255));
        }
    }
}

}  // namespace tool::reading
