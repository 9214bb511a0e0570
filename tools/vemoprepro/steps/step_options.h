// What the steps of a run are asked to do.
#pragma once

#include <optional>

#include "page/background.h"
#include "page/perspective.h"
#include "page/scale.h"
#include "steps/skew.h"

namespace tool::steps {

// The commands that make pages from pages.
enum class Command {
    kClean,
    kBinarize,
    kDeskew,
    kRotate,
    kScale,
    kPerspective,
    kDespeckle,
    kUnline,
    kUnderlines,
    kCrop,
    kTextmask
};

// The results are of the pages' own kinds; else they are bitonal.
constexpr bool keeps_kind(Command command) {
    return command == Command::kDeskew || command == Command::kRotate ||
           command == Command::kScale || command == Command::kPerspective ||
           command == Command::kCrop;
}

enum class Binarization { kPaper, kGradient, kOtsu, kFixed };

// A length or an area in pixels that a step works with. None stands for its default, which is
// scaled by the resolution.
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

// One of the first three says how far.
struct ScaleOptions {
    struct Size {
        int width, height;
    };
    std::optional<Size> size;
    std::optional<double> factor;
    std::optional<int> dpi;  // of the result
    Filter filter = Filter::kBicubic;
};

struct StepOptions {
    Command command = Command::kClean;
    std::optional<int> dpi;  // none: the file's, or the default
    bool turn_by_text = true;
    bool straighten = true;
    std::optional<Skew> skew;  // none: measured
    Binarization binarization = Binarization::kPaper;
    int threshold = 0;  // of fixed binarization
    bool double_small_letters = false;
    bool for_reading = false;  // --for ocr
    bool prepare = false;      // for reading
    bool crop_border = false;
    bool keep_colour = false;  // a page of its own kind is straightened along
    DespeckleOptions despeckle;
    LineOptions lines;
    TextOptions text;    // of the textmask command
    bool force = false;  // steps may take more than a tenth of the ink
    double angle = 0;    // of the rotate command, in degrees clockwise
    // Where a turned page does not cover the result. None: the step's default.
    std::optional<Background> background;
    ScaleOptions scale;              // of the scale command
    std::optional<Corners> corners;  // of the perspective command, in their order; none: found
};

}  // namespace tool::steps
