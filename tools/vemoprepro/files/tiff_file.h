// What all readers and the writer of TIFF files share: libtiff's handle, owned; its errors; and the
// tags of the page that the handle is at.
//
// Use: collect_tiff_errors() once. Then, on each thread, make a TiffErrors before calls of libtiff
// and ask it afterwards.
#pragma once

#include <tiffio.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "files/page_place.h"
#include "files/seekable_file.h"
#include "page/page.h"

namespace tool::files {

struct CloseTiff {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffFile = std::unique_ptr<TIFF, CloseTiff>;

// libtiff may be given the file as a whole, mapped into memory, or read it piece by piece.
enum class TiffAccess { kRead, kMapped };

// At the page whose directory lies there; null when there is none.
TiffFile open_tiff(const SeekableFile& file, TiffAccess access, std::size_t directory);

// Keeps libtiff's errors, thread by thread, from now on, and its warnings for itself.
void collect_tiff_errors();

// The errors of this thread since the object was made.
class TiffErrors {
  public:
    TiffErrors();
    // The first error; empty when there was none.
    const std::string& first() const;
    // The system's error number at the first error; 0 when there was none.
    int system_error() const;
    // Counts as an error of libtiff, unless there was one.
    static void note(const std::string& error);
};

// A tag of 16 bits, or its default.
int tag_of(TIFF* tiff, std::uint32_t tag);

// Sides beyond the range of int are cut to it.
PagePlace place_of(TIFF* tiff);

// A page of the size and resolution, and no pixels yet.
Page frame_of(TIFF* tiff);

}  // namespace tool::files
