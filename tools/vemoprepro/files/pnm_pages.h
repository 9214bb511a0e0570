// The pages of a PNM file, which may hold several images one after the other.
#pragma once

#include <cstdio>
#include <optional>
#include <vector>

#include "files/page_place.h"
#include "page/page.h"

namespace tool::files {

// Empty when the file is damaged or ends within a page. Plain (ASCII) files have one image.
std::vector<PagePlace> list_pnm_pages(std::FILE* file);

// Reads the image there, in whatever kind the file has it. None when the file ends within the rows.
std::optional<Page> read_pnm(std::FILE* file, const PagePlace& place);

}  // namespace tool::files
