/* Turning grey and colour pages bitonal.
 *
 * Use: bi_setup(reader), any setters, any number of bi_gradl_do() or bi_thresh_do() calls,
 * bi_upset(). The one-shot functions do all of that in one call.
 *
 * The source is read row by row through a reader of the caller's, and a region of it is binarized:
 * the columns x0 <= x < x1 of the rows y0 <= y < y1. The result is a bitonal image of y1 - y0 rows,
 * 4 * ceil((x1 - x0) / 32) bytes each, whose padding bits are 0.
 *
 * How often the reader is rewound: once for a grey source; twice for a colour source, whose second
 * reading is searched for strong colours; not at all where the image pointer is read instead
 * (bi_set_image_pointer()). A dropout of colours rewinds it once more. After each rewinding it is
 * asked for the rows up to y1 - 1 and for none below. bi_grey_gradl_do() does not call it.
 *
 * Keep true: a handle is used by one thread at a time; different handles may be used at the same
 * time. `out` is no part of the source. */
#ifndef VEMOPREPRO_BINARIZATION_H_
#define VEMOPREPRO_BINARIZATION_H_

#include "vemoprepro/frame.h"
#include "vemoprepro/source.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Decides about ink of one colour. Called on the thread of the call, for every black pixel, row by
 * row from the left; must not throw and must not leave by longjmp.
 *
 * @param context the pointer given to bi_set_dropout()
 * @param colour the three bytes of the source pixel, in the order of the source
 * @return 1 the pixel becomes white
 * @return any other value: it stays black
 */
typedef int (*prepro_dropout)(void* context, const unsigned char* colour);

/* The settings object; created by bi_setup(), freed by bi_upset(). */
typedef struct bi_settings bi_settings;

/**
 * Makes a settings object with the defaults that the setters tell.
 *
 * @param reader delivers the source of every do call; null where none will be read
 * @return the object, the caller's until bi_upset(); null when it cannot be allocated
 */
VEMOPREPRO_API bi_settings* bi_setup(prepro_row_reader reader);

/**
 * Frees a settings object.
 *
 * @param settings the object; null is ignored
 * @return 0
 */
VEMOPREPRO_API int bi_upset(bi_settings* settings);

/* ---- Setters
 *
 * The first argument is the settings object. Values are stored as given, 0 .. 255 where the
 * argument is a byte. Each setter returns
 *   0 the value is stored,
 *  -1 null object; nothing is stored. */

/**
 * Smoothing of the grey image by a 3 x 3 filter, where neighbouring pixels differ by more than 112
 * somewhere. A do call raises a value that is not 0 by 2, at most to 255, and leaves it raised,
 * also when it fails: set it before each call for the same smoothing.
 *
 * @param smooth 0 off (default), 1 .. 255 from weak to strong
 */
VEMOPREPRO_API int bi_set_smooth(bi_settings* settings, unsigned char smooth);

/**
 * Search for halftone screens, which are undone before the smoothing. Without smoothing there is
 * none.
 *
 * @param undithering 0 off (default), any other value on
 */
VEMOPREPRO_API int bi_set_undithering(bi_settings* settings, unsigned char undithering);

/**
 * The threshold of bi_thresh_do().
 *
 * @param thresh grey values below it become black (default 128); 0 has it chosen by Otsu's method
 */
VEMOPREPRO_API int bi_set_thresh(bi_settings* settings, unsigned char thresh);

/**
 * How the gradient method gives thresholds to areas without edges.
 *
 * @param fill_mean 0 (default): the lowest threshold of those that touch the area; any other value:
 *                  the mean of the thresholds around
 */
VEMOPREPRO_API int bi_set_fill_mean(bi_settings* settings, unsigned char fill_mean);

/**
 * A value that is kept for bi_get_satur(), and that no binarization reads.
 *
 * @param satur the value (default 0)
 */
VEMOPREPRO_API int bi_set_satur(bi_settings* settings, unsigned char satur);

/**
 * Sets delta1 and delta2 together.
 *
 * @param contrast c: 0 gives 1 and 1; 1 .. 15 give c and (c + 1) / 2; from 16 on c and c - 8
 */
VEMOPREPRO_API int bi_set_contrast(bi_settings* settings, unsigned char contrast);

/**
 * The gradient that starts an edge.
 *
 * @param delta1 this gradient less 8 (default 40); from 247 on no edges are found. In
 *               bi_gradl_do_sobel() an edge has 3 * delta1 + 20 on the scale of undivided responses
 */
VEMOPREPRO_API int bi_set_delta1(bi_settings* settings, unsigned char delta1);

/**
 * The gradient above which an edge is followed.
 *
 * @param delta2 this gradient (default 32). In bi_gradl_do_sobel() the least difference of greys
 *               around an edge pixel
 */
VEMOPREPRO_API int bi_set_delta2(bi_settings* settings, unsigned char delta2);

/**
 * Sets black1 and black2 together.
 *
 * @param brightness b gives b and 3 * b / 4
 */
VEMOPREPRO_API int bi_set_brightness(bi_settings* settings, unsigned char brightness);

/**
 * The level below which dark areas are filled.
 *
 * @param black1 the level (default 0). In the gradient method 128 stands for the white of the
 *               region, and 0 switches black1 and black2 off
 */
VEMOPREPRO_API int bi_set_black1(bi_settings* settings, unsigned char black1);

/**
 * The lowest threshold that a block can have.
 *
 * @param black2 the threshold (default 0); in the gradient method on the scale of black1
 */
VEMOPREPRO_API int bi_set_black2(bi_settings* settings, unsigned char black2);

/**
 * The weight of the deviation in bi_gradl_do_sobel().
 *
 * @param sigma the weight in 128ths, -128 .. 127 (default 0)
 */
VEMOPREPRO_API int bi_set_sigma(bi_settings* settings, signed char sigma);

/**
 * Colour dropout: ink whose source colour is unwanted becomes white after the binarization of a
 * colour source. Off by default.
 *
 * @param dropout asked about every black pixel; null switches the dropout off
 * @param context handed to it, and stays the caller's; null switches the dropout off
 */
VEMOPREPRO_API int bi_set_dropout(bi_settings* settings, prepro_dropout dropout, void* context);

/**
 * Gradients of faint pages, in the gradient method.
 *
 * @param normalize 1: all gradients are enlarged, at most fourfold, so that the largest reaches the
 * end of the range; 2: delta1 and delta2 are reduced by the same factor instead; any other value:
 * off (default 0)
 */
VEMOPREPRO_API int bi_set_normalize_magnitude(bi_settings* settings, unsigned char normalize);

/**
 * Smoothing by a 3 x 3 Gaussian kernel before the gradient is taken, and for that only, in the
 * gradient method.
 *
 * @param smoothing 0 off (default), any other value on
 */
VEMOPREPRO_API int bi_set_internal_gaussian_smoothing(bi_settings* settings,
                                                      unsigned char smoothing);

/**
 * The folder for debug output. No binarization writes any.
 *
 * @param path its name, which is copied
 * @return 0 the name is stored
 * @return -1 null object or null path, an allocation that failed; the stored name stays
 */
VEMOPREPRO_API int bi_set_debug_folder(bi_settings* settings, const char* path);

/**
 * How many threads a do call may use, each for at least 50 rows.
 *
 * @param nb_threads at least 1 (default 1)
 * @return 0 the number is stored
 * @return -1 null object or less than 1; the stored number stays
 */
VEMOPREPRO_API int bi_set_nb_threads(bi_settings* settings, int nb_threads);

/**
 * The source in memory. A do call that may use several threads, on a PREPRO_SOURCE_RGB region of at
 * least 100 rows, reads it instead of calling the reader, and fails without it.
 *
 * @param settings null is ignored
 * @param image rows of 3 * width bytes, one after the other; stays the caller's. Null (default):
 * none
 */
VEMOPREPRO_API void bi_set_image_pointer(bi_settings* settings, const void* image);

/* ---- Getters
 *
 * They store the value of a setting of the object, their first argument, at the second one. Each
 * returns
 *   0 the value is stored,
 *  -1 null object or null target; nothing is stored. */

/** @param smooth receives the smoothing, as the last do call left it */
VEMOPREPRO_API int bi_get_smooth(const bi_settings* settings, unsigned char* smooth);

/** @param thresh receives the threshold of bi_thresh_do() */
VEMOPREPRO_API int bi_get_thresh(const bi_settings* settings, unsigned char* thresh);

/** @param satur receives the value of bi_set_satur() */
VEMOPREPRO_API int bi_get_satur(const bi_settings* settings, unsigned char* satur);

/** @param delta1 receives delta1 */
VEMOPREPRO_API int bi_get_delta1(const bi_settings* settings, unsigned char* delta1);

/** @param delta2 receives delta2 */
VEMOPREPRO_API int bi_get_delta2(const bi_settings* settings, unsigned char* delta2);

/** @param black1 receives black1 */
VEMOPREPRO_API int bi_get_black1(const bi_settings* settings, unsigned char* black1);

/** @param black2 receives black2 */
VEMOPREPRO_API int bi_get_black2(const bi_settings* settings, unsigned char* black2);

/** @param sigma receives sigma, -128 .. 127 */
VEMOPREPRO_API int bi_get_sigma(const bi_settings* settings, signed char* sigma);

/* ---- Binarization */

/**
 * Binarizes a region by one threshold: grey values below it become black. The automatic threshold
 * is Otsu's (N. Otsu, A threshold selection method from gray-level histograms, 1979) over the
 * region; the level that it finds is itself white.
 *
 * @param settings smooth, undithering, thresh, dropout, threads and image pointer are used
 * @param ctx handed to the reader
 * @param type PREPRO_SOURCE_*
 * @param width pixels of a whole source row, at least 1
 * @param x0 first column of the region, at least 0
 * @param x1 the column behind its last one, x0 < x1 <= width
 * @param y0 first row of the region, at least 0
 * @param y1 the row below its last one, above y0
 * @param out receives the bitonal region. On failure untouched; the binarized region when only the
 *            dropout failed
 * @return 0 the region is binarized
 * @return -1 null object, null out, unknown type, a region that is empty or reaches beyond the row,
 * no reader or no image where one is needed, a failed allocation, a thread that cannot be started
 */
VEMOPREPRO_API int bi_thresh_do(bi_settings* settings, void* ctx, int type, int width, int x0,
                                int x1, int y0, int y1, unsigned char* out);

/**
 * bi_thresh_do() without an object, on one thread.
 *
 * @param mode 0 plain; 1 smoothed; any other value smoothed and undithered
 * @param thresh its low byte: the threshold, 0 automatic
 * @param reader delivers the source
 * @param ctx, type, width, x0, x1, y0, y1, out as there
 * @return 0 or -1 as there
 */
VEMOPREPRO_API int bi_thresh(int mode, int thresh, prepro_row_reader reader, void* ctx, int type,
                             int width, int x0, int x1, int y0, int y1, unsigned char* out);

/**
 * bi_thresh() with colour dropout.
 *
 * @param dropout, dropout_context as for bi_set_dropout()
 * @param mode, thresh, reader, ctx, type, width, x0, x1, y0, y1, out as there
 * @return 0 or -1 as there
 */
VEMOPREPRO_API int bi_thresh_dropout(int mode, int thresh, prepro_row_reader reader, void* ctx,
                                     prepro_dropout dropout, void* dropout_context, int type,
                                     int width, int x0, int x1, int y0, int y1, unsigned char* out);

/**
 * Binarizes a region by the gradient method: a threshold for every 4 x 4 block, taken from the
 * edges found there (J. Canny, A computational approach to edge detection, 1986) and carried over
 * the paper around them, so that text on shaded, stained or unevenly lit paper is kept.
 *
 * On several threads the region is cut into bands of whole rows. Each band sees 4 rows of its
 * neighbours, has a grid of blocks of its own, and is worked on without fill mean, internal
 * smoothing and normalization. So the number of threads changes pixels near the cuts, and
 * everywhere where those settings are on; the same number of threads always gives the same bytes.
 *
 * @param settings all are used but thresh, satur and sigma
 * @param ctx, type, width, x0, x1, y0, y1, out as for bi_thresh_do()
 * @return 0 or -1 as there
 */
VEMOPREPRO_API int bi_gradl_do(bi_settings* settings, void* ctx, int type, int width, int x0,
                               int x1, int y0, int y1, unsigned char* out);

/**
 * bi_gradl_do() for a source of another resolution than 300 dots per inch.
 *
 * @param resolution dots per inch: chooses the analysis window of the undithering
 * @param settings, ctx, type, width, x0, x1, y0, y1, out as there
 * @return 0 or -1 as there
 */
VEMOPREPRO_API int bi_gradl_do_with_resolution(bi_settings* settings, void* ctx, int type,
                                               int width, int resolution, int x0, int x1, int y0,
                                               int y1, unsigned char* out);

/**
 * bi_gradl_do() after bi_set_debug_folder(). No file is written.
 *
 * @param folder the folder, which stays set
 * @param settings, ctx, type, width, x0, x1, y0, y1, out as there
 * @return 0 or -1 as there
 * @return -1 also for a null folder or one that cannot be copied; then nothing is read or changed
 */
VEMOPREPRO_API int bi_gradl_do_debug(bi_settings* settings, void* ctx, int type, int width, int x0,
                                     int x1, int y0, int y1, unsigned char* out,
                                     const char* folder);

/**
 * bi_gradl_do() for a grey image, which is used as it is: nothing is read, smoothed or dropped. The
 * stored smoothing is raised as by every do call.
 *
 * @param settings as there
 * @param grey the image: height rows of width bytes, one after the other; not changed
 * @param height rows, at least 1
 * @param width pixels in a row, at least 1
 * @param out receives the bitonal image; on failure untouched
 * @return 0 the image is binarized
 * @return -1 null pointer, size out of range, a failed allocation, a thread that cannot be started
 */
VEMOPREPRO_API int bi_grey_gradl_do(bi_settings* settings, unsigned char* grey, int height,
                                    int width, unsigned char* out);

/**
 * Binarizes a region by the statistics of its Sobel edges: the threshold of a 4 x 4 block lies
 * between the means of the darkest and of the lightest greys beside the edges around it, moved by
 * their deviations. Regions of less than 13 rows or columns are binarized by Otsu's threshold. The
 * stored smoothing is used as it is, and not raised.
 *
 * @param settings as for bi_gradl_do(), but sigma is used, black1 and black2 are grey levels, and
 * fill mean, internal smoothing and normalization are not used
 * @param ctx, type, width, x0, x1, y0, y1 as for bi_thresh_do()
 * @param out receives the bitonal region. On failure untouched; white when an allocation failed
 * after the grey image was made; the binarized region when only the dropout failed
 * @return 0 or -1 as there
 */
VEMOPREPRO_API int bi_gradl_do_sobel(bi_settings* settings, void* ctx, int type, int width, int x0,
                                     int x1, int y0, int y1, unsigned char* out);

/**
 * bi_gradl_do() without an object, on one thread, with delta1 40, delta2 32, black1 128 and
 * black2 96.
 *
 * @param mode 0 plain; 1 smoothed; any other value smoothed and undithered
 * @param reader delivers the source
 * @param ctx, type, width, x0, x1, y0, y1, out as there
 * @return 0 or -1 as there
 */
VEMOPREPRO_API int bi_gradl(int mode, prepro_row_reader reader, void* ctx, int type, int width,
                            int x0, int x1, int y0, int y1, unsigned char* out);

/**
 * bi_gradl() with colour dropout.
 *
 * @param dropout, dropout_context as for bi_set_dropout()
 * @param mode, reader, ctx, type, width, x0, x1, y0, y1, out as there
 * @return 0 or -1 as there
 */
VEMOPREPRO_API int bi_gradl_dropout(int mode, prepro_row_reader reader, void* ctx,
                                    prepro_dropout dropout, void* dropout_context, int type,
                                    int width, int x0, int x1, int y0, int y1, unsigned char* out);

/**
 * Hands out the grey image that the binarizations of this header start from: luminance
 * (19595 R + 38470 G + 7471 B) >> 16, in which strongly coloured light pixels are clamped to 200,
 * then undithered and smoothed where that is asked for.
 *
 * @param smooth 0 off, 1 .. 255 from weak to strong; used as given
 * @param reader delivers the source
 * @param ctx, type, width, x0, x1, y0, y1 as for bi_thresh_do()
 * @param image_record four pointer-sized words, whose last one is the address of the source in
 * memory, as for bi_set_image_pointer(); looked at only where that would be
 * @param resolution dots per inch: chooses the analysis window of the undithering
 * @param out receives the first out_size bytes of the image, whose rows are x1 - x0 bytes; on
 * failure untouched; not memory that the reader takes its rows from
 * @param out_size 0 .. (x1 - x0) * (y1 - y0)
 * @param nb_threads how many threads may be used; less than 1 counts as 1
 * @param undithering 0 off, any other value on
 * @return 0 the bytes are copied
 * @return -1 null out where bytes are asked for, out_size out of range, and as for bi_thresh_do()
 */
VEMOPREPRO_API int bi_color2greybuf(unsigned char smooth, prepro_row_reader reader, void* ctx,
                                    const void* image_record, int type, int width, int resolution,
                                    int x0, int x1, int y0, int y1, unsigned char* out,
                                    int out_size, int nb_threads, unsigned char undithering);

#ifdef __cplusplus
}
#endif

#endif /* VEMOPREPRO_BINARIZATION_H_ */
