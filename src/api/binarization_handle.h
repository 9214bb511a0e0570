// What the opaque handle of the binarization family points to.
#pragma once

#include "api/callbacks.h"
#include "binarization/settings.h"

struct bi_settings {
    binarization::Settings values;
};
