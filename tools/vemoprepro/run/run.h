/* Runs a command that makes pages from pages. */
#ifndef VEMOPREPRO_TOOL_RUN_H_
#define VEMOPREPRO_TOOL_RUN_H_

#include "run/options.h"

namespace tool {

/* Returns the exit status. Throws UsageError, and FileError for what concerns the whole run. */
int run(const Options& options);

}  // namespace tool

#endif  // VEMOPREPRO_TOOL_RUN_H_
