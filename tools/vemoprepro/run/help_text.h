// How help is laid out, and its examples.
#pragma once

#include <CLI/CLI.hpp>

namespace tool::run {

// For the program and all of its commands that are added afterwards.
void lay_out_help(CLI::App& app);

// Behind the options of a command. One without examples has none.
void add_examples(CLI::App& command);

}  // namespace tool::run
