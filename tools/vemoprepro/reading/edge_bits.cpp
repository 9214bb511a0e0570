#include "reading/edge_bits.h"

#include <vemoprepro/binarization.h>

#include <new>

#include "reading/binarization_settings.h"
#include "reading/ink_contrast.h"

namespace tool::reading {
namespace {

// The strongest edge that is asked for, on a page of very black ink. Edges of 40 leave print with a
// contrast of 50 whole, edges of 80 take print with a contrast of 90 away: so light print goes, and
// with it what shows through from the other side.
constexpr int kStrongestEdge = 120;

Page bits_by_edges(const Page& grey, int edge) {
    Page bits = make_page_like(grey, PageKind::kBitonal);
    const Settings settings = make_settings();
    set_edges(settings, edge);
    bi_set_internal_gaussian_smoothing(settings.get(), 1);
    if (bi_grey_gradl_do(settings.get(), grey.bytes.get(), grey.height, grey.width,
                         bits.bytes.get()) != 0) {
        throw std::bad_alloc();
    }
    return bits;
}

}  // namespace

Page bits_for_reading(const Page& grey) {
    return bits_by_edges(grey, edge_of_ink(ink_contrast(contrasts_of(grey)), kStrongestEdge));
}

Page bits_with_faint_ink(const Page& grey) {
    return bits_by_edges(grey, kWeakestEdge);
}

}  // namespace tool::reading
