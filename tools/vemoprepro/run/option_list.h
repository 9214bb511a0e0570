// The commands and options as CLI11 is told of them.
//
// Use: describe_options() on a fresh CLI::App, which then parses the command line into the two
// structs. The options must be completed from the raw ones (options.cpp).
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "run/options.h"

namespace tool::run {

// What CLI11 fills in, before it becomes Options.
struct RawOptions {
    std::string format;
    std::string threshold = "auto";
    std::string method = "paper";
    std::string purpose;
    std::vector<std::string> lines;
    bool no_despeckle = false;
    bool no_crop_border = false;
    bool no_remove_lines = false;
    bool no_prepare = false;
    bool no_doubling = false;
    int max_area = 0;
    int keep_near = 0;
    int min_length = 0;
    int max_thickness = 0;
    int max_height = 0;
    double skew_degrees = 0;
    int dpi = 0;
    int from_dpi = 0;
    std::string angle;
    std::string background;
    std::string size;
    std::string factor;
    std::string filter;
    std::vector<std::string> corners;
    bool no_deskew = false;
    bool no_turn = false;
};

void describe_options(CLI::App& app, Options& options, RawOptions& raw);

}  // namespace tool::run
