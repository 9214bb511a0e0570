// Angles, sizes, corners and colours as they are typed.
#pragma once

#include <CLI/CLI.hpp>

#include "run/option_list.h"
#include "run/options.h"

namespace tool::run {

// The options of the commands that scale and turn pages. Throws CLI::ValidationError.
void take_geometry(const CLI::App& command, steps::StepOptions& steps, const RawOptions& raw);

}  // namespace tool::run
