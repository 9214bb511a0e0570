// A page on its way through the steps.
//
// What a step finds and a later one, or the record of the page, needs to know stands here. Use: put
// the page in, settle its resolution (steps/resolution.h), process() it (steps/pipeline.h), make
// the record from it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "page/page.h"
#include "page/perspective.h"
#include "reading/letters.h"
#include "reading/page_lie.h"
#include "steps/skew.h"
#include "steps/skew_fan.h"

namespace tool::steps {

enum class ResolutionSource { kFile, kOption, kLetters, kPageSize, kDefault };

// The resolution that a page is worked on with.
struct WorkingResolution {
    Resolution dpi;
    ResolutionSource source = ResolutionSource::kFile;
    Resolution stated;        // by the file
    std::string why;          // in words, for the record
    bool surprising = false;  // not the file's, or not what the letters look like
};

// What an earlier run found on a page, to be used instead of being measured.
struct Findings {
    std::optional<Skew> skew;
    std::optional<int> threshold;
};

// What became of a step.
struct Outcome {
    bool done;
    std::string why;                         // what was done, or why it was skipped
    std::optional<double> ink_removed = {};  // share of the ink before the step
    bool warning = false;                    // the user should look at the page before trusting it
};

struct StepNote {
    std::string name;
    Outcome outcome;
    double seconds = 0;
};

struct PageWork {
    Page page;
    WorkingResolution resolution;
    reading::LetterSurvey letters;  // of the page before its first step, in pixels of `page`
    Findings given;

    PageShape source;                // of the page before its first step
    bool negative = false;           // light and dark are exchanged at the moment
    int quarter_turns = 0;           // clockwise, that the steps have made
    double turned_degrees = 0;       // clockwise, by the rotate step, when it was no right angle
    std::optional<Corners> corners;  // of the page on its photograph, when it was made upright

    std::optional<reading::PageLie> lie;  // once it was looked at, before steps change the ink

    std::optional<Skew> skew;          // none when none was looked for, or none is clear
    std::optional<double> confidence;  // none when the skew was not measured
    std::optional<SkewFan> fan;
    std::optional<int> threshold;
    std::optional<Box> content;  // of the upright page, inside the border that was taken off
    bool heavily_specked = false;
    // Dark specks that went with the greys of such a page: a bitonal page, as large as it was then.
    std::optional<Page> grey_specks;
    // The page in its own kind, straightened along (steps/kept_page.h).
    std::optional<Page> kept;
    // The page with ink that is faint beside the rest of it as well, from binarizing it for reading
    // until its ruled lines are removed.
    std::optional<Page> with_faint_ink;

    std::vector<StepNote> notes;
};

}  // namespace tool::steps
