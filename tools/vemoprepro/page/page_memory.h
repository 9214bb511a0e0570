// Where page buffers come from.
#pragma once

namespace tool {

// To be called once, before the first allocation of a page and before any thread starts. Blocks
// still come from malloc() and go back by free().
void set_up_page_memory();

}  // namespace tool
