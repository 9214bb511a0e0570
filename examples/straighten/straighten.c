/* Draws a tilted bitonal page of ruled lines, measures its skew and straightens it. */
#include <stdio.h>
#include <stdlib.h>
#include <vemoprepro/prepro.h>

int main(void) {
    enum { kHeight = 800, kWidth = 1200, kStride = (kWidth + 31) / 32 * 4 };
    unsigned char* page = calloc(kHeight, kStride);
    if (page == NULL) return 1;
    for (int line = 60; line < kHeight - 60; line += 40) {
        for (int x = 100; x < 1100; ++x) { /* rises 12 pixels over 512 pixels of width */
            const int y = line - (x * 12) / 512 + 20;
            for (int thick = 0; thick < 6; ++thick)
                page[(y + thick) * kStride + x / 8] |= 0x80 >> (x % 8);
        }
    }

    int skew, scale, height, width;
    if (skbitmap_mem(page, kHeight, kWidth, kStride, &skew, &scale, &height, &width) != 0) return 1;
    const int stride = (width + 31) / 32 * 4;
    unsigned char* straight = malloc((size_t)height * (size_t)stride);
    if (straight == NULL) return 1;
    if (skrotbmp_mem(skew, scale, page, kHeight, kWidth, kStride, straight, height, width, stride,
                     NULL) != 0)
        return 1;
    printf("skew %d / %d, straight page %d x %d\n", skew, scale, width, height);
    free(straight);
    free(page);
    return skew == 12 ? 0 : 1;
}
