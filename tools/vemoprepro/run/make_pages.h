// Runs a command that makes pages from pages.
#pragma once

#include "run/options.h"

namespace tool::run {

// Returns the exit status. Throws UsageError, and FileError for what concerns the whole run.
int make_pages(const Options& options);

}  // namespace tool::run
