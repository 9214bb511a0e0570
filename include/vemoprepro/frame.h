/* Version queries and memory hooks: what every other part of the library stands on.
 *
 * Use: install the hooks once, at start-up and before any other call; everything that the library
 * allocates afterwards comes from the malloc hook and goes back through the free hook.
 *
 * Keep true: hooks are stored in plain process-wide pointers without a lock. Do not install one
 * while another thread is inside the library or while the library holds blocks (open handles,
 * images not yet released).
 *
 * Conventions of all headers of this library:
 *   - bitonal image: 1 bit per pixel, 8 pixels per byte, the leftmost pixel in the most significant
 *     bit, 1 = black (ink); bits beyond the width at the end of a row are padding;
 *   - grey image: 1 byte per pixel, 0 = black, 255 = white;
 *   - colour image: 3 bytes per pixel: red, green, blue, unless a function says otherwise;
 *   - rows go from top to bottom, `bytes_per_line` (or `stride`) bytes apart;
 *   - every buffer stays the caller's; the library never frees one and keeps no pointer to one
 *     beyond the call unless a handle is created over it;
 *   - functions that return `int` return 0 for success and -1 for failure (an argument that cannot
 *     be worked on, an allocation that failed, any internal error) unless they say otherwise;
 *   - callbacks and hooks must not throw and must not leave by longjmp. They run on the thread of
 *     the call, hooks also on the worker threads of a call that asked for them.
 */
#ifndef VEMOPREPRO_FRAME_H_
#define VEMOPREPRO_FRAME_H_

#include <stddef.h>
#include <stdint.h>

/* The version of these headers. prepro_get_version_number() tells that of the library in use. */
#define VEMOPREPRO_VERSION_MAJOR 16
#define VEMOPREPRO_VERSION_MINOR 5
#define VEMOPREPRO_VERSION_PATCH 1
#define VEMOPREPRO_VERSION_TWEAK 12

#if defined(__GNUC__)
#define VEMOPREPRO_API __attribute__((visibility("default")))
#else
#define VEMOPREPRO_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/**
 * The version of the library.
 *
 * @return "version of library: " and four numbers with dots between them; constant, not to be freed
 */
VEMOPREPRO_API const char* prepro_get_version_number(void);

/**
 * The branch that the library was built from.
 *
 * @return "git branch: " and the name of the branch; constant, not to be freed
 */
VEMOPREPRO_API const char* prepro_get_branch_name(void);

/**
 * The source revision that the library was built from.
 *
 * @return "git sha: " and 40 lowercase hexadecimal digits, all zero for a build outside of a git
 *         checkout; constant, not to be freed
 */
VEMOPREPRO_API const char* prepro_get_sha(void);

/* Hooks. Each receives the C library function that it stands in for as its last argument and may
 * ignore it; the default of each slot calls that function with the other arguments. A hook must be
 * safe to call from several threads at once. */

/**
 * Allocates a block for the library.
 *
 * @param size bytes, at least 1
 * @param c_malloc the C library's malloc
 * @return a block aligned as malloc aligns
 * @return null when there is none: the call of the library that needs it then fails
 */
typedef void* (*prepro_malloc_hook)(uint64_t size, void* (*c_malloc)(size_t size));

/**
 * Takes a block back.
 *
 * @param block what the malloc hook returned, never null
 * @param c_free the C library's free
 */
typedef void (*prepro_free_hook)(void* block, void (*c_free)(void* block));

/* Kept for hosts that install a full set: no operation of this library calls the hooks below. Sizes
 * and alignments are in bytes. */
typedef void* (*prepro_realloc_hook)(void* block, uint64_t size,
                                     void* (*c_realloc)(void* block, size_t size));
typedef void* (*prepro_aligned_malloc_hook)(uint64_t size, uint64_t alignment,
                                            void* (*c_aligned_malloc)(size_t size,
                                                                      size_t alignment));
typedef void (*prepro_aligned_free_hook)(void* block, void (*c_aligned_free)(void* block));
typedef void* (*prepro_gpu_malloc_hook)(uint64_t size, void* (*gpu_malloc)(size_t size));
typedef void (*prepro_gpu_free_hook)(void* block, void (*gpu_free)(void* block));

/**
 * Each of these stores a hook for the whole process. They cannot fail.
 *
 * @param hook the function to call from now on; null restores the default
 */
VEMOPREPRO_API void prepro_redefine_malloc(prepro_malloc_hook hook);
VEMOPREPRO_API void prepro_redefine_realloc(prepro_realloc_hook hook);
VEMOPREPRO_API void prepro_redefine_free(prepro_free_hook hook);
VEMOPREPRO_API void prepro_redefine_aligned_malloc(prepro_aligned_malloc_hook hook);
VEMOPREPRO_API void prepro_redefine_aligned_free(prepro_aligned_free_hook hook);
VEMOPREPRO_API void prepro_redefine_gpu_malloc(prepro_gpu_malloc_hook hook);
VEMOPREPRO_API void prepro_redefine_gpu_free(prepro_gpu_free_hook hook);

#ifdef __cplusplus
}
#endif

#endif /* VEMOPREPRO_FRAME_H_ */
