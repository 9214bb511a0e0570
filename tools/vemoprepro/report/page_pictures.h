// What a report shows of one page: before, after, and what each step removed.
//
// Use: source after* take: a PagePainter watches the page go through its steps; take() gives the
// pictures when the last one is done. Only small pictures are kept.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "report/scaled_picture.h"
#include "steps/pipeline.h"

namespace tool::report {

struct RemovedInk {
    std::string step;
    EncodedPicture marks;
    // Whether the marks lie as the page does in the picture before, in the one after.
    bool fits_before = false;
    bool fits_after = false;
};

struct PagePictures {
    EncodedPicture before;  // upright
    EncodedPicture after;
    std::vector<RemovedInk> removed;
    std::optional<steps::SkewFan> fan;  // when the skew was measured
};

// The colour of a step's marks.
Colour mark_colour(const std::string& step);

class PagePainter final : public steps::PageWatcher {
  public:
    void source(const Page& page) override;
    void after(const steps::Step& step, const steps::PageWork& work) override;

    // fan: of the skew search; none when the skew was not measured.
    PagePictures take(std::optional<steps::SkewFan> fan);
    // Time spent on pictures.
    double seconds() const { return seconds_; }

  private:
    struct Marks {
        std::string step;
        int posture;
        EncodedPicture picture;
    };

    double seconds_ = 0;
    int posture_ = 0;  // goes up when the page is turned
    int first_posture_ = 0;
    ScaledPicture first_;
    ScaledPicture last_;
    std::vector<Marks> marks_;
};

}  // namespace tool::report
