// Reading image files page by page, whatever their format (files/file_format.h).
//
// Use: open a file, ask for the number of pages, read any of them. Opening lists the pages without
// decoding any; each page is decoded on its own, so that memory does not grow with their number and
// several pages can be decoded at the same time.
//
// Keep true: read_page() may be called from several threads at once. Call prepare_decoders() once
// before. Everything that is wrong with a file is thrown as FileError.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "files/decode.h"
#include "files/file_error.h"
#include "files/file_format.h"
#include "files/page_place.h"
#include "files/seekable_file.h"
#include "page/page.h"

namespace tool::files {

// Switches the messages of the decoders off: everything worth saying is in the FileError.
void prepare_decoders();

class ImageFile {
  public:
    // name: a path, or "-" for standard input.
    explicit ImageFile(const std::string& name);

    FileFormat format() const { return format_; }
    std::size_t page_count() const { return places_.size(); }
    // Decodes page `index`, counted from 0. A resolution that no scanner has counts as none.
    Page read_page(std::size_t index) const;
    // What an error of that page begins with: "page 3: ", or nothing when there is only one.
    std::string page_prefix(std::size_t index) const;

  private:
    std::vector<PagePlace> list_pages() const;
    void check_size(std::size_t index) const;
    Page decode_page(std::size_t index) const;
    Decoded decode(std::size_t index) const;
    std::string damaged_file(const std::string& reason) const;
    FileError damage(std::size_t index, const std::string& reason) const;
    std::optional<Page> read_raw_page(std::size_t index) const;
    std::optional<Page> read_raw_tiff_page(std::size_t index) const;

    std::string name_;
    SeekableFile file_;
    FileFormat format_ = FileFormat::kTiff;
    std::vector<PagePlace> places_;
};

}  // namespace tool::files
