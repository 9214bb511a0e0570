// The info command: what files hold.
#pragma once

#include "run/options.h"

namespace tool::run {

// Returns the exit status.
int print_info(const Options& options);

}  // namespace tool::run
