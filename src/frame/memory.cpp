// Every default forwards its leading arguments to the function in its last one, so a host hook that
// wants the ordinary behaviour does the same.
#include "frame/memory.h"

#include <cstdlib>

namespace frame {
namespace {

void* default_malloc(std::uint64_t size, void* (*c_malloc)(std::size_t)) {
    return c_malloc(size);
}

void default_free(void* block, void (*c_free)(void*)) {
    c_free(block);
}

void* default_realloc(void* block, std::uint64_t size, void* (*c_realloc)(void*, std::size_t)) {
    return c_realloc(block, size);
}

void* default_aligned_malloc(std::uint64_t size, std::uint64_t alignment,
                             void* (*c_aligned_malloc)(std::size_t, std::size_t)) {
    return c_aligned_malloc(size, alignment);
}

}  // namespace

constinit const HookTable kDefaultHooks = {
    default_malloc, default_free,   default_realloc, default_aligned_malloc,
    default_free,   default_malloc, default_free};

// Constant-initialised: the allocation operators may run before any static constructor of the
// library.
constinit HookTable hooks = {
    default_malloc, default_free,   default_realloc, default_aligned_malloc,
    default_free,   default_malloc, default_free};

void* allocate(std::size_t size) {
    return hooks.malloc_hook(size, std::malloc);
}

void release(void* block) {
    if (block != nullptr) hooks.free_hook(block, std::free);
}

}  // namespace frame
