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

/* Half turn of a bitonal page.
 * src: `height` rows of `bytes_per_line` bytes, `width` pixels each; bytes_per_line is a multiple
 * of 4. dst: dst_size bytes, at least height * bytes_per_line; receives `height` rows of the same
 * stride, padding bits 0 whatever the source's padding held. out_bytes_per_line: receives the
 * result's stride. Returns 0, or -1 (nothing written) for a null pointer, a size below 1, a stride
 * that is not a multiple of 4 or too small for the width, or a destination that is too small. */
VEMOPREPRO_API int kyd_rotate_180(const unsigned char* src, int width, int height,
                                  int bytes_per_line, unsigned char* dst, int dst_size,
                                  unsigned int* out_bytes_per_line);

/* Quarter turns of a bitonal page, counter-clockwise (270) and clockwise (090). Arguments as above.
 * The result has `width` rows of `height` pixels with the stride 4 * ceil(height / 32), padding
 * bits 0. dst needs (bytes_per_line / 4) * ceil(height / 32) * 128 bytes, more than the result: the
 * rest is work area whose contents are undefined afterwards. */
VEMOPREPRO_API int kyd_rotate_270(const unsigned char* src, int width, int height,
                                  int bytes_per_line, unsigned char* dst, int dst_size,
                                  unsigned int* out_bytes_per_line);
VEMOPREPRO_API int kyd_rotate_090(const unsigned char* src, int width, int height,
                                  int bytes_per_line, unsigned char* dst, int dst_size,
                                  unsigned int* out_bytes_per_line);

/* The three turns above by rotation code. Mind the order: height comes before width here.
 * Code 4 returns -1; any other unknown code returns 0 and writes nothing at all. */
VEMOPREPRO_API int kyd_rotate_bitmap(int mode, const unsigned char* src, int height, int width,
                                     int bytes_per_line, unsigned char* dst, int dst_size,
                                     unsigned int* out_bytes_per_line);

/* Turn of a packed image of `bytes_per_pixel` bytes per pixel (1 grey, 3 colour, any size >= 1
 * works): the row stride is width * bytes_per_pixel in source and destination alike. dst has room
 * for height * width * bytes_per_pixel bytes (not checked). out_height, out_width: receive the
 * result's size: swapped for the quarter turns. A height or width below 1 stores the size, copies
 * nothing and returns 0. Returns 0, or -1 (nothing written) for a rotation code outside of 1 .. 3,
 * a null pointer or a bytes_per_pixel below 1. */
VEMOPREPRO_API int kyd_rotate_color(int mode, int bytes_per_pixel, const unsigned char* src,
                                    int height, int width, unsigned char* dst, int* out_height,
                                    int* out_width);

#ifdef __cplusplus
}
#endif

#endif /* VEMOPREPRO_GEOMETRY_H_ */
