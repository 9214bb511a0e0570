// The settings object of the library's binarizations, with edges as strong as a page's ink makes
// them.
//
// Use: const Settings settings = make_settings(); set_edges(settings, edge); then the
// library's setters and do calls on settings.get().
#pragma once

#include <vemoprepro/binarization.h>

#include <memory>

namespace tool::reading {

struct FreeSettings {
    void operator()(bi_settings* settings) const { bi_upset(settings); }
};
using Settings = std::unique_ptr<bi_settings, FreeSettings>;

// For functions that read their rows through RowReader::read. Throws std::bad_alloc.
Settings make_settings();

// The weakest edge that is ever asked for: a difference between neighbouring greys.
constexpr int kWeakestEdge = 16;

// Edges count from two fifths of the contrast of the page's ink on: weaker ones are the other side
// showing through, stains and noise. strongest: at least kWeakestEdge; the limit of that.
int edge_of_ink(int contrast, int strongest);
void set_edges(const Settings& settings, int edge);

}  // namespace tool::reading
