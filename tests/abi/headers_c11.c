/* The public headers compile as C11, each by itself and all together. */
#include "vemoprepro/binarization.h"
#include "vemoprepro/cleaning.h"
#include "vemoprepro/deskew.h"
#include "vemoprepro/frame.h"
#include "vemoprepro/geometry.h"
#include "vemoprepro/prepro.h"
#include "vemoprepro/scaling.h"
#include "vemoprepro/source.h"

const char* version_through_c(void) {
    return prepro_get_version_number();
}
