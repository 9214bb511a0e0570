// The global allocation operators of the process, as long as the host defines none of its own.
//
// They are exported with default visibility and the library calls them through its dynamic symbol
// table, so the library's containers follow the host's operators where it has them. The nothrow,
// sized and aligned forms are left to the C++ runtime, whose nothrow and sized forms end in these
// four. This file holds nothing else, so that no call to an operator can be bound to its definition
// while compiling.
#include <new>

#include "frame/memory.h"

#define VEMOPREPRO_EXPORTED __attribute__((visibility("default")))

VEMOPREPRO_EXPORTED void* operator new(std::size_t size) {
    void* block = frame::allocate(size == 0 ? 1 : size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

VEMOPREPRO_EXPORTED void* operator new[](std::size_t size) {
    void* block = frame::allocate(size == 0 ? 1 : size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

VEMOPREPRO_EXPORTED void operator delete(void* block) noexcept {
    frame::release(block);
}

VEMOPREPRO_EXPORTED void operator delete[](void* block) noexcept {
    frame::release(block);
}
