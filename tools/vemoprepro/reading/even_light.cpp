#include "reading/even_light.h"

#include <algorithm>

#include "reading/paper.h"

namespace tool::reading {
namespace {

// The grey that all paper becomes, and the darkest that is taken for paper.
constexpr int kPaper = 240;
constexpr int kDarkestPaper = 16;

}  // namespace

void even_light(Page& grey) {
    const BlockGrid paper = paper_of(grey).greys;
    BlockRows papers(paper, grey.width);
    const int white = kPaper * papers.scale(), darkest = kDarkestPaper * papers.scale();
    for (int y = 0; y < grey.height; ++y) {
        papers.begin(y);
        unsigned char* row = grey.row(y);
        for (int x = 0; x < grey.width; ++x) {
            const int level = std::max(papers.at(x), darkest);
            row[x] =
                static_cast<unsigned char>(std::min((row[x] * white + level / 2) / level, 255));
        }
    }
}

}  // namespace tool::reading
