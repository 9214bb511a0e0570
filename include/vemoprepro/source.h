/* Pages that are read row by row through a reader of the caller's, so that no call needs the whole
 * page in memory. */
#ifndef VEMOPREPRO_SOURCE_H_
#define VEMOPREPRO_SOURCE_H_

#ifdef __cplusplus
extern "C" {
#endif

/* Source types: what one pixel of a source row is. */
enum {
    PREPRO_SOURCE_GREY = 1, /* 1 byte */
    PREPRO_SOURCE_BGR = 2,  /* 3 bytes: blue, green, red */
    PREPRO_SOURCE_RGB = 3   /* 3 bytes: red, green, blue */
};

/**
 * Delivers the source, one whole row a call. Called on the thread of the call; must not throw and
 * must not leave by longjmp. It can be rewound at any row, and cannot fail.
 *
 * @param ctx the pointer that the caller passed along with the reader
 * @param mode 0: the top row of the source; 1: the row below the one delivered last
 * @param row receives the row: width bytes of a grey source, 3 * width of a colour source
 * @return not looked at
 */
typedef int (*prepro_row_reader)(void* ctx, int mode, unsigned char* row);

#ifdef __cplusplus
}
#endif

#endif /* VEMOPREPRO_SOURCE_H_ */
