// The grey image that every binarization starts from.
//
// Use: check acceptable() (source.h) and reachable(), then prepare_grey(). The result is the region
// as packed grey rows: colour turned into luminance, with strongly coloured light pixels clamped to
// a grey that is still visible, undithered and smoothed where the options ask for it and the page
// has contrast.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/views.h"
#include "frame/buffer.h"
#include "grey/source.h"

namespace grey {

struct GreyOptions {
    std::uint8_t smooth = 0;  // 0 off, 1 .. 255 from weak to strong; used as given
    bool undithering = false;
    int resolution = 300;  // dots per inch: chooses the analysis window of the undithering
    int threads = 1;       // for whole pages in memory, see reachable()
};

// Whether prepare_grey() takes the pixels from the whole page in memory, as it does for
// red-green-blue sources converted on two or more threads. The reader is not used then; in all
// other cases the page is not looked at.
bool reads_image(SourceType type, const Region& region, int threads);

// Whether the source has the one of the two that prepare_grey() reads.
bool reachable(const Source& source, const Region& region, int threads);

// region.height() packed rows of region.width() bytes. Throws std::bad_alloc, and whatever the
// start of a thread throws.
frame::Buffer<std::uint8_t> prepare_grey(const Source& source, const Region& region,
                                         const GreyOptions& options);

// Writes the first `size` bytes of what prepare_grey() gives, at most all of them. The rows that
// the reader delivers do not come from `out`: for colour they are read again when it is already
// written. Throws as prepare_grey() does, before anything is written.
void write_grey(const Source& source, const Region& region, const GreyOptions& options,
                std::uint8_t* out, std::size_t size);

}  // namespace grey
