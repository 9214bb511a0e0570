/* Turning whole pages by right angles.
 *
 * Use: size the destination as the function says, call it, read the result's stride or size back.
 * Angles count clockwise: 090 turns the page a quarter turn clockwise.
 *
 * Keep true: source and destination do not overlap. Nothing is allocated; all functions are pure
 * and may run on any number of threads at once. */
#ifndef VEMOPREPRO_GEOMETRY_H_
#define VEMOPREPRO_GEOMETRY_H_

#include "vemoprepro/frame.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Rotation codes of the two dispatchers below. */
enum {
    PREPRO_TURN_COUNTER_CLOCKWISE = 1, /* a quarter turn */
    PREPRO_TURN_HALF = 2,
    PREPRO_TURN_CLOCKWISE = 3 /* a quarter turn */
};

/**
 * Turns a bitonal page by a half turn.
 *
 * @param src the page: `height` rows of `bytes_per_line` bytes
 * @param width pixels in a row, at least 1
 * @param height rows, at least 1
 * @param bytes_per_line a multiple of 4, at least ceil(width / 8)
 * @param dst receives `height` rows of `width` pixels, `bytes_per_line` bytes apart; padding bits
 *            are 0, whatever the source's padding held
 * @param dst_size bytes at dst, at least height * bytes_per_line
 * @param out_bytes_per_line receives the stride of the result, that of the source
 * @return 0 the page is turned
 * @return -1 null pointer, size below 1, stride or destination too small, stride that is not a
 *         multiple of 4; nothing is written
 */
VEMOPREPRO_API int kyd_rotate_180(const unsigned char* src, int width, int height,
                                  int bytes_per_line, unsigned char* dst, int dst_size,
                                  unsigned int* out_bytes_per_line);

/**
 * Turn a bitonal page by a quarter turn, counter-clockwise (270) or clockwise (090).
 *
 * @param src the page: `height` rows of `bytes_per_line` bytes
 * @param width pixels in a row, at least 1
 * @param height rows, at least 1
 * @param bytes_per_line a multiple of 4, at least ceil(width / 8)
 * @param dst receives `width` rows of `height` pixels, 4 * ceil(height / 32) bytes apart; padding
 *            bits are 0. What lies behind them is work area, undefined afterwards
 * @param dst_size bytes at dst, at least (bytes_per_line / 4) * ceil(height / 32) * 128, which is
 *                 more than the result
 * @param out_bytes_per_line receives the stride of the result
 * @return 0 the page is turned
 * @return -1 null pointer, size below 1, stride or destination too small, stride that is not a
 *         multiple of 4; nothing is written
 */
VEMOPREPRO_API int kyd_rotate_270(const unsigned char* src, int width, int height,
                                  int bytes_per_line, unsigned char* dst, int dst_size,
                                  unsigned int* out_bytes_per_line);
VEMOPREPRO_API int kyd_rotate_090(const unsigned char* src, int width, int height,
                                  int bytes_per_line, unsigned char* dst, int dst_size,
                                  unsigned int* out_bytes_per_line);

/**
 * Turns a bitonal page by a rotation code: one of the three functions above. Mind the order: height
 * comes before width here.
 *
 * @param mode rotation code, PREPRO_TURN_*
 * @param src the page: `height` rows of `bytes_per_line` bytes
 * @param height rows, at least 1
 * @param width pixels in a row, at least 1
 * @param bytes_per_line a multiple of 4, at least ceil(width / 8)
 * @param dst receives the turned page, as the function of that turn says
 * @param dst_size bytes at dst, as many as that function asks for
 * @param out_bytes_per_line receives the stride of the result
 * @return 0 the page is turned
 * @return 0 a rotation code below 1 or above 4; nothing is written, the stride neither
 * @return -1 rotation code 4, or what the function of that turn refuses; nothing is written
 */
VEMOPREPRO_API int kyd_rotate_bitmap(int mode, const unsigned char* src, int height, int width,
                                     int bytes_per_line, unsigned char* dst, int dst_size,
                                     unsigned int* out_bytes_per_line);

/**
 * Turns a packed image of whole bytes per pixel: the row stride is width * bytes_per_pixel, in the
 * source and in the result.
 *
 * @param mode rotation code, PREPRO_TURN_*
 * @param bytes_per_pixel bytes that stay together: 1 grey, 3 colour, any number from 1 on
 * @param src the image: height * width * bytes_per_pixel bytes
 * @param height rows; below 1 the image is empty
 * @param width pixels in a row; below 1 the image is empty
 * @param dst receives the turned image: as many bytes as the source has, which is not checked
 * @param out_height receives the rows of the result: `width` after a quarter turn
 * @param out_width receives the pixels in a row of the result: `height` after a quarter turn
 * @return 0 the image is turned; of an empty image only the size is stored
 * @return -1 rotation code outside of 1 .. 3, null pointer to a size; also, for an image that is
 *         not empty, null pointer to pixels, bytes_per_pixel below 1; nothing is written
 */
VEMOPREPRO_API int kyd_rotate_color(int mode, int bytes_per_pixel, const unsigned char* src,
                                    int height, int width, unsigned char* dst, int* out_height,
                                    int* out_width);

#ifdef __cplusplus
}
#endif

#endif /* VEMOPREPRO_GEOMETRY_H_ */
