// Bitonal pages: by the grey of the paper, by the gradient method, by Otsu's, or by a given
// threshold.
#include <vemoprepro/binarization.h>

#include <algorithm>
#include <new>
#include <string>
#include <utility>

#include "page/ink.h"
#include "page/row_reader.h"
#include "reading/binarization_settings.h"
#include "reading/block_depths.h"
#include "reading/edge_bits.h"
#include "reading/ink_contrast.h"
#include "reading/paper_bits.h"
#include "steps/ink_removal.h"
#include "steps/kept_page.h"
#include "steps/step.h"

namespace tool::steps {
namespace {

constexpr unsigned char kSmooth = 246;  // a do call raises it by 2
// Half of the one-shot dark levels, 128 being the middle between the darkest grey and white: with
// the full ones paper in the shade becomes black, with none large dark areas fall apart.
constexpr unsigned char kFillLevel = 64;
constexpr unsigned char kLowestThreshold = 48;

// Stronger edges would take light print off a page of black ink: with this one, print down to a
// contrast of 50 is whole.
constexpr int kUsualEdge = 40;

// The height of small letters, in pixels, that black and white need.
constexpr double kSmallLetters = 9;
constexpr int kCoarse = 200;
constexpr int kLongestSideToDouble = 8192;

Page threshold_bits(const Page& grey, int threshold) {
    Page bits = make_page_like(grey, PageKind::kBitonal);
    RowReader reader{grey};
    const reading::Settings settings = reading::make_settings();
    bi_set_thresh(settings.get(), static_cast<unsigned char>(threshold));
    if (bi_thresh_do(settings.get(), &reader, PREPRO_SOURCE_GREY, grey.width, 0, grey.width, 0,
                     grey.height, bits.bytes.get()) != 0) {
        throw std::bad_alloc();
    }
    return bits;
}

Page gradient_bits(const Page& grey, int edge) {
    Page bits = make_page_like(grey, PageKind::kBitonal);
    RowReader reader{grey};
    const reading::Settings settings = reading::make_settings();
    bi_set_smooth(settings.get(), kSmooth);
    reading::set_edges(settings, edge);
    bi_set_black1(settings.get(), kFillLevel);
    bi_set_black2(settings.get(), kLowestThreshold);
    if (bi_gradl_do(settings.get(), &reader, PREPRO_SOURCE_GREY, grey.width, 0, grey.width, 0,
                    grey.height, bits.bytes.get()) != 0) {
        throw std::bad_alloc();
    }
    return bits;
}

int edge_of(const Page& grey) {
    return reading::edge_of_ink(reading::ink_contrast(reading::contrasts_of(grey)), kUsualEdge);
}

struct Greys {
    int darkest_white = 255;  // 255 also when all is black
    bool any_black = false;
    int lightest = 0;
};

Greys survey(const Page& grey, const Page& bits) {
    Greys greys;
    for (int y = 0; y < grey.height; ++y) {
        const unsigned char* row = grey.row(y);
        const unsigned char* ink = bits.row(y);
        for (int x = 0; x < grey.width; ++x) {
            const int black = is_ink(ink, x) ? 1 : 0;
            greys.any_black |= black != 0;
            greys.darkest_white = std::min(greys.darkest_white, row[x] | (-black & 255));
            greys.lightest = std::max(greys.lightest, int{row[x]});
        }
    }
    return greys;
}

// Binarizes by Otsu's threshold and returns it. Otsu's split chooses a grey that is present, the
// lightest of the dark class, while only greys below the threshold become black. So the threshold
// is the darkest grey that became white; and on a page drawn in a single dark grey that grey is the
// threshold itself and all of the ink would be lost: there the threshold goes up by one.
int binarize_by_otsu(const Page& grey, Page& bits) {
    bits = threshold_bits(grey, 0);
    const Greys greys = survey(grey, bits);
    if (greys.any_black || greys.darkest_white == greys.lightest) {
        return std::max(greys.darkest_white, 1);
    }
    bits = threshold_bits(grey, greys.darkest_white + 1);
    return greys.darkest_white + 1;
}

Outcome threshold_by(const Page& grey, PageWork& work, int threshold, const char* source) {
    work.page = threshold_bits(grey, threshold);
    work.threshold = threshold;
    return {true, "threshold " + std::to_string(threshold) + source};
}

// Black and white cannot show the curves of letters of so few pixels.
bool has_small_letters(const Page& page, const reading::LetterSurvey& letters) {
    return letters.clear() && letters.height < kSmallLetters && page.scale.x < kCoarse &&
           std::max(page.width, page.height) <= kLongestSideToDouble;
}

Outcome binarize_for_reading(const Page& grey, PageWork& work, const StepOptions& options) {
    if (options.lines.wanted()) {
        work.with_faint_ink = reading::bits_with_faint_ink(grey);
    }
    if (options.binarization == Binarization::kPaper) {
        work.page = reading::bits_by_paper(grey);
        return {true, "thresholds by the paper"};
    }
    work.page = reading::bits_for_reading(grey);
    return {true, "gradient thresholds for the contrast of the ink"};
}

// Light print beside black ink, which recognition is spared, is what the reader may look for.
Outcome binarize_by_paper(const Page& grey, PageWork& work, const StepOptions& options) {
    if (!options.double_small_letters || !has_small_letters(grey, work.letters)) {
        work.page = reading::bits_by_paper_with_light_print(grey);
        return {true, "thresholds by the paper"};
    }
    work.page = reading::doubled_bits_by_paper(grey);
    double_kept(work);
    work.letters.enlarge(2);
    return {true, "thresholds by the paper, resolution doubled for its small letters"};
}

Outcome make_bits(const Page& grey, PageWork& work, const StepOptions& options) {
    if (work.given.threshold)
        return threshold_by(grey, work, *work.given.threshold, " (as recorded)");
    switch (options.binarization) {
        case Binarization::kFixed:
            return threshold_by(grey, work, options.threshold, " (as given)");
        case Binarization::kPaper:
            if (options.for_reading) return binarize_for_reading(grey, work, options);
            return binarize_by_paper(grey, work, options);
        case Binarization::kGradient:
            if (options.for_reading) return binarize_for_reading(grey, work, options);
            work.page = gradient_bits(grey, edge_of(grey));
            return {true, "gradient thresholds"};
        case Binarization::kOtsu:
            break;
    }
    work.threshold = binarize_by_otsu(grey, work.page);
    return {true, "threshold " + std::to_string(*work.threshold) + " (Otsu's method)"};
}

// A page that is left nearly blank had nothing on it, or it was too pale.
Outcome binarize(PageWork& work, const StepOptions& options) {
    if (work.page.kind == PageKind::kBitonal) return {false, "bitonal already"};
    const Page grey = std::move(work.page);
    Outcome outcome = make_bits(grey, work, options);
    if (is_nearly_blank(work.page) && reading::stands_out(reading::depths_of(grey))) {
        outcome.why += "; what is on the page is too pale to show";
        outcome.warning = true;
    }
    return outcome;
}

}  // namespace

Step binarize_step(const StepOptions& options) {
    return {"binarize", Effect::kChangesTone,
            [options](PageWork& work) { return binarize(work, options); }};
}

}  // namespace tool::steps
