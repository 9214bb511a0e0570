// Grey pages made ready for --for ocr.
#include <cstdint>
#include <string>

#include "page/ink.h"
#include "reading/even_light.h"
#include "reading/impulses.h"
#include "reading/resample.h"
#include "reading/sharpen.h"
#include "reading/strewn_bits.h"
#include "steps/ink_removal.h"
#include "steps/kept_page.h"
#include "steps/number_text.h"
#include "steps/step.h"

namespace tool::steps {
namespace {

// Salt and pepper are all over a page, on paper as well as on print: of two impulses in a hundred
// pixels one run of 128 in thirteen has none. The thin strokes of print may be as many, but leave a
// quarter of the runs free, and half of them as a rule. On a coarse page specks cannot be told from
// strokes.
constexpr double kHeavilySpecked = 0.02;
constexpr double kMostFreeRuns = 0.15;
// Ink on a grey page, and the least that is gone when a dark pixel was a speck.
constexpr int kDark = 128;
constexpr int kLighter = 64;
// Recognition wants letters of some twenty pixels height.
constexpr int kCoarse = 200;
constexpr int kLongestSideToDouble = 8192;

bool is_coarse(const Page& page) {
    return page.scale.x > 0 && page.scale.x < kCoarse && page.width <= kLongestSideToDouble &&
           page.height <= kLongestSideToDouble;
}

// Takes specks off the greys. Gives the share of the dark pixels that went.
double remove_specks(PageWork& work) {
    Page& page = work.page;
    const Page before = copy_of(page);
    reading::remove_impulses(page);
    reading::remove_impulses(page);
    Page& specks = work.grey_specks.emplace(blank_page_like(page));
    std::int64_t dark = 0, lost = 0;
    for (int y = 0; y < page.height; ++y) {
        const unsigned char* old_row = before.row(y);
        const unsigned char* new_row = page.row(y);
        for (int x = 0; x < page.width; ++x) {
            if (old_row[x] >= kDark) continue;
            ++dark;
            if (new_row[x] < old_row[x] + kLighter) continue;
            ++lost;
            set_ink(specks.row(y), x);
        }
    }
    return dark > 0 ? static_cast<double>(lost) / static_cast<double>(dark) : 0;
}

Outcome prepare_bits(PageWork& work) {
    if (is_coarse(work.page) || !reading::is_strewn(work.page)) return {false, "bitonal already"};
    return remove_ink(work.page, Excess::kWarnedOf, box_of(work.page), "specks all over the page",
                      reading::remove_strewn_pixels);
}

void add_words(std::string& all, const std::string& words) {
    all += (all.empty() ? "" : ", ") + words;
}

// What thresholds do that are not those of the paper around each place: shade, stains and the blur
// that makes fine strokes paler than thick ones are not theirs.
void help_thresholds(Page& page, std::string& words) {
    reading::even_light(page);
    add_words(words, "light evened out");
    if (!is_coarse(page)) return;
    reading::sharpen(page);
    add_words(words, "sharpened");
}

Outcome prepare(PageWork& work, Binarization binarization) {
    Page& page = work.page;
    if (page.kind == PageKind::kBitonal) return prepare_bits(work);
    Outcome outcome{true, ""};
    const reading::ImpulseSample impulses = reading::sample_impulses(page);
    work.heavily_specked =
        impulses.share > kHeavilySpecked && impulses.free_runs < kMostFreeRuns && !is_coarse(page);
    if (work.heavily_specked) {
        outcome.ink_removed = remove_specks(work);
        outcome.warning = *outcome.ink_removed > kMostInk;
        outcome.why = "specks over " + percent(impulses.share) + " of the page removed, " +
                      percent(*outcome.ink_removed) + " of the ink";
    }
    if (binarization != Binarization::kPaper) help_thresholds(page, outcome.why);
    if (is_coarse(page)) {
        page = reading::doubled(page);
        double_kept(work);
        work.letters.enlarge(2);
        add_words(outcome.why, "resolution doubled");
    }
    if (outcome.why.empty()) return {false, "not coarse, no salt and pepper"};
    return outcome;
}

}  // namespace

Step prepare_step(const StepOptions& options) {
    return {"prepare", Effect::kChangesTone, [options](PageWork& work) -> Outcome {
                if (!options.prepare) return {false, kSwitchedOff};
                return prepare(work, options.binarization);
            }};
}

}  // namespace tool::steps
