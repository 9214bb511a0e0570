/* Turning grey and colour pages bitonal.
 *
 * Use: bi_setup(reader), any setters, any number of bi_gradl_do() or bi_thresh_do() calls,
 * bi_upset(). The one-shot functions do all of that in one call.
 *
 * The source is pulled row by row through a reader of the caller; a region x0 <= x < x1, y0 <= y <
 * y1 of it is binarized. The result has y1 - y0 rows of 4 * ceil((x1 - x0) / 32) bytes.
 *
 * Keep true: a handle is used by one thread at a time; different handles may run concurrently. A
 * reader can be rewound as often as the library likes, and cannot fail: its return value is not
 * looked at. */
#ifndef VEMOPREPRO_BINARIZATION_H_
#define VEMOPREPRO_BINARIZATION_H_

#include "vemoprepro/frame.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Source types: what one pixel of a source row is. */
enum {
    PREPRO_SOURCE_GREY = 1, /* 1 byte */
    PREPRO_SOURCE_BGR = 2,  /* 3 bytes: blue, green, red */
    PREPRO_SOURCE_RGB = 3   /* 3 bytes: red, green, blue */
};

/* Copies a source row into `row` (width bytes for grey, 3 * width for colour): the top row for mode
 * 0, the row below the one delivered last for mode 1. ctx is the pointer that the caller gave to
 * the do call. Called on the calling thread only. */
typedef int (*prepro_row_reader)(void* ctx, int mode, unsigned char* row);

/* Returns 1 when ink of this colour is to be dropped. `colour` is the pixel's three bytes as the
 * source stores them. */
typedef int (*prepro_dropout)(void* context, const unsigned char* colour);

/* The settings object; created by bi_setup(), freed by bi_upset(). */
typedef struct bi_settings bi_settings;

/* A settings object with defaults, or null when it cannot be allocated. The caller owns it. */
VEMOPREPRO_API bi_settings* bi_setup(prepro_row_reader reader);
/* Frees the object; null is ignored. Returns 0. */
VEMOPREPRO_API int bi_upset(bi_settings* settings);

/* Setters: 0, or -1 for a null handle. Values are stored as given. */

/* 3 x 3 smoothing of the grey image: 0 off (default), 1 .. 255 from weak to strong. A do call
 * raises a value that is not 0 by 2 (at most to 255) and keeps it raised: set it again before each
 * call for the same smoothing. */
VEMOPREPRO_API int bi_set_smooth(bi_settings* settings, unsigned char smooth);
/* Not 0: find and undo halftone screens before smoothing (default off). Needs smoothing on. */
VEMOPREPRO_API int bi_set_undithering(bi_settings* settings, unsigned char undithering);
/* Grey values below this become black (default 128); 0 chooses it by Otsu's method. */
VEMOPREPRO_API int bi_set_thresh(bi_settings* settings, unsigned char thresh);
/* Not 0: areas without edges take the mean of the thresholds around, else the lowest of those that
 * touch them (default off). */
VEMOPREPRO_API int bi_set_fill_mean(bi_settings* settings, unsigned char fill_mean);
/* Kept for bi_get_satur(); no binarization reads it (default 0). */
VEMOPREPRO_API int bi_set_satur(bi_settings* settings, unsigned char satur);
/* Sets delta1 and delta2 together: c = 0 gives 1 and 1; 1 .. 15 gives c and (c + 1) / 2; from 16 on
 * c and c - 8. */
VEMOPREPRO_API int bi_set_contrast(bi_settings* settings, unsigned char contrast);
/* Gradient that starts an edge, less 8, and gradient above which an edge is followed (defaults 40
 * and 32). From 247 on delta1 finds no edges. */
VEMOPREPRO_API int bi_set_delta1(bi_settings* settings, unsigned char delta1);
VEMOPREPRO_API int bi_set_delta2(bi_settings* settings, unsigned char delta2);
/* Sets black1 to b and black2 to 3 * b / 4. */
VEMOPREPRO_API int bi_set_brightness(bi_settings* settings, unsigned char brightness);
/* Level below which dark areas are filled, and lowest threshold (defaults 0; black1 = 0 switches
 * both off). In the gradient method 128 stands for the white level of the page. */
VEMOPREPRO_API int bi_set_black1(bi_settings* settings, unsigned char black1);
VEMOPREPRO_API int bi_set_black2(bi_settings* settings, unsigned char black2);
/* Weight of the deviation in the Sobel-statistics variant, -128 .. 127 (default 0). */
VEMOPREPRO_API int bi_set_sigma(bi_settings* settings, signed char sigma);
/* Colour dropout: black pixels whose source colour the function wants dropped become white. A null
 * function or a null context switches it off (default). The context stays the caller's. */
VEMOPREPRO_API int bi_set_dropout(bi_settings* settings, prepro_dropout dropout, void* context);
/* Gradient method, for pages of little contrast: 1 enlarges all gradients, at most fourfold, so
 * that the largest reaches the end of the range; 2 reduces delta1 and delta2 by the same factor
 * instead; any other value is off (default 0). */
VEMOPREPRO_API int bi_set_normalize_magnitude(bi_settings* settings, unsigned char normalize);
/* Gradient method: not 0 smooths with a 3 x 3 Gaussian kernel before the gradient is taken, and for
 * that only (default 0, off). */
VEMOPREPRO_API int bi_set_internal_gaussian_smoothing(bi_settings* settings,
                                                      unsigned char smoothing);
/* Folder for debug output; the path is copied. -1 also for a null path. */
VEMOPREPRO_API int bi_set_debug_folder(bi_settings* settings, const char* path);
/* Threads that a do call may use, at least 1 (default). -1 for fewer, which changes nothing. Each
 * thread gets at least 50 rows. */
VEMOPREPRO_API int bi_set_nb_threads(bi_settings* settings, int nb_threads);
/* The whole source image, `width * 3` bytes a row, which a do call on several threads reads instead
 * of calling the reader when the source is PREPRO_SOURCE_RGB. Stays the caller's. A null handle is
 * ignored. */
VEMOPREPRO_API void bi_set_image_pointer(bi_settings* settings, const void* image);

/* Getters: 0, or -1 for a null handle or a null target. */
VEMOPREPRO_API int bi_get_smooth(bi_settings* settings, unsigned char* smooth);
VEMOPREPRO_API int bi_get_thresh(bi_settings* settings, unsigned char* thresh);
VEMOPREPRO_API int bi_get_satur(bi_settings* settings, unsigned char* satur);
VEMOPREPRO_API int bi_get_delta1(bi_settings* settings, unsigned char* delta1);
VEMOPREPRO_API int bi_get_delta2(bi_settings* settings, unsigned char* delta2);
VEMOPREPRO_API int bi_get_black1(bi_settings* settings, unsigned char* black1);
VEMOPREPRO_API int bi_get_black2(bi_settings* settings, unsigned char* black2);
VEMOPREPRO_API int bi_get_sigma(bi_settings* settings, signed char* sigma);

/* Binarizes a region by one threshold: a grey value below it becomes black.
 * ctx: handed to the reader. type: PREPRO_SOURCE_*. width: pixels of a full source row (>= 1).
 * x0, x1, y0, y1: the region, 0 <= x0 < x1 <= width, 0 <= y0 < y1, ends exclusive.
 * out: (y1 - y0) rows of 4 * ceil((x1 - x0) / 32) bytes; padding bits become 0.
 * The automatic threshold is Otsu's (N. Otsu, A threshold selection method from gray-level
 * histograms, 1979) over the region; the level found is itself white. Returns 0; -1 for arguments
 * that cannot be worked on or a failed allocation (out untouched), or when the dropout pass failed
 * (out holds the binarized region). */
VEMOPREPRO_API int bi_thresh_do(bi_settings* settings, void* ctx, int type, int width, int x0,
                                int x1, int y0, int y1, unsigned char* out);

/* The same in one call. mode: 0 plain, 1 smoothed, any other value smoothed and undithered. Of
 * `thresh` only the low byte counts. */
VEMOPREPRO_API int bi_thresh(int mode, int thresh, prepro_row_reader reader, void* ctx, int type,
                             int width, int x0, int x1, int y0, int y1, unsigned char* out);

/* The same with colour dropout. */
VEMOPREPRO_API int bi_thresh_dropout(int mode, int thresh, prepro_row_reader reader, void* ctx,
                                     prepro_dropout dropout, void* dropout_context, int type,
                                     int width, int x0, int x1, int y0, int y1, unsigned char* out);

/* Gradient binarization: a threshold for every 4 x 4 block of the page, taken from the edges found
 * there (J. Canny, A computational approach to edge detection, 1986) and spread over the paper
 * around them, so that text on shaded, stained or unevenly lit paper is kept. Arguments, result and
 * `out` as bi_thresh_do(); black1 and black2 are relative to the white level of the region.
 *
 * On several threads (bi_set_nb_threads()) regions of at least 100 rows are cut into bands of whole
 * rows, at least 50 a band. Each band sees 4 rows of its neighbours, has a grid of blocks of its
 * own, and is worked on without fill mean, internal smoothing and normalization. So the number of
 * threads changes pixels near the cuts, and everywhere where those settings are on; the same number
 * of threads always gives the same bytes. */
VEMOPREPRO_API int bi_gradl_do(bi_settings* settings, void* ctx, int type, int width, int x0,
                               int x1, int y0, int y1, unsigned char* out);

/* The same for a source of `resolution` dots per inch, which chooses the analysis window of the
 * undithering; bi_gradl_do() takes 300. */
VEMOPREPRO_API int bi_gradl_do_with_resolution(bi_settings* settings, void* ctx, int type,
                                               int width, int resolution, int x0, int x1, int y0,
                                               int y1, unsigned char* out);

/* The same after bi_set_debug_folder(settings, folder); -1 for a null folder. No file is written.
 */
VEMOPREPRO_API int bi_gradl_do_debug(bi_settings* settings, void* ctx, int type, int width, int x0,
                                     int x1, int y0, int y1, unsigned char* out,
                                     const char* folder);

/* The same for a grey image of height x width packed bytes that is used as it is: nothing is read,
 * smoothed or dropped. The stored smoothing is raised as by every do call. */
VEMOPREPRO_API int bi_grey_gradl_do(bi_settings* settings, unsigned char* grey, int height,
                                    int width, unsigned char* out);

/* Binarization by the statistics of the Sobel edges around every 4 x 4 block: thresholds from means
 * and deviations (bi_set_sigma()) of the darkest and lightest greys beside edges. black1 and black2
 * are grey levels here; the stored smoothing is used as it is. Regions of less than 13 rows or
 * columns are binarized by Otsu's method. Arguments and result as bi_thresh_do(), but `out` is
 * cleared once the grey image is made: an allocation that fails after that leaves it white. */
VEMOPREPRO_API int bi_gradl_do_sobel(bi_settings* settings, void* ctx, int type, int width, int x0,
                                     int x1, int y0, int y1, unsigned char* out);

/* Gradient binarization in one call, with delta1 40, delta2 32, black1 128, black2 96. mode: 0
 * plain, 1 smoothed, any other value smoothed and undithered. */
VEMOPREPRO_API int bi_gradl(int mode, prepro_row_reader reader, void* ctx, int type, int width,
                            int x0, int x1, int y0, int y1, unsigned char* out);

/* The same with colour dropout. */
VEMOPREPRO_API int bi_gradl_dropout(int mode, prepro_row_reader reader, void* ctx,
                                    prepro_dropout dropout, void* dropout_context, int type,
                                    int width, int x0, int x1, int y0, int y1, unsigned char* out);

/* The grey image that the binarizations of this header start from: luminance
 * (19595 R + 38470 G + 7471 B) >> 16, strongly coloured light pixels held at 200, then undithering
 * and smoothing where asked for and where neighbouring pixels differ by more than 112 somewhere.
 * smooth: used as given. image_record: for several threads on PREPRO_SOURCE_RGB, four pointer-sized
 * words whose last is the address of the whole source image (rows of width * 3 bytes); else not
 * looked at. resolution: dots per inch, chooses the analysis window of the undithering. out:
 * receives the first out_size bytes of the grey image; the caller makes out_size (x1 - x0) * (y1 -
 * y0), fewer bytes are fine, more or a negative number are refused. out is no part of the source.
 * Returns 0, or -1 with nothing copied. */
VEMOPREPRO_API int bi_color2greybuf(unsigned char smooth, prepro_row_reader reader, void* ctx,
                                    const void* image_record, int type, int width, int resolution,
                                    int x0, int x1, int y0, int y1, unsigned char* out,
                                    int out_size, int nb_threads, unsigned char undithering);

#ifdef __cplusplus
}
#endif

#endif /* VEMOPREPRO_BINARIZATION_H_ */
