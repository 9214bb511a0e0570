// The one colour that a grey or RGB PNG file names as transparent.
#pragma once

#include <leptonica/allheaders.h>

#include <cstdint>
#include <cstdio>
#include <optional>
#include <vector>

namespace tool::files {

struct PngColourKey {
    int depth = 0;                       // bits per sample, at most 16
    std::vector<std::uint32_t> samples;  // one or three
};

// The stream is at its start. None for a file without a key; the transparency of a palette is no
// key.
std::optional<PngColourKey> find_colour_key(std::FILE* file);

// Makes pixels of that colour white paper.
void paint_colour_key(PIX* image, const PngColourKey& key);

}  // namespace tool::files
