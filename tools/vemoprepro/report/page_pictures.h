// What a report shows of one page: before, after, and what each step removed, small and at full
// size.
//
// Use: source after* take: a PagePainter watches the page go through its steps; take() gives the
// pictures when the last one is done. Kept are the bytes of picture files, and the page as it was
// before the step that goes on.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "report/encoded_picture.h"
#include "report/placement.h"
#include "steps/pipeline.h"

namespace tool::report {

struct PageView {
    EncodedPicture small;
    EncodedPicture full;
    Placement placement;  // on the page after the last step
};

struct RemovedInk {
    std::string step;
    PageView marks;
    std::vector<Point> spots;  // to look at, on the page after the last step
};

struct PagePictures {
    PageView before;
    PageView after;
    std::vector<RemovedInk> removed;
    EncodedPicture thumbnail;           // before beside after
    std::optional<steps::SkewFan> fan;  // when the skew was measured
};

// The colour of a step's marks.
Colour mark_colour(const std::string& step);

class PagePainter final : public steps::PageWatcher {
  public:
    void source(const Page& page) override;
    void after(const steps::Step& step, const steps::PageWork& work) override;

    // The page after its last step. fan: of the skew search; none when the skew was not measured.
    PagePictures take(const Page& page, std::optional<steps::SkewFan> fan);
    // Time spent on pictures.
    double seconds() const { return seconds_; }

  private:
    void paint_before(const Page& page);
    // All pictures so far go where a step has put the page.
    void follow(const steps::Step& step, const steps::PageWork& work);
    void move(const Placement& by);
    // page: of the same size, for the ink beside what was removed.
    void mark(const std::string& step, const Page& removed, const Page& page);

    double seconds_ = 0;
    Page last_;
    int quarter_turns_ = 0;
    bool specks_marked_ = false;
    ScaledPicture first_;
    PagePictures pictures_;
};

}  // namespace tool::report
