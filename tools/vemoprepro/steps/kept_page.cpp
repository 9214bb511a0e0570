#include "steps/kept_page.h"

#include <cstddef>
#include <utility>

#include "reading/resample.h"

namespace tool::steps {
namespace {

Page channel_of(const Page& colour, std::size_t channel) {
    Page grey = make_page_like(colour, PageKind::kGrey);
    const unsigned char* from = colour.bytes.get() + channel;
    for (std::size_t i = 0; i < grey.size(); ++i) grey.bytes[i] = from[3 * i];
    return grey;
}

// What is made of each channel as if it were a grey page.
template <typename Change>
void change_channels(Page& page, Change change) {
    if (page.kind == PageKind::kGrey) {
        page = change(page);
        return;
    }
    Page made;
    for (std::size_t channel = 0; channel < 3; ++channel) {
        const Page grey = change(channel_of(page, channel));
        if (channel == 0) made = make_page_like(grey, PageKind::kColour);
        unsigned char* to = made.bytes.get() + channel;
        for (std::size_t i = 0; i < grey.size(); ++i) to[3 * i] = grey.bytes[i];
    }
    page = std::move(made);
}

}  // namespace

void keep_page(PageWork& work) {
    work.kept = copy_of(work.page);
}

void double_kept(PageWork& work) {
    if (work.kept) change_channels(*work.kept, reading::doubled);
}

void straighten_kept(PageWork& work, Skew skew, Straightening way) {
    if (!work.kept) return;
    if (way != Straightening::kResampled) {
        straighten(*work.kept, skew, way, {true, kWhite});
        return;
    }
    const StraightSize size = straight_size(*work.kept, skew, way);
    change_channels(*work.kept, [&](const Page& grey) {
        return reading::levelled(grey, skew.numerator, skew.denominator, size.width, size.height);
    });
}

}  // namespace tool::steps
