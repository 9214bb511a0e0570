/* Scaling whole pages to a size that the caller chooses: grey, colour and bitonal ones.
 *
 * Use: any of the eleven functions; they take the same arguments. Bilinear is the faster filter,
 * bicubic the sharper one.
 *
 * Target pixel j of a row or column lies at j * (source size / target size) in the source, without
 * an offset of half a pixel: target pixel 0 is source pixel 0, and beyond the last source pixel
 * there is only that pixel again. Scaling down takes samples and no averages: half the size keeps
 * every second pixel. The width is scaled first; its result, rounded down to whole values, is what
 * the height is scaled from.
 *
 * The ratios of the width and of the height are told apart by whole numbers, in this order, and the
 * first that fits counts: target = 2 * source, target = 3 * source / 2, target = 4 * source / 3,
 * both rounded down. These three use weights in whole numbers, every other ratio double precision.
 * A page that keeps its size keeps its pixels, except along a side of 2 pixels, which fits 4 / 3.
 *
 * Keep true: source and destination do not overlap. The functions keep no state and may run on any
 * number of threads at once; those that take a number of threads give the same bytes for any.
 *
 * Source of the cubic filter: R. Keys, Cubic convolution interpolation for digital image
 * processing, 1981, with a = -1/2 (Catmull-Rom). */
#ifndef VEMOPREPRO_SCALING_H_
#define VEMOPREPRO_SCALING_H_

#include "vemoprepro/frame.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Scale a grey page, a byte per pixel.
 *
 * @param src the page: `height` rows of `width` pixels, `bytes_per_line` bytes apart
 * @param height rows, at least 1
 * @param width pixels in a row, at least 1
 * @param bytes_per_line at least `width`
 * @param dst receives `dst_height` rows of `dst_width` pixels, `dst_bytes_per_line` bytes apart;
 *            what lies between the pixels and the stride is left as it is
 * @param dst_height rows of the result, at least 1
 * @param dst_width pixels in a row of the result, at least 1
 * @param dst_bytes_per_line at least `dst_width`
 * @param nb_threads threads to use at most: every one gets at least 50 rows of the source. Below 2
 *                   all work is done on the calling thread
 * @return 0 the page is scaled
 * @return -1 null pointer, size below 1, stride too small; nothing is written
 * @return -1 too little memory, or a thread that does not start; the result may be written in part
 */
VEMOPREPRO_API int bilinear_grey(const unsigned char* src, int height, int width,
                                 int bytes_per_line, unsigned char* dst, int dst_height,
                                 int dst_width, int dst_bytes_per_line);
VEMOPREPRO_API int bicubic_grey(const unsigned char* src, int height, int width, int bytes_per_line,
                                unsigned char* dst, int dst_height, int dst_width,
                                int dst_bytes_per_line);
VEMOPREPRO_API int bicubic_grey_with_threads(const unsigned char* src, int height, int width,
                                             int bytes_per_line, unsigned char* dst, int dst_height,
                                             int dst_width, int dst_bytes_per_line, int nb_threads);

/**
 * Scale a colour page, three bytes per pixel: red, green, blue. What is scaled is its luma and two
 * chroma differences in whole numbers, so that colours may change by a step or two even where the
 * size stays; neutral ones do not. The functions with `_o` scale the luma bicubically and the
 * chroma bilinearly, which costs half as much and is hardly seen.
 *
 * @param src the page: `height` rows of `width` pixels, `bytes_per_line` bytes apart
 * @param height rows, at least 1
 * @param width pixels in a row, at least 1
 * @param bytes_per_line at least 3 * width
 * @param dst receives `dst_height` rows of `dst_width` pixels, `dst_bytes_per_line` bytes apart;
 *            what lies between the pixels and the stride is left as it is
 * @param dst_height rows of the result, at least 1
 * @param dst_width pixels in a row of the result, at least 1
 * @param dst_bytes_per_line at least 3 * dst_width
 * @param nb_threads threads to use at most for the bicubic work, as for a grey page
 * @return 0 the page is scaled
 * @return -1 null pointer, size below 1, stride too small, too little memory, or a thread that does
 *         not start; nothing is written
 */
VEMOPREPRO_API int bilinear_rgb(const unsigned char* src, int height, int width, int bytes_per_line,
                                unsigned char* dst, int dst_height, int dst_width,
                                int dst_bytes_per_line);
VEMOPREPRO_API int bicubic_rgb(const unsigned char* src, int height, int width, int bytes_per_line,
                               unsigned char* dst, int dst_height, int dst_width,
                               int dst_bytes_per_line);
VEMOPREPRO_API int bicubic_rgb_with_threads(const unsigned char* src, int height, int width,
                                            int bytes_per_line, unsigned char* dst, int dst_height,
                                            int dst_width, int dst_bytes_per_line, int nb_threads);
VEMOPREPRO_API int bicubic_rgb_o(const unsigned char* src, int height, int width,
                                 int bytes_per_line, unsigned char* dst, int dst_height,
                                 int dst_width, int dst_bytes_per_line);
VEMOPREPRO_API int bicubic_rgb_o_with_threads(const unsigned char* src, int height, int width,
                                              int bytes_per_line, unsigned char* dst,
                                              int dst_height, int dst_width, int dst_bytes_per_line,
                                              int nb_threads);

/**
 * Scale a bitonal page, 8 pixels per byte, 1 = black: through a grey page of the values 0 and 255,
 * of whose result the pixels below 129 are black.
 *
 * @param src the page: `height` rows of `width` pixels, `bytes_per_line` bytes apart
 * @param height rows, at least 1
 * @param width pixels in a row, at least 1
 * @param bytes_per_line at least 4 * ceil(width / 32)
 * @param dst receives `dst_height` rows of `dst_width` pixels, `dst_bytes_per_line` bytes apart;
 *            everything behind the pixels of a row is 0
 * @param dst_height rows of the result, at least 1
 * @param dst_width pixels in a row of the result, at least 1
 * @param dst_bytes_per_line at least 4 * ceil(dst_width / 32)
 * @param nb_threads threads to use at most, as for a grey page
 * @return 0 the page is scaled
 * @return -1 null pointer, size below 1, stride too small, too little memory, or a thread that does
 *         not start; nothing is written
 */
VEMOPREPRO_API int bilinear_bitonal(const unsigned char* src, int height, int width,
                                    int bytes_per_line, unsigned char* dst, int dst_height,
                                    int dst_width, int dst_bytes_per_line);
VEMOPREPRO_API int bicubic_bitonal(const unsigned char* src, int height, int width,
                                   int bytes_per_line, unsigned char* dst, int dst_height,
                                   int dst_width, int dst_bytes_per_line);
VEMOPREPRO_API int bicubic_bitonal_with_threads(const unsigned char* src, int height, int width,
                                                int bytes_per_line, unsigned char* dst,
                                                int dst_height, int dst_width,
                                                int dst_bytes_per_line, int nb_threads);

#ifdef __cplusplus
}
#endif

#endif /* VEMOPREPRO_SCALING_H_ */
