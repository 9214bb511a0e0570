// The process-wide memory hooks, and the two functions through which every block of the library
// comes and goes.
//
// Use: allocate() and release() directly only for blocks that cross the C boundary (handles) or
// that a class owns by itself (frame::Buffer, common::BasicImage); everything else uses the C++
// containers, whose operator new ends here too.
//
// Keep true: hooks are installed while no other thread is inside the library and no block is held.
#pragma once

#include <cstddef>
#include <cstdint>

namespace frame {

using MallocHook = void* (*)(std::uint64_t, void* (*)(std::size_t));
using FreeHook = void (*)(void*, void (*)(void*));
using ReallocHook = void* (*)(void*, std::uint64_t, void* (*)(void*, std::size_t));
using AlignedMallocHook = void* (*)(std::uint64_t, std::uint64_t,
                                    void* (*)(std::size_t, std::size_t));
using AlignedFreeHook = FreeHook;
using GpuMallocHook = MallocHook;
using GpuFreeHook = FreeHook;

// Plain pointers without a lock: the contract above is what makes that safe.
struct HookTable {
    MallocHook malloc_hook;
    FreeHook free_hook;
    ReallocHook realloc_hook;
    AlignedMallocHook aligned_malloc_hook;
    AlignedFreeHook aligned_free_hook;
    GpuMallocHook gpu_malloc_hook;
    GpuFreeHook gpu_free_hook;
};

extern const HookTable kDefaultHooks;
extern HookTable hooks;

// A block of `size` bytes from the malloc hook, or null when the hook gives none.
void* allocate(std::size_t size);

// Gives a block back through the free hook; null is ignored.
void release(void* block);

}  // namespace frame
