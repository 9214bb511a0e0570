/* Measuring the skew of a page and straightening it.
 *
 * Use: estimate_skew_of_binary_image() finds the skew and the size of the straight page; allocate a
 * destination of that size (stride 4 * ceil(out_width / 32)) and call skrotbmp_mem(). To line up
 * with a page turned by the grey and colour rotation, take the size from skrotdim() and call
 * skew_binary_image_aligned_with_skrotimg_mem().
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

#ifdef __cplusplus
}
#endif

#endif /* VEMOPREPRO_DESKEW_H_ */
