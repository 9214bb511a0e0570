#include "page/resolution.h"

namespace tool {
namespace {

bool is_plausible(int dpi) {
    return dpi >= 10 && dpi <= 10000;
}

}  // namespace

Resolution plausible(Resolution stated) {
    if (!is_plausible(stated.x)) stated.x = is_plausible(stated.y) ? stated.y : 0;
    if (!is_plausible(stated.y)) stated.y = stated.x;
    return stated;
}

}  // namespace tool
