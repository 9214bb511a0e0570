// What a report shows of one page: before, after, and what each step removed.
//
// Use: a PagePainter watches the page go through its steps; take() gives the pictures when the last
// one is done. Only small pictures are kept.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "report/page_record.h"
#include "report/scaled_picture.h"
#include "report/skew_fan.h"
#include "steps/steps.h"

namespace tool {

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
    std::optional<SkewFan> fan;  // when the skew was measured
};

// The colour of a step's marks.
Colour mark_colour(const std::string& step);

class PagePainter final : public PageWatcher {
  public:
    explicit PagePainter(bool with_fan) : with_fan_(with_fan) {}

    void source(const Page& page) override;
    void before(const std::string& step, const Page& page) override;
    void after(const std::string& step, const Page& page) override;

    PagePictures take(const PageRecord& record);
    // Time spent on pictures.
    double seconds() const { return seconds_; }

  private:
    struct Marks {
        std::string step;
        int posture;
        EncodedPicture picture;
    };

    bool with_fan_;
    double seconds_ = 0;
    int posture_ = 0;  // goes up when the page is turned
    int first_posture_ = 0;
    ScaledPicture first_;
    ScaledPicture last_;
    std::vector<Marks> marks_;
    std::vector<SkewFan> fans_;
};

}  // namespace tool
