/* The whole library in one include. */
#ifndef VEMOPREPRO_PREPRO_H_
#define VEMOPREPRO_PREPRO_H_

#include "vemoprepro/binarization.h"
#include "vemoprepro/cleaning.h"
#include "vemoprepro/deskew.h"
#include "vemoprepro/frame.h"
#include "vemoprepro/geometry.h"
#include "vemoprepro/scaling.h"
#include "vemoprepro/source.h"

#endif /* VEMOPREPRO_PREPRO_H_ */
