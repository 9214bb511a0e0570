// Writing pages: TIFF (all pages in one file), PNG (one page) and PNM (one after the other).
//
// Use: append* finish, then publish the OutputFile underneath. Bitonal TIFF pages are compressed by
// Group 4, others by LZW; nothing is ever lost.
#pragma once

#include <memory>

#include "files/output_file.h"
#include "page/page.h"

namespace tool::files {

enum class OutputFormat { kTiff, kPng, kPnm };

class PageWriter {
  public:
    virtual ~PageWriter() = default;
    // The page is used up. Throws FileError, as does finish().
    virtual void append(Page page) = 0;
    virtual void finish() = 0;
};

// The file must outlive the writer.
std::unique_ptr<PageWriter> make_page_writer(OutputFormat format, const OutputFile& file);

}  // namespace tool::files
