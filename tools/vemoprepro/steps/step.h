// One step of the work on a page, and the makers of all steps.
//
// Keep true: a step either replaces the page or leaves it alone; it holds no state, so that any
// number of pages can go through it at once. What a page does not allow is thrown as PageError.
#pragma once

#include <functional>

#include "steps/page_work.h"
#include "steps/step_options.h"

namespace tool::steps {

// What a step that was done may have changed.
enum class Effect {
    kBringsUpright,  // the page is now as it was meant to lie before the work
    kTurnsPage,      // its pixels lie elsewhere
    kScalesPage,     // it has another number of pixels
    kTakesInk,       // what is lighter afterwards was taken off
    kChangesTone     // paper and ink have other greys
};

struct Step {
    // In the page's notes; null when it leaves none. Neither does one that has nothing to say.
    const char* name;
    Effect effect;
    std::function<Outcome(PageWork&)> run;
};

// Why a step is skipped that nobody asked for.
constexpr const char* kSwitchedOff = "switched off";

// Turns the page as its file asks for.
Step orientation_step(const StepOptions& options);
// Turns the page by the given angle.
Step rotate_step(const StepOptions& options);
// Brings the page to the wanted size.
Step scale_step(const StepOptions& options);
// Makes a page that was photographed at an angle upright and rectangular.
Step perspective_step(const StepOptions& options);
// Makes a colour page grey, the one that the library binarizes it from: lets go of the colours
// early and has the greys at hand for the steps in between. With --keep-colour the page is kept in
// its own kind, too. Leaves no note.
Step grey_step(const StepOptions& options);
// Makes light letters on a dark page dark ones on a light page, for the steps in between; leaves no
// note on others.
Step negative_step(const StepOptions& options);
// And back.
Step positive_step();
// Takes the dark border off.
Step border_step(const StepOptions& options);
// What --for ocr does to grey pages beforehand: strong specks, uneven light and low resolutions,
// which the later steps see no more.
Step prepare_step(const StepOptions& options);
// Makes a grey page bitonal.
Step binarize_step(const StepOptions& options);
// Measures the skew of a page (or takes the given one) and turns it straight.
Step deskew_step(const StepOptions& options);

// Steps on bitonal pages.
Step despeckle_step(const StepOptions& options);
Step unline_step(const StepOptions& options);
// Keeps the lines only.
Step underlines_step(const StepOptions& options);
// Keeps the text only.
Step textmask_step(const StepOptions& options);

}  // namespace tool::steps
