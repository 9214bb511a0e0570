// The command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "files/page_writer.h"
#include "report/page_record.h"

namespace tool {

enum class Command {
    kClean,
    kBinarize,
    kDeskew,
    kRotate,
    kDespeckle,
    kUnline,
    kUnderlines,
    kCrop,
    kTextmask,
    kInfo
};

enum class Binarization { kGradient, kOtsu, kFixed };

// What a step may measure in pixels: none stands for the default, scaled by the resolution.
using Pixels = std::optional<int>;

struct DespeckleOptions {
    bool wanted = false;
    Pixels max_area;
    Pixels keep_near;  // 0: specks near ink go too, as they do by default but for reading
};

struct LineOptions {
    bool horizontal = false;
    bool vertical = false;
    Pixels min_length;
    Pixels max_thickness;

    bool wanted() const { return horizontal || vertical; }
};

struct TextOptions {
    Pixels max_height;
    int min_density = 1;
};

struct Options {
    Command command = Command::kClean;
    std::vector<std::string> inputs;
    std::string output;                  // a file, a folder or "-"
    std::optional<OutputFormat> format;  // none: by the name of the output
    unsigned jobs = 1;
    std::optional<int> dpi;
    bool straighten = true;
    std::optional<Skew> skew;  // none: measured
    Binarization binarization = Binarization::kGradient;
    int threshold = 0;         // of fixed binarization
    bool for_reading = false;  // --for ocr
    bool prepare = false;      // for reading
    bool crop_border = false;
    DespeckleOptions despeckle;
    LineOptions lines;
    TextOptions text;           // of the textmask command
    bool force = false;         // steps may take more than a tenth of the ink
    std::string findings;       // file of --apply; empty: none
    std::string report_folder;  // of --report; empty: none
    int quarter_turns = 0;      // clockwise, of the rotate command
    bool quiet = false;
    bool verbose = false;
    bool overwrite = false;
    bool json = false;

    // Standard output carries the page, so no words may go there.
    bool output_is_stdout() const { return output == "-"; }
};

constexpr int kExitDone = 0;
constexpr int kExitFailed = 1;  // some file could not be worked on
constexpr int kExitUsage = 2;

// None when there is nothing to run: help was asked for or the usage was wrong; both have been
// answered and `exit_status` is set.
std::optional<Options> parse_options(int argc, char** argv, int& exit_status);

// The format that a file name's extension asks for.
std::optional<OutputFormat> format_by_name(const std::string& name);

}  // namespace tool
