// The do calls: a grey image of the region is prepared, one of the methods makes a bitonal page of
// it, and ink of unwanted colours is dropped from that.
//
// Use: threshold_region(settings, job) and the like, with what the caller handed to the call.
#pragma once

#include <cstdint>

#include "binarization/settings.h"
#include "common/views.h"
#include "grey/source.h"

namespace binarization {

constexpr int kUsualResolution = 300;  // dots per inch

// A region of a source and where its page goes, not checked yet.
struct Job {
    void* context = nullptr;  // handed to the reader of the settings
    int type = 0;             // of the source, a value of grey::SourceType
    int width = 0;            // pixels of a whole source row
    grey::Region region;
    std::uint8_t* out = nullptr;  // region.height() rows of bitonal_stride(region.width()) bytes
    int resolution = kUsualResolution;
};

// All throw std::invalid_argument for what cannot be worked on, and whatever the preparation of the
// grey image and the method throw; `out` is untouched then, except that the statistics clear it
// before they allocate. When the dropout throws, `out` holds the page without it.
//
// Where the smoothing of the settings is raised, that is the first thing done: it stays raised when
// the call fails.

// By the threshold of the settings. Raises the smoothing.
void threshold_region(Settings& settings, const Job& job);

// By the gradient; raises the smoothing. With the method switched it is statistics_of_region(), at
// the usual resolution.
void gradient_of_region(Settings& settings, const Job& job);

// By the statistics of Sobel edges. The smoothing is used as it is stored.
void statistics_of_region(const Settings& settings, const Job& job);

// As gradient_of_region(), for a grey image that is there already: packed rows, at least one pixel.
// There is no preparation and no dropout.
void gradient_of_grey(Settings& settings, const common::GreyView& grey, std::uint8_t* out);

}  // namespace binarization
