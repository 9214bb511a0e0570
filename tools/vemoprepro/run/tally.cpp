#include "run/tally.h"

#include "page/counted.h"

namespace tool::run {

std::string Tally::text() const {
    std::string text = counted(files(), "file") + ": " + std::to_string(done) + " done";
    if (pages != done) text += " (" + counted(pages, "page") + ")";
    if (warned > 0) text += ", " + std::to_string(warned) + " of them with warnings";
    if (failed > 0) text += ", " + std::to_string(failed) + " failed";
    if (skipped > 0) text += ", " + std::to_string(skipped) + " skipped";
    return text;
}

}  // namespace tool::run
