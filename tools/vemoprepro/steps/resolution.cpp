// What a file says is often wrong, or no more than what a program writes that does not know. The
// letters tell it about: most print has small letters of some 1.75 mm. Only a large difference
// counts, and then the smaller resolution does, by which less is taken off the page.
#include "steps/resolution.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace tool::steps {
namespace {

// Small letters of 11 point book type, in inches.
constexpr double kLetterHeight = 1.75 / 25.4;
constexpr int kUsual[] = {75, 100, 150, 200, 300, 400, 600};
constexpr double kDisagree = 2;

// Of a page without letters: the height of a sheet of A4, in inches; larger ones are scanned finer.
constexpr double kSheetHeight = 11.7;
constexpr int kAssumed = 300;

// What programs write that do not know: the resolution of screens.
bool is_of_screens(Resolution dpi) {
    return dpi.x == dpi.y && (dpi.x == 72 || dpi.x == 96);
}

int nearest_usual(double dpi) {
    return *std::min_element(std::begin(kUsual), std::end(kUsual), [=](int a, int b) {
        return std::abs(std::log(a / dpi)) < std::abs(std::log(b / dpi));
    });
}

std::string stated_words(Resolution stated) {
    return stated.x == 0 ? "the file has none" : "the file says " + std::to_string(stated.x);
}

WorkingResolution by_file(Resolution stated) {
    return {stated, ResolutionSource::kFile, stated, "as the file says"};
}

WorkingResolution by_letters(Resolution stated, int estimate) {
    return {{estimate, estimate},
            ResolutionSource::kLetters,
            stated,
            "as its letters look, " + stated_words(stated),
            true};
}

WorkingResolution by_size(const Page& page) {
    const int dpi = nearest_usual(std::max(page.width, page.height) / kSheetHeight);
    if (dpi < kAssumed) {
        return {{dpi, dpi},
                ResolutionSource::kPageSize,
                {},
                "as if it were a sheet of A4, " + stated_words({}),
                true};
    }
    return {
        {kAssumed, kAssumed}, ResolutionSource::kDefault, {}, "assumed, " + stated_words({}), true};
}

WorkingResolution resolution_of(const PageWork& work) {
    const Page& page = work.page;
    if (!work.letters.clear()) {
        return page.dpi.x == 0 ? by_size(page) : by_file(page.dpi);
    }
    const double letters = work.letters.height / kLetterHeight;  // dots per inch
    const int estimate = nearest_usual(letters);
    if (page.dpi.x == 0) return by_letters(page.dpi, estimate);
    const double ratio = (page.quarter_turns % 2 == 0 ? page.dpi.y : page.dpi.x) / letters;
    const double perhaps = work.letters.one_height ? reading::LetterSurvey::kCapitals : 1;
    if (ratio >= kDisagree * perhaps || (ratio <= 1 / kDisagree && is_of_screens(page.dpi))) {
        return by_letters(page.dpi, estimate);
    }
    WorkingResolution chosen = by_file(page.dpi);
    if (ratio <= 1 / kDisagree) {
        chosen.why += ", though its letters look like " + std::to_string(estimate);
        chosen.surprising = true;
    }
    return chosen;
}

}  // namespace

void settle_resolution(PageWork& work, const StepOptions& options) {
    Page& page = work.page;
    // Turning and cropping scale nothing.
    if (page.dpi.x == 0 || !keeps_kind(options.command))
        work.letters = reading::survey_letters(page);
    work.resolution = resolution_of(work);
    if (options.dpi) {
        work.resolution = {
            {*options.dpi, *options.dpi}, ResolutionSource::kOption, page.dpi, "as given"};
    }
    page.scale = work.resolution.dpi;
    // Recognition scales by the output's resolution as well; otherwise the page keeps its size.
    const bool misnamed =
        options.for_reading && work.resolution.source == ResolutionSource::kLetters;
    if (options.dpi || page.dpi.x == 0 || misnamed) page.dpi = work.resolution.dpi;
}

}  // namespace tool::steps
