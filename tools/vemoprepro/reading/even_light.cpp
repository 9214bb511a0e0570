#include "reading/even_light.h"

#include <algorithm>

#include "reading/paper.h"

namespace tool::reading {
namespace {

// The grey that all paper becomes, and the darkest that is taken for paper.
constexpr int kPaper = 240;
constexpr int kDarkestPaper = 16;

// The paper's grey in a stretch of pixels, and the least it is taken for.
struct Papers {
    int first, step, darkest;
};

// Divides as floating point numbers, which is as exact here, and faster.
void lighten(unsigned char* row, int count, Papers papers, int white) {
    for (int x = 0; x < count; ++x) {
        const int level = std::max(papers.first + x * papers.step, papers.darkest);
        const int grey = static_cast<int>(static_cast<double>(row[x] * white + level / 2) / level);
        row[x] = static_cast<unsigned char>(std::min(grey, 255));
    }
}

}  // namespace

void even_light(Page& grey) {
    const BlockGrid paper = paper_of(grey).greys;
    BlockRows papers(paper, grey.width);
    const int white = kPaper * papers.scale(), darkest = kDarkestPaper * papers.scale();
    for (int y = 0; y < grey.height; ++y) {
        papers.begin(y);
        for (int k = 0; k < papers.stretches(); ++k) {
            const BlockRows::Stretch stretch = papers.stretch(k);
            lighten(grey.row(y) + stretch.x, stretch.count, {stretch.first, stretch.step, darkest},
                    white);
        }
    }
}

}  // namespace tool::reading
