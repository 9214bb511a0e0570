/* Measuring the skew of a page and straightening it.
 *
 * Use: estimate_skew_of_binary_image() finds the skew and the size of the straight page; allocate a
 * destination of that size (stride 4 * ceil(out_width / 32)) and call skrotbmp_mem(). For grey and
 * colour pages, estimate_skew_of_color_image() finds the skew, skrotdim() the size, and
 * skrotimg_mem() turns the page in its own buffer. A mask lines up with such a page when it is
 * turned by skew_binary_image_aligned_with_skrotimg_mem() to the same size.
 *
 * The skew unit: a skew s with scale 512 is a drift of s pixels over 512 pixels of width, positive
 * when text lines rise to the right. Rotations take any numerator and denominator; only |s * 512 /
 * scale| <= 96 (about 10.6 degrees) is accepted, and a scale of 0 only with a skew of 0.
 *
 * Keep true: source and destination do not overlap. No state survives a call; calls on different
 * buffers may run at the same time. */
#ifndef VEMOPREPRO_DESKEW_H_
#define VEMOPREPRO_DESKEW_H_

#include "vemoprepro/frame.h"
#include "vemoprepro/source.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Receives how far a rotation is. Called on the thread of the call; must not throw and must not
 * leave by longjmp.
 *
 * @param done steps done, 0 .. total; a step is whatever the reporting function counts
 * @param total steps in all
 */
typedef void (*prepro_progress)(unsigned int done, unsigned int total);

/**
 * Measures the skew of a bitonal page: the slope among a fan of candidates along which the edges of
 * the ink line up best (Postl 1986), measured over text lines and over stems. The more confident of
 * the two wins.
 *
 * @param debug when its low byte is not 0, the search is traced into
 *              debug_folder "/estimate_skew_of_binary_image.log"
 * @param debug_folder made when it is missing; null is the current folder
 * @param src the page: `height` rows of `bytes_per_line` bytes
 * @param height rows, at least 32
 * @param width pixels in a row, at least 32
 * @param bytes_per_line a multiple of 4, at least 4 * ceil(width / 32)
 * @param yskew receives the skew, -96 .. 96; on failure 0
 * @param scale receives 512, also on failure
 * @param confidence receives the quotient of the best and the worst alignment; below 1.5 the skew
 *                   is given as 0. Not a number for a page without ink; on failure 1.0
 * @param out_height receives the rows of the page after skrotbmp_mem(); on failure untouched
 * @param out_width receives the pixels in a row of that page; on failure untouched
 * @return 0 the skew was measured
 * @return -1 null pointer, size or stride out of range, no trace file, an allocation that failed
 */
VEMOPREPRO_API int estimate_skew_of_binary_image(int debug, const char* debug_folder,
                                                 const unsigned char* src, int height, int width,
                                                 int bytes_per_line, int* yskew, int* scale,
                                                 double* confidence, int* out_height,
                                                 int* out_width);

/**
 * estimate_skew_of_binary_image() without trace and confidence.
 *
 * @param src, height, width, bytes_per_line, yskew, scale, out_height, out_width as there
 * @return 0 or -1 as there
 */
VEMOPREPRO_API int skbitmap_mem(const unsigned char* src, int height, int width, int bytes_per_line,
                                int* yskew, int* scale, int* out_height, int* out_width);

/**
 * The size of a page after skrotbmp_mem().
 *
 * @param skew numerator of the skew
 * @param scale its denominator
 * @param height rows of the page
 * @param width pixels in a row of the page
 * @param out_height receives the rows of the straight page; on failure untouched
 * @param out_width receives the pixels in a row of the straight page; on failure untouched
 * @return 0 the size is stored
 * @return -1 null pointer, skew out of range, size beyond int
 */
VEMOPREPRO_API int skrotbmp_dim(int skew, int scale, int height, int width, int* out_height,
                                int* out_width);

/**
 * Straightens a bitonal page by two shears. Up to 32 units of skew, each connected piece of ink
 * that is small enough moves as a whole and keeps its shape; everything else is sheared.
 *
 * The strides are checked first and the size of the destination last. Where the page is sheared or
 * copied, the padding bits in the last byte of a row come along as if they were pixels beyond its
 * right edge: clear them where that matters.
 *
 * Up to 32 units the working memory holds the runs of ink of 1,024 / |units| rows, or 131,072 runs
 * where these are fewer: 12 bytes for each run, and up to 120 more for each that is a piece of ink
 * of its own. Beyond, it is 40 bytes for each row.
 *
 * @param skew numerator of the skew
 * @param scale its denominator
 * @param src the page: `height` rows of `bytes_per_line` bytes
 * @param height rows, 1 .. 65,535
 * @param width pixels in a row, 1 .. 65,535
 * @param bytes_per_line 4 * ceil(width / 32) .. 65,535
 * @param dst receives the straight page; wholly written, what the page does not cover is white (0).
 *            Refused arguments leave it alone, an allocation that fails leaves it partly written
 * @param out_height rows at dst, at least what skrotbmp_dim() gives, at most 65,535
 * @param out_width pixels in a row at dst, at least what skrotbmp_dim() gives, at most 65,535
 * @param out_bytes_per_line stride of dst, 4 * ceil(out_width / 32) .. 65,535
 * @param progress called as rows and columns are done; may be null
 * @return 0 the page is straight
 * @return -1 null buffer, size below 1 or above 65,535, skew out of range, failed allocation
 * @return -2 a stride is too small for its width, or the destination for the page
 */
VEMOPREPRO_API int skrotbmp_mem(int skew, int scale, const unsigned char* src, int height,
                                int width, int bytes_per_line, unsigned char* dst, int out_height,
                                int out_width, int out_bytes_per_line, prepro_progress progress);

/**
 * skrotbmp_mem() of the complemented page: with 1 read as white, the straight page gets black
 * margins.
 *
 * @param src the page, complemented in place during the call and back before it ends, on failure
 *            too: not to be shared with another thread meanwhile
 * @param skew, scale, height, width, bytes_per_line as there
 * @param dst receives the rotation of the complement, as there
 * @param out_height, out_width, out_bytes_per_line, progress as there
 * @return 0, -1 or -2 as there
 */
VEMOPREPRO_API int skrotbmp_b_mem(int skew, int scale, unsigned char* src, int height, int width,
                                  int bytes_per_line, unsigned char* dst, int out_height,
                                  int out_width, int out_bytes_per_line, prepro_progress progress);

/**
 * The size of a page after the rotation below, which is that of the grey and colour rotation.
 *
 * @param skew numerator of the skew
 * @param scale its denominator
 * @param height rows of the page
 * @param width pixels in a row of the page
 * @param out_height receives the rows of the rotated page; on failure 0
 * @param out_width receives the pixels in a row of the rotated page; on failure 0
 * @return 0 the size is stored
 * @return -1 null pointer, skew out of range, size beyond int
 */
VEMOPREPRO_API int skrotdim(int skew, int scale, int height, int width, int* out_height,
                            int* out_width);

/**
 * Straightens a bitonal page pixel for pixel as the grey and colour rotation does, so that a mask
 * lines up with its colour page: by two exact shears, or three for more than 25 units of skew
 * (Paeth 1986).
 *
 * @param skew numerator of the skew
 * @param scale its denominator
 * @param src the page: `height` rows of `bytes_per_line` bytes
 * @param height rows, at least 1
 * @param width pixels in a row, at least 1
 * @param bytes_per_line at least 4 * ceil(width / 32)
 * @param dst receives the rotated page as one block: as many rows as skrotdim() gives, each of
 *            4 * ceil(w / 32) bytes for its width w. The bytes behind the block are left alone. A
 *            page without skew is copied row by row into the whole destination instead. On failure
 *            nothing is written
 * @param out_height rows at dst, at least what skrotdim() gives
 * @param out_width pixels in a row at dst, at least what skrotdim() gives
 * @param out_bytes_per_line at least 4 * ceil(out_width / 32); the rows land where the caller
 *                           expects them when this is the stride of the block
 * @param progress called with (0, 3) to (3, 3), without a skew (0, 1) and (1, 1); may be null
 * @return 0 the page is straight
 * @return -1 null buffer, size below 1, skew out of range, destination smaller than the rotated
 *         page, a block of 2 GiB or more, an allocation that failed
 * @return -2 a stride is too small for its width
 */
VEMOPREPRO_API int skew_binary_image_aligned_with_skrotimg_mem(
    int skew, int scale, const unsigned char* src, int height, int width, int bytes_per_line,
    unsigned char* dst, int out_height, int out_width, int out_bytes_per_line,
    prepro_progress progress);

/**
 * The same of the complemented page.
 *
 * @param src the page, complemented in place during the call and back before it ends, on failure
 *            too: not to be shared with another thread meanwhile
 * @param skew, scale, height, width, bytes_per_line as there
 * @param dst receives the rotation of the complement, as there
 * @param out_height, out_width, out_bytes_per_line, progress as there
 * @return 0, -1 or -2 as there
 */
VEMOPREPRO_API int skew_binary_image_aligned_with_skrotimg_mem_black_background(
    int skew, int scale, unsigned char* src, int height, int width, int bytes_per_line,
    unsigned char* dst, int out_height, int out_width, int out_bytes_per_line,
    prepro_progress progress);

/**
 * Measures the skew of a grey or colour page as estimate_skew_of_binary_image() measures that of a
 * bitonal one, from sums of grey values, (299 red + 587 green + 114 blue) / 1000 of a colour.
 *
 * The reader delivers the page twice from the top: 2 * floor(height / 2) rows, then 16 *
 * floor(height / 16). The page is never held whole: the working memory is one row and about
 * height * width / 12 bytes. Columns beyond the last whole 16 take no part in the first reading, an
 * odd last one not in the second.
 *
 * @param debug when its low byte is not 0, the search is traced into
 *              debug_folder "/estimate_skew_of_color_image.log"
 * @param debug_folder made when it is missing; null is the current folder
 * @param read_row delivers the page; must fill the whole row in every call
 * @param user handed to read_row
 * @param format PREPRO_SOURCE_*
 * @param height rows, at least 32
 * @param width pixels in a row, at least 32
 * @param yskew receives the skew, -96 .. 96; on failure 0
 * @param scale receives 512, also on failure
 * @param confidence receives the quotient of the best and the worst alignment; below 1.5 the skew
 *                   is given as 0. Not a number for a uniform page; on failure 1.0
 * @return 0 the skew was measured
 * @return -1 size out of range, which leaves all outputs untouched; unknown format, null pointer,
 *         no trace file, an allocation that failed
 */
VEMOPREPRO_API int estimate_skew_of_color_image(int debug, const char* debug_folder,
                                                prepro_row_reader read_row, void* user, int format,
                                                int height, int width, int* yskew, int* scale,
                                                double* confidence);

/**
 * estimate_skew_of_color_image() without trace and confidence.
 *
 * @param read_row, user, format, height, width, yskew, scale as there
 * @return 0 or -1 as there
 */
VEMOPREPRO_API int sk_color_mem(prepro_row_reader read_row, void* user, int format, int height,
                                int width, int* yskew, int* scale);

/**
 * Straightens a grey or colour page in its own buffer, by two shears, or three for more than 25
 * units of skew (Paeth 1986). A line moves by a fraction of a pixel, too: each pixel gives that
 * fraction of itself to the next one, so that edges stay smooth.
 *
 * Rows are packed. Pixels have
 *   - 1 byte: grey;
 *   - 2 bytes, the high byte first: three channels of 5 bits, from bit 14 down; bit 15 becomes 0;
 *   - 3 bytes: red, green, blue, or any other order;
 *   - 4 bytes: any channels, all sheared alike.
 *
 * What the turned page does not cover within its size becomes background; pixels next to an end of
 * a line are the mean of that end and the background, except with 2 bytes. What lies beyond the
 * size that skrotdim() gives becomes 0. Without a skew, the page is laid out in the larger size;
 * of equal size, it is left alone.
 *
 * @param skew numerator of the skew
 * @param scale its denominator
 * @param bytes_per_pixel 1 .. 4
 * @param buffer the page, `height` rows of `width` pixels; receives out_height rows of out_width
 *               pixels and has room for them. Refused arguments leave it alone, an allocation that
 *               fails leaves it partly turned
 * @param height rows, at least 1
 * @param width pixels in a row, at least 1
 * @param background one pixel; not in the buffer
 * @param out_height rows of the result, at least what skrotdim() gives
 * @param out_width pixels in a row of the result, at least what skrotdim() gives
 * @param progress called with (0, 4) to (4, 4), after each step but a third shear, without a skew
 *                 and with equal sizes only with these two; may be null
 * @return 0 the page is straight
 * @return -1 null buffer or background, bytes_per_pixel or size out of range, skew out of range,
 *         buffer smaller than the turned page, an allocation that failed
 */
VEMOPREPRO_API int skrotimg_bg_mem(int skew, int scale, int bytes_per_pixel, unsigned char* buffer,
                                   int height, int width, const unsigned char* background,
                                   int out_height, int out_width, prepro_progress progress);

/**
 * skrotimg_bg_mem() with a white background.
 *
 * @param skew, scale, bytes_per_pixel, buffer, height, width, out_height, out_width, progress as
 *              there
 * @return 0 or -1 as there
 */
VEMOPREPRO_API int skrotimg_mem(int skew, int scale, int bytes_per_pixel, unsigned char* buffer,
                                int height, int width, int out_height, int out_width,
                                prepro_progress progress);

#ifdef __cplusplus
}
#endif

#endif /* VEMOPREPRO_DESKEW_H_ */
