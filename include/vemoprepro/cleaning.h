/* Taking dirt off a page: specks, ruled lines, dark borders, and everything that is not text.
 *
 * Use: each call works on a caller's image; nothing is kept afterwards. Only line removal has a
 * handle: lrm_init_mem(), any setters, lrm_do_horz() and lrm_do_vert() in any order, lrm_exit().
 *
 * Bitonal images are rows of `stride` bytes, the leftmost pixel in the most significant bit, 1
 * black; the stride holds the width. Padding bits are no part of the image.
 *
 * Keep true: an image is worked on by one call at a time; calls on different images may run
 * concurrently. Unless said otherwise a call returns 0, or -1 for arguments that cannot be worked
 * on or for a failed allocation. */
#ifndef VEMOPREPRO_CLEANING_H_
#define VEMOPREPRO_CLEANING_H_

#include "vemoprepro/frame.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Despeckle: removes small 8-connected components of black pixels, in place. On a failure the image
 * may be partly despeckled.
 *
 * Height, width and stride count modulo 65,536. (pre_tva() takes them otherwise.) */

/* Decides about a finished component: 1 erases it, anything else keeps it. height and width are
 * those of its bounding box, area its number of pixels. Called on the caller's thread, in the order
 * in which components end on the way down the page. Those that end in the same row come in the
 * order of a list that a component joins at its end with its first run; where a run of a row
 * touches several, they become one, in the place of the one that its leftmost touching run of the
 * row above belongs to. */
typedef int (*prepro_component_rule)(void* user, int height, int width, int area);

/* Erases the components of at most max_area pixels. */
VEMOPREPRO_API int despeckl_mem(unsigned char* image, int height, int width, int stride,
                                int max_area);

/* The same, but keeps specks within `distance` pixels of larger ink, such as dots and accents;
 * distance 0 keeps none of them. With a distance an image of no bytes is refused. */
VEMOPREPRO_API int despeckl_c_mem(unsigned char* image, int height, int width, int stride,
                                  int max_area, int distance);

/* Erases the components that the rule wants erased. */
VEMOPREPRO_API int despeckl_cb_mem(unsigned char* image, int height, int width, int stride,
                                   prepro_component_rule rule, void* user);

/* The same, but keeps what lies within `distance` pixels of ink that the rule keeps. The rule is
 * asked twice: about the page, and about the page with the kept ink widened. */
VEMOPREPRO_API int despeckl_ccb_mem(unsigned char* image, int height, int width, int stride,
                                    prepro_component_rule rule, void* user, int distance);

/* Erases the components of at most max_area pixels inside busy regions only, such as screened
 * pictures: blocks of 8 x 8 pixels around which, in a window of 65 x 65 pixels, horizontally as
 * well as vertically more than 2 * density / 300 of the pixels differ from their neighbours.
 * `extra` has no effect. */
VEMOPREPRO_API int despeckl_selective(unsigned char* image, int height, int width, int stride,
                                      int extra, int max_area, int density);

/* Erases, in place, what is not text: components higher than max_height or with fewer than
 * min_density pixels per pixel of their longer side. Parts of a character with one white pixel
 * between them are judged together. The gaps are looked for in the size as it is given, components
 * in the size modulo 65,536. An image of no bytes is refused. */
VEMOPREPRO_API int pre_tva(unsigned char* image, int height, int width, int stride,
                           short max_height, short min_density);

/* Line removal with settings. */
typedef struct lrm_settings lrm_settings;

/* A handle for an image, which stays the caller's and valid until lrm_exit(). The zone is the whole
 * image. Null when the stride does not hold the width, or without memory. The operations refuse a
 * null image. */
VEMOPREPRO_API lrm_settings* lrm_init_mem(unsigned char* image, unsigned short height,
                                          unsigned short width, unsigned short stride);
/* Frees the handle. -1 for null. */
VEMOPREPRO_API int lrm_exit(lrm_settings* lrm);

/* Columns x0 <= x < x1 and rows y0 <= y < y1 only. -1, keeping the zone, for a zone that is empty
 * or leaves the image. */
VEMOPREPRO_API int lrm_set_zone(lrm_settings* lrm, unsigned short x0, unsigned short x1,
                                unsigned short y0, unsigned short y1);

/* Setters, in pixels: 0, or -1 for a null handle. 0 switches the step off. The first six are about
 * horizontal lines, the others about vertical ones. */

/* A line is at least this long (128). */
VEMOPREPRO_API int lrm_set_horz_min_length(lrm_settings* lrm, unsigned short pixels);
/* What is at least this high is a stroke, not a line, and stays (16). */
VEMOPREPRO_API int lrm_set_horz_max_thickness(lrm_settings* lrm, unsigned short pixels);
/* Gaps shorter than this do not end a line (2). */
VEMOPREPRO_API int lrm_set_horz_max_gap(lrm_settings* lrm, unsigned short pixels);
/* A line may step up or down by this much (1). */
VEMOPREPRO_API int lrm_set_horz_dilate(lrm_settings* lrm, unsigned short pixels);
/* Ink this far from a line along the row goes with it (1). */
VEMOPREPRO_API int lrm_set_horz_clean_x(lrm_settings* lrm, unsigned short pixels);
/* Ink this far from a line along the column goes with it (1). */
VEMOPREPRO_API int lrm_set_horz_clean_y(lrm_settings* lrm, unsigned short pixels);
VEMOPREPRO_API int lrm_set_vert_min_length(lrm_settings* lrm, unsigned short pixels);
VEMOPREPRO_API int lrm_set_vert_max_thickness(lrm_settings* lrm, unsigned short pixels);
VEMOPREPRO_API int lrm_set_vert_max_gap(lrm_settings* lrm, unsigned short pixels);
VEMOPREPRO_API int lrm_set_vert_dilate(lrm_settings* lrm, unsigned short pixels);
VEMOPREPRO_API int lrm_set_vert_clean_x(lrm_settings* lrm, unsigned short pixels);
VEMOPREPRO_API int lrm_set_vert_clean_y(lrm_settings* lrm, unsigned short pixels);

/* Removes the horizontal, or vertical, lines of the zone in place. -1 for a null handle, an image
 * of no bytes or without memory; the image is then as it was. */
VEMOPREPRO_API int lrm_do_horz(lrm_settings* lrm);
VEMOPREPRO_API int lrm_do_vert(lrm_settings* lrm);

/* Careful removal of horizontal lines of the whole image, in place: strokes that a line crosses are
 * mended. In pixels:
 * thickness: ink this high is no line; min_length: of a line; max_gap: gaps shorter than this do
 * not end a line; min_run and join: rows of at least min_run, joined across gaps of fewer than
 * `join` rows, make the thick ink that is kept out of the search; clean: ink this far above or
 * below a line goes with it. A length below 1 skips its step. An image of no bytes is refused;
 * after a failure the image is as it was. */
VEMOPREPRO_API int linerm_h(unsigned char* image, int height, int width, int stride, int thickness,
                            int min_length, int max_gap, int min_run, int join, int clean);
/* The same for vertical lines. */
VEMOPREPRO_API int linerm_v(unsigned char* image, int height, int width, int stride, int thickness,
                            int min_length, int max_gap, int min_run, int join, int clean);

/* Writes the long thin lines of one direction, horizontal (vertical = 0) or vertical, of the source
 * into `target`. Both have `height` rows of `stride` bytes, all bits of which are pixels, and do
 * not overlap. ink_value: 0 as everywhere. min_extent: a line is longer than this. min_run: so are
 * its parts at least. thickness: what is at least this thick across is no line. dilate: a line may
 * step aside by this much. x0, x1: lines are looked for in the columns x0 <= x < x1, which lie in
 * the image; where there are none, all candidates stay and none is counted. An image of no bytes
 * has no lines. Returns how many columns (rows when vertical) have a line, or -1; target may then
 * hold an intermediate state. At most 100,000 lines are counted. A height or an x1 beyond 65,535 is
 * refused. */
VEMOPREPRO_API int extract_underline(int ink_value, int vertical, int min_extent, int min_run,
                                     int thickness, int dilate, const unsigned char* source,
                                     unsigned char* target, int height, int stride, int x0, int x1);

/* Border cropping. Where there are pixels, a null pointer or a stride that does not hold the width
 * is refused with -1, and nothing is written. */

/* Copies a bitonal page without the black ink that is reachable from its edges, going down and then
 * up. Target has the geometry of the source and does not overlap it. With an ink_value other than 0
 * it becomes the source. -1 without memory, with the target unchanged. */
VEMOPREPRO_API int cropbmp(int ink_value, const unsigned char* source, int height, int width,
                           int stride, unsigned char* target);

/* Image types of cropimg(). */
enum {
    PREPRO_CROP_GREY = 1, /* 1 byte a pixel */
    PREPRO_CROP_BGR = 2,  /* 3 bytes: blue, green, red */
    PREPRO_CROP_RGB = 3,  /* 3 bytes: red, green, blue */
    PREPRO_CROP_XRGB = 4  /* 4 bytes: one that stays, red, green, blue */
};

/* Finds the dark border of a grey or colour page, paints it white and gives the rectangle of the
 * content: its first and last column *x0, *x1 and its first and last row *y0, *y1, all inclusive.
 * The border grows from the page's edges: from pixels darker than `dark`, on through pixels darker
 * than `light` that differ by less than `step` from their neighbours; it is then widened by 8
 * pixels. A page of fewer than 24 rows or columns is left as it is and gets 0, width, 0, height. A
 * page that is all border gets one pixel in its centre (x1 = x0 + 1, y1 = y0 + 1). Stride in bytes.
 * -1 also for an unknown type or without memory, with nothing changed. */
VEMOPREPRO_API int cropimg(unsigned char* image, int type, int height, int width, int stride,
                           int dark, int light, int step, int* x0, int* x1, int* y0, int* y1);

/* The mean of the pixels that are met first on the way in from the edges past white (255): the
 * colour of the page just inside a border that cropimg() painted white. 255, or black for
 * cropcolor_get(), where there is none. row_pixels: pixels from one row to the next. */
VEMOPREPRO_API int cropgrey_get(unsigned char* value, const unsigned char* grey, int height,
                                int width, int stride);
VEMOPREPRO_API int cropcolor_get(unsigned char* value, const unsigned char* colour, int height,
                                 int width, int row_pixels);

/* Repaints the pixels that equal the low byte of `from`. */
VEMOPREPRO_API int cropgrey_replace(int from, int to, unsigned char* grey, int height, int width,
                                    int stride);
/* Repaints in every column the pixels that equal that column's triple of `from` with its triple of
 * `to`: both have `width` triples. */
VEMOPREPRO_API int cropcolor_replace(const unsigned char* from, const unsigned char* to,
                                     unsigned char* colour, int height, int width, int row_pixels);

#ifdef __cplusplus
}
#endif

#endif /* VEMOPREPRO_CLEANING_H_ */
