/* The info command: what files hold. */
#ifndef VEMOPREPRO_TOOL_INFO_H_
#define VEMOPREPRO_TOOL_INFO_H_

#include "run/options.h"

namespace tool {

/* Returns the exit status. */
int print_info(const Options& options);

}  // namespace tool

#endif  // VEMOPREPRO_TOOL_INFO_H_
