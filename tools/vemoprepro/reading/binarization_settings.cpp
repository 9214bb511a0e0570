#include "reading/binarization_settings.h"

#include <algorithm>
#include <new>

#include "page/row_reader.h"
#include "reading/ink_contrast.h"

namespace tool::reading {
namespace {

constexpr int kEdgeShare = 40;  // per cent of the ink's contrast

}  // namespace

Settings make_settings() {
    Settings settings(bi_setup(RowReader::read));
    if (!settings) throw std::bad_alloc();
    return settings;
}

void set_edges(const Settings& settings, const Page& grey, int strongest) {
    const int edge = std::clamp(ink_contrast(grey) * kEdgeShare / 100, kWeakestEdge, strongest);
    bi_set_delta1(settings.get(), static_cast<unsigned char>(edge));
    bi_set_delta2(settings.get(), static_cast<unsigned char>(edge * 3 / 4));
}

}  // namespace tool::reading
