// Ruled lines of a bitonal page.
//
// Use: remove_rules(page, scale) takes the horizontal rules off a bitonal page that lies level,
// remove_upright_rules() the vertical ones.
//
// Unlike the library's removal, which knows one thickness for all lines, every rule is followed
// from end to end and its own thickness is measured. So a letter that a rule touches keeps all of
// its strokes, be they hardly thicker than the rule; and a rule can be told from rows of screen
// dots, which lie among other dots.
#pragma once

#include "page/page.h"

namespace tool {

// In pixels.
struct RuleScale {
    int shortest;  // length
    int thickest;  // what is thicker is no rule
    int gap;       // breaks of a rule that is printed weakly, shorter than this
    int dash;      // pieces beyond a rule's end that go with it are at least this long
    int around;    // how far from a rule ink is looked for that tells a screen
};

void remove_rules(Page& page, const RuleScale& scale);
void remove_upright_rules(Page& page, const RuleScale& scale);

}  // namespace tool
