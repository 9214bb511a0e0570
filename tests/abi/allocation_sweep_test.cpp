// Every call of tests/calls/ with each of its allocations failing in turn, through the shared
// library as a host links it, so that the containers inside allocate through the library's own
// operators.
#include <gtest/gtest.h>

#include <string>

#include "calls/random_desk.h"
#include "support/allocation_limit.h"

namespace {

TEST(AllocationSweep, EveryAllocationOfEveryFunctionFails) {
    calls::Desk desk = calls::random_desk();
    for (const calls::Call& call : calls::all_calls()) {
        SCOPED_TRACE(call.name);
        call.run(desk);  // whatever the process allocates once is there from now on
        const int allocations =
            support::fail_each_allocation([&] { return std::min(call.run(desk), 0); });
        EXPECT_EQ(allocations > 0, call.allocates == calls::Allocates::kYes) << allocations;
    }
}

TEST(AllocationSweep, WhatAllocatesFailsWithoutAnyMemory) {
    calls::Desk desk = calls::random_desk();
    for (const calls::Call& call : calls::all_calls()) {
        SCOPED_TRACE(call.name);
        call.run(desk);
        prepro_redefine_malloc(
            [](std::uint64_t, void* (*)(std::size_t)) -> void* { return nullptr; });
        const int status = call.run(desk);
        prepro_redefine_malloc(nullptr);
        EXPECT_EQ(status < 0, call.allocates == calls::Allocates::kYes) << status;
    }
}

// The hooks that are kept for hosts with a full set.
TEST(AllocationSweep, NoOperationCallsTheOtherHooks) {
    static int calls_of_others;
    calls_of_others = 0;
    const auto refuse = [](auto...) -> void* { return ++calls_of_others, nullptr; };
    const auto drop = [](auto...) { ++calls_of_others; };
    prepro_redefine_realloc(refuse);
    prepro_redefine_aligned_malloc(refuse);
    prepro_redefine_aligned_free(drop);
    prepro_redefine_gpu_malloc(refuse);
    prepro_redefine_gpu_free(drop);
    calls::Desk desk = calls::random_desk();
    for (const calls::Call& call : calls::all_calls()) EXPECT_GE(call.run(desk), 0) << call.name;
    prepro_redefine_realloc(nullptr);
    prepro_redefine_aligned_malloc(nullptr);
    prepro_redefine_aligned_free(nullptr);
    prepro_redefine_gpu_malloc(nullptr);
    prepro_redefine_gpu_free(nullptr);
    EXPECT_EQ(calls_of_others, 0);
}

#if !VEMOPREPRO_SANITIZED  // a sanitizer brings operators of its own
// With the library linked, the operators of the process are the library's: a container of the host
// counts.
TEST(AllocationSweep, TheOperatorsOfTheProcessAreTheLibrarys) {
    prepro_redefine_malloc(support::failing_malloc);
    prepro_redefine_free(support::counted_free);
    const long before = support::blocks_held;
    auto* block = new std::string;
    const long with_block = support::blocks_held;
    delete block;
    const long after = support::blocks_held;
    prepro_redefine_malloc(nullptr);
    prepro_redefine_free(nullptr);
    EXPECT_EQ(with_block, before + 1);
    EXPECT_EQ(after, before);
}
#endif

}  // namespace
