/* Straightens a bitonal page: raw PBM on standard input, raw PBM on standard output. */
#include <stdio.h>
#include <stdlib.h>
#include <vemoprepro/prepro.h>

int main(void) {
    int width, height;
    if (scanf("P4 %d %d%*c", &width, &height) != 2 || width < 32 || height < 32) return 1;
    const size_t stride = ((size_t)width + 31) / 32 * 4;
    unsigned char* page = calloc((size_t)height, stride);
    if (page == NULL) return 1;
    for (int y = 0; y < height; ++y) {
        if (fread(page + (size_t)y * stride, ((size_t)width + 7) / 8, 1, stdin) != 1) return 1;
    }

    int skew, scale, out_height, out_width;
    if (skbitmap_mem(page, height, width, (int)stride, &skew, &scale, &out_height, &out_width) != 0)
        return 1;

    const size_t out_stride = ((size_t)out_width + 31) / 32 * 4;
    unsigned char* straight = malloc((size_t)out_height * out_stride);
    if (straight == NULL) return 1;
    if (skrotbmp_mem(skew, scale, page, height, width, (int)stride, straight, out_height, out_width,
                     (int)out_stride, NULL) != 0)
        return 1;

    printf("P4\n%d %d\n", out_width, out_height);
    for (int y = 0; y < out_height; ++y) {
        fwrite(straight + (size_t)y * out_stride, ((size_t)out_width + 7) / 8, 1, stdout);
    }
    fprintf(stderr, "skew: %d pixels over %d\n", skew, scale);
    free(straight);
    free(page);
    return 0;
}
