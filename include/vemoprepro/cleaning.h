/* Taking dirt off a page: specks, ruled lines, dark borders, and everything that is not text.
 *
 * Use: each call works on an image of the caller's and keeps nothing. Only line removal has a
 * handle: lrm_init_mem(), any setters, lrm_do_horz() and lrm_do_vert() in any order and as often as
 * wanted, lrm_exit().
 *
 * Bitonal images are rows of `stride` bytes, the leftmost pixel in the most significant bit, 1
 * black. Padding bits are no part of the image: they are neither read as ink nor changed.
 *
 * Keep true: an image is worked on by one call at a time; calls on different images may run
 * concurrently. */
#ifndef VEMOPREPRO_CLEANING_H_
#define VEMOPREPRO_CLEANING_H_

#include "vemoprepro/frame.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Specks
 *
 * A component is black ink that hangs together, corners included. The five despeckle functions take
 * height, width and stride modulo 65,536.
 *
 * Working memory of these and of pre_tva(): some 100 bytes for each column of the page, and 6 bytes
 * for each run of ink of a component's front while it is erased, which goes through the component
 * from its last row on. For a distance other than 0, and for busy regions, one or two copies of the
 * page on top. */

/**
 * Decides about a component of a bitonal page. Called on the thread of the call, once for every
 * component; must not throw and must not leave by longjmp.
 *
 * Components come in the order in which they end on the way down the page. Those that end in the
 * same row come in the order in which they began: the order of their first runs of ink, from the
 * top down and from left to right. Where a run joins several components, one goes on in the place
 * of all: the one that the leftmost of the runs above belongs to which the joining run touches.
 * Each component that is to be erased is erased before the next one is asked about.
 *
 * @param user the pointer given to the call
 * @param height rows of the component's bounding box
 * @param width pixels in a row of the box
 * @param area black pixels of the component
 * @return 1 the component is erased
 * @return any other value: it is kept
 */
typedef int (*prepro_component_rule)(void* user, int height, int width, int area);

/**
 * Erases small components.
 *
 * @param image the page: `height` rows of `stride` bytes; changed in place. When an allocation
 *              fails, specks may be gone already if max_area is above 31
 * @param height rows; an image without rows is left as it is
 * @param width pixels in a row; an image without columns is left as it is
 * @param stride at least ceil(width / 8)
 * @param max_area components of up to so many pixels are erased: none for 0 or less
 * @return 0 the page is clean
 * @return -1 null image, negative size, stride too small, failed allocation
 */
VEMOPREPRO_API int despeckl_mem(unsigned char* image, int height, int width, int stride,
                                int max_area);

/**
 * Erases small components, but not those near larger ones: dots and accents stay.
 *
 * @param image the page, as for despeckl_mem(); with a distance specks may be gone already when an
 *              allocation fails
 * @param height, width, stride, max_area as there
 * @param distance a component is kept when no more than so many rows, and no more than so many
 *                 columns, lie between it and a larger one; with 0, none is: despeckl_mem()
 * @return 0 the page is clean
 * @return -1 as there, and for a distance other than 0 on an image without rows or of stride 0
 */
VEMOPREPRO_API int despeckl_c_mem(unsigned char* image, int height, int width, int stride,
                                  int max_area, int distance);

/**
 * Erases the components that a rule of the caller's wants erased.
 *
 * @param image the page, as for despeckl_mem(); when a call fails, components may be gone already
 * @param height, width, stride as there
 * @param rule asked about every component
 * @param user handed to the rule
 * @return 0 the page is clean
 * @return -1 as there, and for a null rule on an image that has pixels
 */
VEMOPREPRO_API int despeckl_cb_mem(unsigned char* image, int height, int width, int stride,
                                   prepro_component_rule rule, void* user);

/**
 * Erases the components that a rule wants erased, but not those near ink that it keeps.
 *
 * With a distance the rule is asked about the components of the page. Then the ink that it has kept
 * is dilated by `distance` and joined by all ink of the page, and the rule is asked about the
 * components of that; what it does not want erased of the page's ink stays. The page holds these
 * states while the rule is asked.
 *
 * @param image the page, as for despeckl_mem(); when a call with a distance fails it is as it was
 * @param height, width, stride as there
 * @param rule, user as for despeckl_cb_mem()
 * @param distance how far ink that is kept protects other ink, in pixels; 0 asks about the page
 *                 only: despeckl_cb_mem()
 * @return 0 the page is clean
 * @return -1 as there, and for a distance other than 0 on an image without rows or of stride 0
 */
VEMOPREPRO_API int despeckl_ccb_mem(unsigned char* image, int height, int width, int stride,
                                    prepro_component_rule rule, void* user, int distance);

/**
 * Erases small components inside busy regions only, such as screened pictures: blocks of 8 x 8
 * pixels around which, in a window of 65 x 65 pixels, horizontally as well as vertically more than
 * 2 * density / 300 of the pixels differ from their neighbours. Ink outside of busy blocks is no
 * part of a component.
 *
 * @param image the page, as for despeckl_mem(); when an allocation fails it is as it was
 * @param height, width, stride as there
 * @param extra has no effect
 * @param max_area as there
 * @param density pixels that make a region busy, in 1/150 of those of the window
 * @return 0 the page is clean
 * @return -1 as there
 */
VEMOPREPRO_API int despeckl_selective(unsigned char* image, int height, int width, int stride,
                                      int extra, int max_area, int density);

/**
 * Erases what is not text: components that are too high, or too sparse for their longer side. Parts
 * with a single white pixel between them in a row are taken for one component.
 *
 * A size above 65,535 counts in full where such gaps are looked for, and modulo 65,536 where
 * components are.
 *
 * @param image the page: `height` rows of `stride` bytes; changed in place. When an allocation
 *              fails some components may be gone already
 * @param height rows, at least 1
 * @param width pixels in a row
 * @param stride at least 1 and at least ceil(width / 8)
 * @param max_height components of up to so many rows are kept
 * @param min_density components of at least so many pixels per pixel of their longer side are kept
 * @return 0 the page has text only
 * @return -1 null image, size or stride out of range, failed allocation
 */
VEMOPREPRO_API int pre_tva(unsigned char* image, int height, int width, int stride,
                           short max_height, short min_density);

/* ---- Ruled lines, with a handle */

typedef struct lrm_settings lrm_settings;

/**
 * Makes a handle for removing the lines of an image. The zone is all of the image.
 *
 * @param image stays the caller's, and must stay valid until lrm_exit(); the operations refuse null
 * @param height rows
 * @param width pixels in a row
 * @param stride bytes from row to row, at least ceil(width / 8)
 * @return the handle, with default settings; given back by lrm_exit()
 * @return null stride too small, failed allocation
 */
VEMOPREPRO_API lrm_settings* lrm_init_mem(unsigned char* image, unsigned short height,
                                          unsigned short width, unsigned short stride);

/**
 * Frees a handle.
 *
 * @param lrm the handle
 * @return 0 it is freed
 * @return -1 null handle
 */
VEMOPREPRO_API int lrm_exit(lrm_settings* lrm);

/**
 * Sets the zone that lines are removed in: columns x0 <= x < x1 of rows y0 <= y < y1.
 *
 * @param lrm the handle
 * @param x0 first column, below x1
 * @param x1 end of the columns, at most the width
 * @param y0 first row, below y1
 * @param y1 end of the rows, at most the height
 * @return 0 the zone is stored
 * @return -1 null handle, empty zone, zone beyond the image; the zone stays what it was
 */
VEMOPREPRO_API int lrm_set_zone(lrm_settings* lrm, unsigned short x0, unsigned short x1,
                                unsigned short y0, unsigned short y1);

/**
 * Settings for horizontal lines. Each setter stores its value as given; 0 switches its step off,
 * and a max_thickness of 0 keeps all ink.
 *
 * @param lrm the handle
 * @param pixels min_length: a line is at least this long (128);
 *               max_thickness: ink at least this high is a stroke, which stays (16);
 *               max_gap: gaps shorter than this do not end a line (2);
 *               dilate: a line may step up or down by this much (1);
 *               clean_x: ink this far from a line to the left or right goes with it (1);
 *               clean_y: ink this far above or below a line goes with it (1)
 * @return 0 the value is stored
 * @return -1 null handle
 */
VEMOPREPRO_API int lrm_set_horz_min_length(lrm_settings* lrm, unsigned short pixels);
VEMOPREPRO_API int lrm_set_horz_max_thickness(lrm_settings* lrm, unsigned short pixels);
VEMOPREPRO_API int lrm_set_horz_max_gap(lrm_settings* lrm, unsigned short pixels);
VEMOPREPRO_API int lrm_set_horz_dilate(lrm_settings* lrm, unsigned short pixels);
VEMOPREPRO_API int lrm_set_horz_clean_x(lrm_settings* lrm, unsigned short pixels);
VEMOPREPRO_API int lrm_set_horz_clean_y(lrm_settings* lrm, unsigned short pixels);

/**
 * The same settings for vertical lines, with the same defaults: max_thickness is a width, and a
 * line may step to the left or right. clean_x and clean_y keep their directions.
 *
 * @param lrm, pixels as there
 * @return 0 or -1 as there
 */
VEMOPREPRO_API int lrm_set_vert_min_length(lrm_settings* lrm, unsigned short pixels);
VEMOPREPRO_API int lrm_set_vert_max_thickness(lrm_settings* lrm, unsigned short pixels);
VEMOPREPRO_API int lrm_set_vert_max_gap(lrm_settings* lrm, unsigned short pixels);
VEMOPREPRO_API int lrm_set_vert_dilate(lrm_settings* lrm, unsigned short pixels);
VEMOPREPRO_API int lrm_set_vert_clean_x(lrm_settings* lrm, unsigned short pixels);
VEMOPREPRO_API int lrm_set_vert_clean_y(lrm_settings* lrm, unsigned short pixels);

/**
 * Remove the horizontal (lrm_do_horz) or vertical (lrm_do_vert) lines of the zone, in place.
 *
 * @param lrm the handle, whose settings stay as they are
 * @return 0 the lines are gone
 * @return -1 null handle, null image, no rows, stride 0, failed allocation; the image is as it was
 */
VEMOPREPRO_API int lrm_do_horz(lrm_settings* lrm);
VEMOPREPRO_API int lrm_do_vert(lrm_settings* lrm);

/* ---- Ruled lines, in one call */

/**
 * Removes the horizontal lines of a bitonal page with care: the strokes that a line crosses are
 * joined again. Lengths are in pixels; a step whose length is below 1 is left out.
 *
 * @param image the page: `height` rows of `stride` bytes; changed in place
 * @param height rows, at least 1
 * @param width pixels in a row; an image without columns has no lines
 * @param stride at least 1 and at least ceil(width / 8)
 * @param thickness ink at least this high is no line
 * @param min_length a line is at least this long
 * @param max_gap gaps shorter than this do not end a line
 * @param min_run thick ink, which is kept out of the search, has rows of at least this length, ...
 * @param join ... which are joined across gaps of fewer than so many rows
 * @param clean ink this far above or below a line goes with it
 * @return 0 the lines are gone
 * @return -1 null image, size or stride out of range, failed allocation; the image is as it was
 */
VEMOPREPRO_API int linerm_h(unsigned char* image, int height, int width, int stride, int thickness,
                            int min_length, int max_gap, int min_run, int join, int clean);

/**
 * linerm_h() for vertical lines: rows and columns change places in what the arguments mean.
 *
 * @param image, height, width, stride as there
 * @param thickness, min_length, max_gap, min_run, join, clean as there, turned
 * @return 0 or -1 as there
 */
VEMOPREPRO_API int linerm_v(unsigned char* image, int height, int width, int stride, int thickness,
                            int min_length, int max_gap, int min_run, int join, int clean);

/**
 * Copies the long thin lines of one direction to an image of their own and measures what they
 * cover. All bits of a row are pixels here: an image has 8 * stride columns. Working memory: a copy
 * of the page, and what erasing components takes (above).
 *
 * @param ink_value which bits are ink when lines are measured: 0 the black ones, any other value
 *                  the white ones
 * @param vertical 0 for horizontal lines, any other value for vertical ones
 * @param min_extent a line is longer than this
 * @param min_run its rows (its columns when vertical) have stretches of ink at least this long
 * @param thickness ink at least this thick across is no line: with 0 nothing is one
 * @param dilate a line may step aside by this much
 * @param source the page: `height` rows of `stride` bytes
 * @param target receives the lines, in the geometry of the source, which it does not overlap;
 *               wholly written. Refused arguments leave it alone, except that a failed allocation
 *               and a size above 65,535 leave it in an intermediate state
 * @param height rows; an image without rows has no lines and leaves the target alone. At most
 *               65,535 where there are columns to look in
 * @param stride bytes from row to row; as for height, 0 is an image without lines
 * @param x0 first column that is looked in for lines, at least 0
 * @param x1 end of these columns, at most 8 * stride and 65,535. Where it is not above x0, the
 *           target keeps all that is thin and long enough, and none of it is counted
 * @return how many columns (rows when vertical) have a line, of the first 100,000 lines
 * @return -1 null source or target, size out of range, columns beyond the image, failed allocation
 */
VEMOPREPRO_API int extract_underline(int ink_value, int vertical, int min_extent, int min_run,
                                     int thickness, int dilate, const unsigned char* source,
                                     unsigned char* target, int height, int stride, int x0, int x1);

/* ---- Borders
 *
 * A null image or a stride that does not hold the width is refused where the image has pixels. */

/**
 * Copies a bitonal page without the black ink that can be reached from its edges, by going down the
 * page and then up.
 *
 * @param ink_value 0; with any other value the target becomes a copy of the source
 * @param source the page: `height` rows of `stride` bytes
 * @param height rows; with less than 1 nothing is written
 * @param width pixels in a row; with less than 1 the rows are copied
 * @param stride at least ceil(width / 8)
 * @param target receives `height` rows of `stride` bytes, padding bits as in the source; does not
 *               overlap the source
 * @return 0 the target is written
 * @return -1 null source or target, stride too small, failed allocation; nothing is written
 */
VEMOPREPRO_API int cropbmp(int ink_value, const unsigned char* source, int height, int width,
                           int stride, unsigned char* target);

/* Image types of cropimg(): the bytes of a pixel, in their order. */
enum {
    PREPRO_CROP_GREY = 1, /* grey */
    PREPRO_CROP_BGR = 2,  /* blue, green, red */
    PREPRO_CROP_RGB = 3,  /* red, green, blue */
    PREPRO_CROP_XRGB = 4  /* one that is left alone, red, green, blue */
};

/**
 * Finds the dark border of a grey or colour page, paints it white and gives the rectangle of the
 * content.
 *
 * The border grows from the edges of the page into it, and is then dilated by 8 pixels. A frame
 * about as wide always counts as border.
 *
 * @param image the page: `height` rows of `stride` bytes; changed in place
 * @param type PREPRO_CROP_*
 * @param height rows
 * @param width pixels in a row
 * @param stride bytes from row to row, at least `width` pixels
 * @param dark pixels darker than this on the page's edge begin the border
 * @param light pixels darker than this continue it ...
 * @param step ... if they differ by less than this from their neighbours
 * @param x0 receives the first column of the content
 * @param x1 receives its last column
 * @param y0 receives its first row
 * @param y1 receives its last row
 * @return 0 the border is white. A page that is all border has its content in the centre: from
 *         (width / 2, height / 2) to one column and one row further
 * @return 0 also for a page of fewer than 24 rows or columns, which is left as it is: the rectangle
 *         is 0, width, 0, height
 * @return -1 unknown type, null pointer, stride too small, failed allocation; nothing is written
 */
VEMOPREPRO_API int cropimg(unsigned char* image, int type, int height, int width, int stride,
                           int dark, int light, int step, int* x0, int* x1, int* y0, int* y1);

/**
 * The colour of a page just inside a border that is white: the mean of the first pixels other than
 * white (255) on the way in from both ends of every row and every column.
 *
 * Rows count from the second to the last but one; the way in from the left leaves out their first
 * and their last column.
 *
 * @param value receives the grey value; 255 for a page without pixels other than white
 * @param grey the page: `height` rows of `stride` bytes
 * @param height rows
 * @param width pixels in a row
 * @param stride at least the width
 * @return 0 the value is stored
 * @return -1 null pointer, stride too small; nothing is written
 */
VEMOPREPRO_API int cropgrey_get(unsigned char* value, const unsigned char* grey, int height,
                                int width, int stride);

/**
 * cropgrey_get() for a colour page, over all rows and columns. A pixel is white when its three
 * bytes are.
 *
 * @param value receives three bytes; 0, 0, 0 for a page without pixels other than white
 * @param colour the page: `height` rows of `row_pixels` pixels of 3 bytes
 * @param height rows
 * @param width pixels in a row
 * @param row_pixels pixels from row to row, at least the width
 * @return 0 the value is stored
 * @return -1 null pointer, row_pixels too small; nothing is written
 */
VEMOPREPRO_API int cropcolor_get(unsigned char* value, const unsigned char* colour, int height,
                                 int width, int row_pixels);

/**
 * Repaints the pixels of one grey value with another.
 *
 * @param from the grey value to be replaced; its low byte counts
 * @param to what takes its place; its low byte counts
 * @param grey the page: `height` rows of `stride` bytes; changed in place
 * @param height rows
 * @param width pixels in a row
 * @param stride at least the width
 * @return 0 the page is repainted; one without pixels stays as it is
 * @return -1 null image, stride too small; nothing is written
 */
VEMOPREPRO_API int cropgrey_replace(int from, int to, unsigned char* grey, int height, int width,
                                    int stride);

/**
 * Repaints colours column by column: a pixel of column x that equals triple x of `from` becomes
 * triple x of `to`.
 *
 * @param from `width` triples; one colour, repeated, is replaced in all columns
 * @param to `width` triples
 * @param colour the page: `height` rows of `row_pixels` pixels of 3 bytes; changed in place
 * @param height rows
 * @param width pixels in a row
 * @param row_pixels pixels from row to row, at least the width
 * @return 0 the page is repainted; one without pixels stays as it is
 * @return -1 null pointer, row_pixels too small; nothing is written
 */
VEMOPREPRO_API int cropcolor_replace(const unsigned char* from, const unsigned char* to,
                                     unsigned char* colour, int height, int width, int row_pixels);

#ifdef __cplusplus
}
#endif

#endif /* VEMOPREPRO_CLEANING_H_ */
