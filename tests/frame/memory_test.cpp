#include "frame/memory.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <new>

#include "frame/buffer.h"
#include "vemoprepro/frame.h"

namespace {

std::size_t last_size;
void* last_block;
int free_calls;
bool exhausted;

void* recording_malloc(std::uint64_t size, void* (*c_malloc)(std::size_t)) {
    last_size = size;
    return exhausted ? nullptr : c_malloc(size);
}

void recording_free(void* block, void (*c_free)(void*)) {
    last_block = block;
    ++free_calls;
    c_free(block);
}

class MemoryHooks : public ::testing::Test {
  protected:
    void SetUp() override {
        exhausted = false;
        free_calls = 0;
        prepro_redefine_malloc(recording_malloc);
        prepro_redefine_free(recording_free);
    }
    void TearDown() override {
        prepro_redefine_malloc(nullptr);
        prepro_redefine_free(nullptr);
    }
};

TEST_F(MemoryHooks, OperatorsGoThroughTheHooks) {
    void* block = ::operator new(0);
    EXPECT_NE(block, nullptr);
    EXPECT_EQ(last_size, 1U);
    ::operator delete(block);
    EXPECT_EQ(last_block, block);

    free_calls = 0;
    ::operator delete(nullptr);
    ::operator delete[](nullptr);
    EXPECT_EQ(free_calls, 0);

    exhausted = true;
    void* failed = nullptr;
    EXPECT_THROW(failed = ::operator new(16), std::bad_alloc);
    EXPECT_THROW(failed = ::operator new[](16), std::bad_alloc);
    exhausted = false;
    EXPECT_EQ(failed, nullptr);
}

TEST_F(MemoryHooks, BufferFailsCleanlyAndOwnsItsBlock) {
    exhausted = true;
    EXPECT_THROW(frame::Buffer<int>(10), std::bad_alloc);
    exhausted = false;
    EXPECT_THROW(frame::Buffer<int>(std::size_t{1} << 62), std::bad_alloc);
    {
        frame::Buffer<int> first = frame::Buffer<int>::zeroed(3);
        EXPECT_EQ(first[2], 0);
        frame::Buffer<int> second(std::move(first));
        EXPECT_EQ(first.size(), 0U);
        free_calls = 0;
    }
    EXPECT_EQ(free_calls, 1);
}

// Installs a marker in one slot at a time: that slot alone holds it, and null brings the default
// back.
template <class Hook>
void expect_own_slot(void (*install)(Hook), Hook marker, Hook frame::HookTable::*slot) {
    frame::HookTable expected = frame::kDefaultHooks;
    expected.*slot = marker;
    install(marker);
    EXPECT_EQ(std::memcmp(&frame::hooks, &expected, sizeof(expected)), 0);
    install(nullptr);
    EXPECT_EQ(std::memcmp(&frame::hooks, &frame::kDefaultHooks, sizeof(expected)), 0);
}

TEST(HookInstallers, EachHasItsOwnSlotAndNullRestoresIt) {
    using frame::HookTable;
    expect_own_slot(prepro_redefine_malloc, recording_malloc, &HookTable::malloc_hook);
    expect_own_slot(prepro_redefine_free, recording_free, &HookTable::free_hook);
    expect_own_slot<prepro_realloc_hook>(
        prepro_redefine_realloc,
        [](void*, std::uint64_t, void* (*)(void*, std::size_t)) -> void* { return nullptr; },
        &HookTable::realloc_hook);
    expect_own_slot<prepro_aligned_malloc_hook>(
        prepro_redefine_aligned_malloc,
        [](std::uint64_t, std::uint64_t, void* (*)(std::size_t, std::size_t)) -> void* {
            return nullptr;
        },
        &HookTable::aligned_malloc_hook);
    expect_own_slot(prepro_redefine_aligned_free, recording_free, &HookTable::aligned_free_hook);
    expect_own_slot(prepro_redefine_gpu_malloc, recording_malloc, &HookTable::gpu_malloc_hook);
    expect_own_slot(prepro_redefine_gpu_free, recording_free, &HookTable::gpu_free_hook);
}

TEST_F(MemoryHooks, DefaultsForwardToTheirLastArgument) {
    const auto& defaults = frame::kDefaultHooks;
    static void* const block = &last_size;
    const auto reallocated = [](void* given, std::size_t size) {
        return size == 7 ? given : nullptr;
    };
    const auto aligned = [](std::size_t size, std::size_t alignment) {
        return size == 8 && alignment == 16 ? block : nullptr;
    };
    const auto allocated = [](std::size_t size) { return size == 9 ? block : nullptr; };
    EXPECT_EQ(defaults.realloc_hook(block, 7, reallocated), block);
    EXPECT_EQ(defaults.aligned_malloc_hook(8, 16, aligned), block);
    EXPECT_EQ(defaults.gpu_malloc_hook(9, allocated), block);
    static void* freed;
    defaults.aligned_free_hook(block, [](void* given) { freed = given; });
    EXPECT_EQ(freed, block);
}

}  // namespace
