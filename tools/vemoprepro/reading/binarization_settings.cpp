#include "reading/binarization_settings.h"

#include <algorithm>
#include <new>

#include "page/row_reader.h"

namespace tool::reading {
namespace {

constexpr int kEdgeShare = 40;  // per cent of the ink's contrast

}  // namespace

Settings make_settings() {
    Settings settings(bi_setup(RowReader::read));
    if (!settings) throw std::bad_alloc();
    return settings;
}

int edge_of_ink(int contrast, int strongest) {
    return std::clamp(contrast * kEdgeShare / 100, kWeakestEdge, strongest);
}

void set_edges(const Settings& settings, int edge) {
    bi_set_delta1(settings.get(), static_cast<unsigned char>(edge));
    bi_set_delta2(settings.get(), static_cast<unsigned char>(edge * 3 / 4));
}

}  // namespace tool::reading
