// Every call of tests/calls/ on several threads at once, each on pages of its own: nothing in the
// library is shared between calls, and threaded calls do not meet in each other's pools. Under the
// thread sanitizer this is the test that a call has no state.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "calls/random_desk.h"

namespace {

using calls::Bytes;
using calls::Desk;

struct Outcome {
    int status;
    std::vector<int> numbers;
    Bytes bytes;

    friend bool operator==(const Outcome&, const Outcome&) = default;
};

Outcome outcome_of(const calls::Call& call, Desk& desk) {
    std::fill(std::begin(desk.numbers), std::end(desk.numbers), 0);
    const int status = call.run(desk);
    return {status,
            {std::begin(desk.numbers), std::end(desk.numbers)},
            {desk.result, desk.result + desk.result_size}};
}

TEST(ConcurrentCalls, GiveWhatSingleCallsGive) {
    constexpr std::size_t kThreads = 3;
    std::vector<Desk> desks(kThreads, calls::random_desk());
    std::vector<Outcome> expected;
    for (const calls::Call& call : calls::all_calls())
        expected.push_back(outcome_of(call, desks[0]));

    std::vector<std::vector<Outcome>> found(kThreads);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < kThreads; ++i) {
        threads.emplace_back([&desk = desks[i], &outcomes = found[i]] {
            for (const calls::Call& call : calls::all_calls())
                outcomes.push_back(outcome_of(call, desk));
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const auto& outcomes : found) {
        ASSERT_EQ(outcomes.size(), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_TRUE(outcomes[i] == expected[i]) << calls::all_calls()[i].name;
    }
}

}  // namespace
