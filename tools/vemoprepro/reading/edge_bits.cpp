#include "reading/edge_bits.h"

#include <vemoprepro/binarization.h>

#include <new>

#include "reading/binarization_settings.h"

namespace tool::reading {
namespace {

// Print with a contrast of 50 is whole when the edges are as weak as 40; at 80 print with a
// contrast of 90 is lost already.
constexpr int kStrongestEdge = 120;

Page bits_by_edges(const Page& grey, int strongest) {
    Page bits = make_page_like(grey, PageKind::kBitonal);
    const Settings settings = make_settings();
    set_edges(settings, grey, strongest);
    bi_set_internal_gaussian_smoothing(settings.get(), 1);
    if (bi_grey_gradl_do(settings.get(), grey.bytes.get(), grey.height, grey.width,
                         bits.bytes.get()) != 0) {
        throw std::bad_alloc();
    }
    return bits;
}

}  // namespace

Page bits_for_reading(const Page& grey) {
    return bits_by_edges(grey, kStrongestEdge);
}

Page bits_with_faint_ink(const Page& grey) {
    return bits_by_edges(grey, kWeakestEdge);
}

}  // namespace tool::reading
