// The letters of a page: how many there seem to be, and how large they are.
//
// Use: survey_letters(page); trust the sizes where clear() says so. They are estimates, good to a
// fifth or so, for choosing what is small and what is large on this page.
#pragma once

#include "page/page.h"

namespace tool::reading {

// Lengths in pixels of the page.
struct LetterSurvey {
    int letters = 0;             // components of the sizes of letters of the most frequent type
    double height = 0;           // of small letters without ascenders, such as x
    double stroke = 0;           // the thickness of their strokes
    double line_distance = 0;    // from one line of text to the next; 0 where none stands out
    double sureness = 0;         // 0 .. 1: the share of what may be letters that has these sizes
    bool light_on_dark = false;  // the page is a negative
    // All letters have about the same height. They are taken for capitals or digits, which are
    // higher than `height` by a factor of kCapitals; but may be small ones.
    bool one_height = false;
    static constexpr double kCapitals = 1.4;

    bool clear() const { return letters >= 20 && sureness >= 0.3; }
    // For a page that was made larger.
    void enlarge(int factor) {
        height *= factor;
        stroke *= factor;
        line_distance *= factor;
    }
};

// Of a page of any kind, which stays as it is.
LetterSurvey survey_letters(const Page& page);

// Of small letters and of their strokes: the usual ones where the page does not tell.
double letter_height(const LetterSurvey& letters, const Page& page);
double stroke_thickness(const LetterSurvey& letters, const Page& page);

}  // namespace tool::reading
