/* Measuring the skew of a page and straightening it.
 *
 * Use: estimate_skew_of_binary_image() finds the skew and the size of the straight page; allocate a
 * destination of that size (stride 4 * ceil(out_width / 32)) and call skrotbmp_mem().
 *
 * The skew unit: a skew s with scale 512 is a drift of s pixels over 512 pixels of width, positive
 * when text lines rise to the right. Rotations take any numerator and denominator; only |s * 512 /
 * scale| <= 96 (about 10.6 degrees) is accepted.
 *
 * Keep true: source and destination do not overlap. No state survives a call; calls on different
 * buffers may run at the same time. */
#ifndef VEMOPREPRO_DESKEW_H_
#define VEMOPREPRO_DESKEW_H_

#include "vemoprepro/frame.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Receives the work done and the work in all, both in the steps of the function that reports. */
typedef void (*prepro_progress)(unsigned int done, unsigned int total);

/* Skew of a bitonal page: the slope among a fan of candidates along which the edges of the ink line
 * up best, measured over text lines and over stems; the more confident of the two wins. debug: when
 * its low byte is not 0, the search is traced into debug_folder
 * "/estimate_skew_of_binary_image.log"; a null folder is the current one; folders that are missing
 * are made. src: `height` rows (>= 32) of `width` pixels (>= 32); bytes_per_line is a multiple of 4
 * and at least 4 * ceil(width / 32). Only read. yskew, scale: receive the skew, within -96 .. 96,
 * and 512. confidence: receives the quotient of the best and the worst alignment; below 1.5 the
 * skew is given as 0. Not a number for a page without ink. out_height, out_width: receive the size
 * of the page after skrotbmp_mem() with this skew. Returns 0, or -1 with yskew 0, scale 512 and
 * confidence 1.0 stored and the sizes untouched. */
VEMOPREPRO_API int estimate_skew_of_binary_image(int debug, const char* debug_folder,
                                                 const unsigned char* src, int height, int width,
                                                 int bytes_per_line, int* yskew, int* scale,
                                                 double* confidence, int* out_height,
                                                 int* out_width);

/* The same without trace and confidence. */
VEMOPREPRO_API int skbitmap_mem(const unsigned char* src, int height, int width, int bytes_per_line,
                                int* yskew, int* scale, int* out_height, int* out_width);

/* Size of the page after skrotbmp_mem() with this skew. Returns 0, or -1 (nothing stored) for a
 * null pointer, a skew out of range, a scale of 0 with a skew that is not 0, or a size beyond int.
 */
VEMOPREPRO_API int skrotbmp_dim(int skew, int scale, int height, int width, int* out_height,
                                int* out_width);

/* Straightens a bitonal page by two shears. Up to 32 units of skew, each connected piece of ink
 * that is small enough moves as a whole and keeps its shape; everything else is sheared. src:
 * `height` rows of `width` pixels, at most 65,535 a side and bytes in a row. dst: out_height rows
 * of out_bytes_per_line bytes, an input here: at least the size that skrotbmp_dim() gives. Wholly
 * written: what the page does not cover becomes white (0). progress: called on the calling thread
 * as rows are done; may be null. Returns 0; -2 when a stride is below 4 * ceil(width / 32) of its
 * image or the destination is too small; -1 for a skew out of range, a null buffer, sizes below 1
 * or above 65,535, or when an allocation failed (the destination is then partly written). The
 * strides are checked first, the size of the destination last. */
VEMOPREPRO_API int skrotbmp_mem(int skew, int scale, const unsigned char* src, int height,
                                int width, int bytes_per_line, unsigned char* dst, int out_height,
                                int out_width, int out_bytes_per_line, prepro_progress progress);

/* skrotbmp_mem() of the complemented page: the source is complemented in place, rotated and
 * complemented back, so it must not be shared with another thread during the call. The destination
 * holds the rotation of the complement: with 1 read as white, the page with black margins. */
VEMOPREPRO_API int skrotbmp_b_mem(int skew, int scale, unsigned char* src, int height, int width,
                                  int bytes_per_line, unsigned char* dst, int out_height,
                                  int out_width, int out_bytes_per_line, prepro_progress progress);

/* Straightens a bitonal page pixel for pixel as the grey and colour deskew rotation does, by two
 * exact shears, or three for more than 25 units of skew, so that a mask lines up with its colour
 * page. dst: the rotated page is written as one block of its own height times 4 * ceil(its width /
 * 32) bytes; out_bytes_per_line must be that stride for the rows to land where the caller expects
 * them. Bytes after the block are left alone; without a skew the page is copied row by row into the
 * whole destination. Returns as skrotbmp_mem(), except that a destination smaller than the rotated
 * page gives -1, that larger sizes are taken as long as the block stays below 2 GiB, and that a
 * failed allocation leaves the destination as it was. */
VEMOPREPRO_API int skew_binary_image_aligned_with_skrotimg_mem(
    int skew, int scale, const unsigned char* src, int height, int width, int bytes_per_line,
    unsigned char* dst, int out_height, int out_width, int out_bytes_per_line,
    prepro_progress progress);

/* The same of the complemented page; the source is complemented in place and back, as above. */
VEMOPREPRO_API int skew_binary_image_aligned_with_skrotimg_mem_black_background(
    int skew, int scale, unsigned char* src, int height, int width, int bytes_per_line,
    unsigned char* dst, int out_height, int out_width, int out_bytes_per_line,
    prepro_progress progress);

#ifdef __cplusplus
}
#endif

#endif /* VEMOPREPRO_DESKEW_H_ */
