// A page passes through a dozen buffers of megabytes. They go straight back to the system when they
// are freed, whatever size came before, so that a run needs no more memory than its largest page.
// The price is that every buffer is fresh memory, which the system hands out 4 KiB at a time, on
// the first touch of each: that took a third of the time of a run. So large buffers ask for huge
// pages, of which one touch brings 2 MiB. A system that has none refuses, which changes nothing.
// A huge page never reaches beyond buffers that asked for it, so memory stays within the sizes of
// the buffers: a page costs at most a MiB or two more than without, and of pages side by side the
// peaks meet somewhat more often.
//
// Buffers kept and used again would save little more time and need half as much memory again.
#include "page/page_memory.h"

#include <leptonica/allheaders.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>
#include <vemoprepro/frame.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace tool {
namespace {

constexpr int kMapped = 1 << 20;    // bytes; from here on a block is mapped by itself
constexpr int kHugePage = 2 << 20;  // the smallest there is on the usual machines

void ask_for_huge_pages(void* block, std::size_t size) {
    static const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto begin = reinterpret_cast<std::uintptr_t>(block);
    const std::uintptr_t in_front = begin % page;  // of the block, in its first page
    madvise(static_cast<unsigned char*>(block) - in_front, size + in_front, MADV_HUGEPAGE);
}

void* allocate(std::size_t size) {
    void* block = std::malloc(size);
    if (block != nullptr && size >= kHugePage) ask_for_huge_pages(block, size);
    return block;
}

}  // namespace

void set_up_page_memory() {
    mallopt(M_MMAP_THRESHOLD, kMapped);
    setPixMemoryManager(allocate, std::free);
    prepro_redefine_malloc(
        [](std::uint64_t size, void* (*)(std::size_t)) { return allocate(size); });
}

}  // namespace tool
