#include "threads/worker_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <new>
#include <sstream>
#include <string>
#include <thread>

#include "support/allocation_limit.h"

namespace {

std::string text(const std::vector<threads::Band>& bands) {
    std::ostringstream out;
    for (const auto& band : bands) out << "[" << band.first << "," << band.last << ")";
    return out.str();
}

TEST(Bands, CoverTheRowsAsTheLayoutSays) {
    EXPECT_EQ(threads::effective_threads(8, 120), 2);
    EXPECT_EQ(threads::effective_threads(8, 99), 1);
    EXPECT_EQ(threads::effective_threads(1, 5000), 1);
    EXPECT_EQ(threads::effective_threads(3, 5000), 3);
    EXPECT_EQ(text(threads::open_bands(120, 2)), "[0,60)[60,120)");
    EXPECT_EQ(text(threads::open_bands(101, 2)), "[0,50)[50,100)[100,101)");
    EXPECT_EQ(text(threads::closed_bands(101, 2)), "[0,50)[50,101)");
    EXPECT_EQ(text(threads::open_bands(3, 8)), "[0,3)");  // fewer rows than threads: no empty band
}

TEST(WorkerPool, RunsEveryTaskOnceAndShowsItsResults) {
    std::vector<int> rows(1000, 0);
    threads::run_in_bands(threads::open_bands(1000, 7), 7, [&](threads::Band band) {
        for (int y = band.first; y < band.last; ++y) ++rows[static_cast<std::size_t>(y)];
    });
    EXPECT_EQ(rows, std::vector<int>(1000, 1));
}

// What a task throws arrives where the call waits, and the other tasks run all the same.
TEST(WorkerPool, HandsTheFirstExceptionToWhoeverWaits) {
    const auto bands = threads::closed_bands(400, 4);
    for (const int threads : {1, 2, 4}) {
        std::atomic<int> done{0};
        const auto fail_at_300 = [&](threads::Band band) {
            if (band.first == 300) throw std::string("band 300");
            ++done;
        };
        EXPECT_THROW(threads::run_in_bands(bands, threads, fail_at_300), std::string) << threads;
        EXPECT_EQ(done, 3) << threads;
    }

    threads::WorkerPool pool(1);
    std::atomic<int> done{0};
    for (const int number : {1, 2}) pool.post([number] { throw number; });
    pool.post([&done] { ++done; });
    try {
        pool.join();
        ADD_FAILURE() << "nothing was thrown";
    } catch (int number) {
        EXPECT_EQ(number, 1);
    }
    EXPECT_EQ(done, 1);
}

// A pool that is left by an exception of its owner's drops what its tasks throw.
TEST(WorkerPool, DropsExceptionsWhenNobodyWaits) {
    std::atomic<bool> thrown{false};
    threads::WorkerPool pool(2);
    pool.post([&thrown] {
        thrown = true;
        throw std::string("nobody waits");
    });
    while (!thrown) std::this_thread::yield();
}

// A pool whose n-th allocation fails must neither hang nor leave a thread behind nor leak.
TEST(WorkerPool, FailsCleanlyAtEveryAllocation) {
    const auto bands = threads::open_bands(400, 4);
    std::atomic<int> done{0};
    const int allocations = support::fail_each_allocation([&] {
        try {
            threads::run_in_bands(bands, 4, [&](threads::Band) { ++done; });
            return 0;
        } catch (const std::bad_alloc&) {
            return -1;
        }
    });
    EXPECT_GT(allocations, 4);
}

}  // namespace
