/* Turning whole pages, by right angles and by any angle, and straightening photographed ones.
 *
 * Use: size the destination as the function says, call it, read the result's stride or size back.
 * Angles count clockwise: 090 turns the page a quarter turn clockwise, and so does an angle of 90.
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

/**
 * Says how large the image is that holds all of a page turned about its centre.
 *
 * @param height rows of the page
 * @param width pixels in its rows
 * @param out_height receives the rows of the turned page
 * @param out_width receives the pixels in its rows; parts of a pixel are cut off
 * @param angle degrees clockwise, above -360 and below 360
 * @return 0 the size is stored
 * @return -1 angle out of range or not a number, null pointer, size beyond int; nothing is written
 */
VEMOPREPRO_API int rotate_image_dim(int height, int width, int* out_height, int* out_width,
                                    double angle);

/**
 * Turns a bitonal page about its centre by any angle. Multiples of a right angle move pixels as
 * kyd_rotate_* do. At other angles a pixel is black when more than half of it is: it is blended of
 * the four pixels around the place that it comes from, which is found in steps of 1/16 pixel.
 * Whatever comes from outside of the page, or from its last row or column, whose pixels have no
 * neighbours, is white.
 *
 * Sides: with a width or height below 1 the page has no pixels, and the result is white; right
 * angles but 0 refuse it. A destination without rows or bytes in its rows is left alone.
 *
 * @param src the page: `height` rows of `bytes_per_line` bytes
 * @param height rows
 * @param width pixels in a row
 * @param bytes_per_line at least 4 * ceil(width / 32); at right angles but 0 a multiple of 4
 * @param dst receives `dst_height` rows of `dst_bytes_per_line` bytes, padding included; it does
 *            not overlap the page. At 90, -90, 270 and -270 the caller must have
 *            8 * bytes_per_line * dst_bytes_per_line bytes there, the work area of kyd_rotate_090;
 *            what lies behind the result is undefined afterwards
 * @param dst_height rows of the result. Multiples of a right angle demand exactly the turned size;
 *                   otherwise any size is accepted, rotate_image_dim() says which one holds the
 *                   whole page, and the centre of the page, pixel (width / 2, height / 2), comes to
 *                   pixel (dst_width / 2, dst_height / 2)
 * @param dst_width pixels in a row of the result
 * @param dst_bytes_per_line at least 4 * ceil(dst_width / 32); exactly that at 90, -90, 270 and
 *                           -270, and the stride of the page at 0, 180 and -180
 * @param angle degrees clockwise, above -360 and below 360
 * @return 0 the page is turned. At an angle of 0 all its bytes are copied, padding included
 * @return -1 angle out of range or not a number, stride too small, size or stride of the
 *         destination other than a right angle demands, null pointer to a page that has pixels;
 *         nothing is written
 */
VEMOPREPRO_API int rotate_bitonal(const unsigned char* src, int height, int width,
                                  int bytes_per_line, unsigned char* dst, int dst_height,
                                  int dst_width, int dst_bytes_per_line, double angle);

/**
 * Turns a page of whole bytes per pixel about its centre by any angle. Multiples of a right angle
 * move pixels. At other angles every byte of a pixel is blended of those of the four pixels around
 * the place that it comes from, which is found in steps of 1/16 pixel; whatever comes from outside
 * of the page, or from its last row or column, whose pixels have no neighbours, is background.
 *
 * Sides: with a width or height below 1 the page has no pixels, and the result is background. A
 * destination with such a side is left alone.
 *
 * @param bytes_per_pixel 1 grey, 3 colour, 4 colour and one more channel; at multiples of a right
 *                        angle any number from 1 on
 * @param background_pixel `bytes_per_pixel` bytes; not read at multiples of a right angle, where
 *                         it may be null
 * @param src the page: `height` rows of `bytes_per_line` bytes
 * @param height rows
 * @param width pixels in a row
 * @param bytes_per_line at least width * bytes_per_pixel
 * @param dst receives `dst_height` rows of `dst_width` pixels, `dst_bytes_per_line` bytes apart;
 *            bytes between the rows are not written, except at an angle of 0, which copies all
 *            bytes of the page. It does not overlap the page
 * @param dst_height rows of the result, `dst_width` pixels in each: as for rotate_bitonal()
 * @param dst_bytes_per_line at least dst_width * bytes_per_pixel; the stride of the page at 0
 * @param angle degrees clockwise, above -360 and below 360
 * @return 0 the page is turned
 * @return -1 angle out of range or not a number, stride too small, size of the destination (at 0
 *         also its stride) other than a right angle demands, bytes_per_pixel that the angle does
 *         not take, null pointer to pixels; nothing is written
 */
VEMOPREPRO_API int rotate_color(int bytes_per_pixel, const unsigned char* background_pixel,
                                const unsigned char* src, int height, int width, int bytes_per_line,
                                unsigned char* dst, int dst_height, int dst_width,
                                int dst_bytes_per_line, double angle);

/**
 * Puts the four corners of a page on a photograph into the order that the next two functions take:
 * clockwise from the upper left one, y growing downwards.
 *
 * The upper left corner is the higher of the two leftmost ones (at one height the one less far to
 * the left); the others follow by the slopes of the lines to them, where a corner below it and to
 * its left comes last. Three corners on one line with the first, which make no page, keep their
 * order.
 *
 * @param x0 ... y3 the corners, in any order; receive them in theirs
 * @return 0 the corners are in order
 * @return -1 null pointer; nothing is written
 */
VEMOPREPRO_API int check_points_order(int* x0, int* y0, int* x1, int* y1, int* x2, int* y2, int* x3,
                                      int* y3);

/**
 * Says how large a photographed page is: each side the mean of the two opposite sides of the
 * corners, lengths cut off to whole pixels.
 *
 * @param x0 ... y3 the corners, in the order of check_points_order()
 * @param out_height receives the rows of the straightened page
 * @param out_width receives the pixels in its rows
 * @return 0 the size is stored; it may be 0
 * @return -1 null pointer, and nothing is written; or a side so long that its square does not fit
 *         in 32 bits (46,340 pixels do), and the size that it belongs to is stored as -1
 */
VEMOPREPRO_API int give_appropriate_height_and_width(int x0, int y0, int x1, int y1, int x2, int y2,
                                                     int x3, int y3, int* out_height,
                                                     int* out_width);

/**
 * Straightens a photographed colour page: the part of the image between four corners becomes a
 * rectangle, by a projective mapping. Lightness is interpolated cubically, colour linearly. Pixel
 * (0, 0) of the result is the first corner; the other corners lie just behind the last pixels.
 *
 * The source is changed: it is left with the luma, red difference and blue difference (128 for
 * none) of every pixel in place of red, green and blue.
 *
 * Places in the two last rows and columns of the image, or in the first ones, take the pixel there
 * as it is. Corners may lie outside of the image: places there take the nearest pixel of its
 * border. Corners that make no page (three of them on a line, or crossing sides) give a result
 * without meaning, of pixels of the image.
 *
 * @param src three bytes a pixel, red first, rows without padding: 3 * width * height bytes
 * @param dst receives 3 * dst_width * dst_height bytes, red first; does not overlap the source
 * @param width pixels in a row of the source; below 1 (or height below 1) nothing is done
 * @param height rows of the source
 * @param dst_width pixels in a row of the result, as give_appropriate_height_and_width() says or
 *                  any other size; below 1 (or dst_height below 1) only the source is changed
 * @param dst_height rows of the result
 * @param x0 ... y3 the corners, in pixels of the source, in the order of check_points_order()
 * @return 0 the page is straightened
 * @return -1 null pointer to pixels; nothing is written
 */
VEMOPREPRO_API int perspective_transformation_color(unsigned char* src, unsigned char* dst,
                                                    int width, int height, int dst_width,
                                                    int dst_height, int x0, int y0, int x1, int y1,
                                                    int x2, int y2, int x3, int y3);

#ifdef __cplusplus
}
#endif

#endif /* VEMOPREPRO_GEOMETRY_H_ */
