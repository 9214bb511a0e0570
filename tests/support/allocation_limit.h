// Makes the n-th allocation of a call fail, for every n, and watches what becomes of the others.
//
// Keep true: linked into the program whose operator new is the library's, so that containers count
// too.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "vemoprepro/frame.h"

namespace support {

inline std::atomic<long> allocations_until_failure{
    -1};  // the one that brings it from 0 to -1 fails
inline std::atomic<bool> failed_one{false};
inline std::atomic<long> blocks_held{0};

inline void* failing_malloc(std::uint64_t size, void* (*c_malloc)(std::size_t)) {
    if (allocations_until_failure >= 0 && allocations_until_failure-- == 0) {
        failed_one = true;
        return nullptr;
    }
    ++blocks_held;
    return c_malloc(size);
}

inline void counted_free(void* block, void (*c_free)(void*)) {
    --blocks_held;
    c_free(block);
}

// Calls `call` (int: 0 for success) with its first allocation failing, then its second, …, until a
// call makes fewer. Checks that each failed call returned -1 and that none kept a block. Returns
// how many allocations there are.
template <class Call>
int fail_each_allocation(Call&& call, int most = 100000) {
    prepro_redefine_malloc(failing_malloc);
    prepro_redefine_free(counted_free);
    int allocations = 0;
    for (; allocations <= most; ++allocations) {
        allocations_until_failure = allocations;
        failed_one = false;
        const long held = blocks_held;
        const int result = call();
        allocations_until_failure = -1;
#ifdef __SANITIZE_ADDRESS__  // brings its own sized delete, past the hook, and its own leak check
        const long kept = 0 * held;
#else
        const long kept = blocks_held - held;
#endif
        if (kept != 0)
            ADD_FAILURE() << "kept " << kept << " blocks when allocation " << allocations
                          << " failed";
        if (result != (failed_one ? -1 : 0)) {
            ADD_FAILURE() << "returned " << result << " when allocation " << allocations
                          << " failed";
        }
        if (!failed_one || kept != 0) break;
    }
    prepro_redefine_malloc(nullptr);
    prepro_redefine_free(nullptr);
    EXPECT_LE(allocations, most);
    return allocations;
}

}  // namespace support
