/* Orientation, binarization and right-angle turns; the list of steps of each command. */
#include "steps.h"

#include <vemoprepro/binarization.h>
#include <vemoprepro/geometry.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <utility>

namespace tool {
namespace {

int as_int(std::size_t size) {
    return static_cast<int>(size);
}

/* Quarter turns clockwise, 1 .. 3, as the library counts them. */
int rotation_code(int quarter_turns) {
    constexpr int kCodes[] = {0, PREPRO_TURN_CLOCKWISE, PREPRO_TURN_HALF,
                              PREPRO_TURN_COUNTER_CLOCKWISE};
    return kCodes[quarter_turns];
}

bool turn_bits(const Page& page, int quarter_turns, PixelBlock& to) {
    const std::size_t words = page.stride() / 4;
    const std::size_t bands = (static_cast<std::size_t>(page.height) + 31) / 32;
    const std::size_t size = quarter_turns == 2 ? page.size() : words * bands * 128;
    to = allocate_pixels(size);
    unsigned int stride = 0;
    return kyd_rotate_bitmap(rotation_code(quarter_turns), page.bytes.get(), page.height,
                             page.width, as_int(page.stride()), to.get(), as_int(size),
                             &stride) == 0;
}

bool turn_pixels(const Page& page, int quarter_turns, PixelBlock& to) {
    to = allocate_pixels(page.size());
    int height = 0, width = 0;
    return kyd_rotate_color(rotation_code(quarter_turns), page.kind == PageKind::grey ? 1 : 3,
                            page.bytes.get(), page.height, page.width, to.get(), &height,
                            &width) == 0;
}

void turn(Page& page, int quarter_turns) {
    PixelBlock turned;
    const bool good = page.kind == PageKind::bitonal ? turn_bits(page, quarter_turns, turned)
                                                     : turn_pixels(page, quarter_turns, turned);
    if (!good) throw StepError("the page cannot be turned");
    page.bytes = std::move(turned);
    if (quarter_turns != 2) {
        std::swap(page.width, page.height);
        std::swap(page.dpi.x, page.dpi.y);
    }
}

Outcome turn_by(Page& page, int quarter_turns, const std::string& why) {
    turn(page, quarter_turns);
    return {true, "turned " + std::to_string(quarter_turns * 90) + " degrees clockwise" + why};
}

Step orientation_step() {
    return {"orientation", [](Page& page, const PageFindings&, PageRecord&) -> Outcome {
                const int turns = std::exchange(page.quarter_turns, 0);
                if (turns == 0) return {false, "already upright"};
                return turn_by(page, turns, ", as the file asks for");
            }};
}

Step rotate_step(int quarter_turns) {
    return {"rotate", [quarter_turns](Page& page, const PageFindings&, PageRecord&) {
                return turn_by(page, quarter_turns, "");
            }};
}

/* Hands the rows of a page to the library one by one. */
struct RowReader {
    const Page& page;
    int next = 0;

    static int read(void* context, int mode, unsigned char* row) {
        auto& self = *static_cast<RowReader*>(context);
        if (mode == 0) self.next = 0;
        std::memcpy(row, self.page.row(self.next), self.page.stride());
        ++self.next;
        return 0;
    }
};

Page same_size(const Page& page, PageKind kind) {
    Page other;
    other.kind = kind;
    other.width = page.width;
    other.height = page.height;
    other.dpi = page.dpi;
    other.bytes = allocate_pixels(other.size());
    return other;
}

/* The grey page that the library binarizes a colour page from. Taking it beforehand lets go of the
 * colour page early and leaves the greys at hand. */
Page grey_of(const Page& page) {
    Page grey = same_size(page, PageKind::grey);
    RowReader reader{page};
    if (bi_color2greybuf(0, RowReader::read, &reader, nullptr, PREPRO_SOURCE_RGB, page.width,
                         std::max(page.dpi.x, 1), 0, page.width, 0, page.height, grey.bytes.get(),
                         as_int(grey.size()), 1, 0) != 0)
        throw std::bad_alloc();
    return grey;
}

Page bits_of(const Page& grey, int threshold) {
    Page bits = same_size(grey, PageKind::bitonal);
    RowReader reader{grey};
    bi_settings* settings = bi_setup(RowReader::read);
    if (!settings) throw std::bad_alloc();
    bi_set_thresh(settings, static_cast<unsigned char>(threshold));
    const int status = bi_thresh_do(settings, &reader, PREPRO_SOURCE_GREY, grey.width, 0,
                                    grey.width, 0, grey.height, bits.bytes.get());
    bi_upset(settings);
    if (status != 0) throw std::bad_alloc();
    return bits;
}

struct Greys {
    int darkest_white = 255; /* 255 also when all is black */
    bool any_black = false;
    int lightest = 0;
};

Greys survey(const Page& grey, const Page& bits) {
    Greys greys;
    for (int y = 0; y < grey.height; ++y) {
        const unsigned char* row = grey.row(y);
        const unsigned char* ink = bits.row(y);
        for (int x = 0; x < grey.width; ++x) {
            const int black = ink[x / 8] >> (7 - x % 8) & 1;
            greys.any_black |= black != 0;
            greys.darkest_white = std::min(greys.darkest_white, row[x] | (-black & 255));
            greys.lightest = std::max(greys.lightest, int{row[x]});
        }
    }
    return greys;
}

/* Binarizes by Otsu's threshold and returns it. Otsu's split chooses a grey that is present, the
 * lightest of the dark class, while only greys below the threshold become black. So the threshold
 * is the darkest grey that became white; and on a page drawn in a single dark grey that grey is the
 * threshold itself and all of the ink would be lost: there the threshold goes up by one. */
int binarize_by_otsu(const Page& grey, Page& bits) {
    bits = bits_of(grey, 0);
    const Greys greys = survey(grey, bits);
    if (greys.any_black || greys.darkest_white == greys.lightest)
        return std::max(greys.darkest_white, 1);
    bits = bits_of(grey, greys.darkest_white + 1);
    return greys.darkest_white + 1;
}

Outcome binarize(Page& page, int threshold, const char* source, PageRecord& record) {
    if (page.kind == PageKind::bitonal) return {false, "bitonal already"};
    if (page.kind == PageKind::colour) page = grey_of(page);
    Page bits;
    if (threshold == 0)
        threshold = binarize_by_otsu(page, bits);
    else
        bits = bits_of(page, threshold);
    record.threshold = threshold;
    page = std::move(bits);
    return {true, "threshold " + std::to_string(threshold) + source};
}

Step binarize_step(const Options& options) {
    const int given = options.threshold;
    return {"binarize", [given](Page& page, const PageFindings& findings, PageRecord& record) {
                if (findings.threshold)
                    return binarize(page, *findings.threshold, " (as recorded)", record);
                return binarize(page, given, given ? " (as given)" : " (Otsu's method)", record);
            }};
}

double seconds_since(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

Pipeline make_pipeline(const Options& options) {
    Pipeline pipeline = {orientation_step()};
    switch (options.command) {
        case Command::clean:
            pipeline.push_back(binarize_step(options));
            pipeline.push_back(deskew_step(options));
            break;
        case Command::binarize:
            pipeline.push_back(binarize_step(options));
            break;
        case Command::deskew:
            pipeline.push_back(deskew_step(options));
            break;
        case Command::rotate:
            pipeline.push_back(rotate_step(options.quarter_turns));
            break;
        case Command::info:
            break;
    }
    return pipeline;
}

void process(const Pipeline& pipeline, Page& page, const PageFindings& findings,
             PageRecord& record) {
    for (const Step& step : pipeline) {
        const auto start = std::chrono::steady_clock::now();
        Outcome outcome = step.run(page, findings, record);
        record.steps.push_back(
            {step.name, outcome.done, std::move(outcome.why), seconds_since(start)});
    }
    record.output_kind = page.kind;
    record.output_width = page.width;
    record.output_height = page.height;
}

}  // namespace tool
