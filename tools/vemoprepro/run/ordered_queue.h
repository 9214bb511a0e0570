// Pages side by side, results in order.
//
// Use: OrderedQueue<Task, Result>(window, next, work).run(jobs, deliver). `next` gives the tasks
// one by one, an empty optional at the end; `work` runs on `jobs` threads; `deliver` runs on the
// calling thread, for each result in the order of the tasks.
//
// Keep true: at most `window` (>= 1) tasks are between `next` and the end of their delivery,
// whatever their number; `next` is called by one thread at a time; none of the three may throw but
// for memory that is used up, which ends the run and is thrown again from here.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace tool::run {

template <typename Task, typename Result>
class OrderedQueue {
  public:
    using Next = std::function<std::optional<Task>()>;
    using Work = std::function<Result(Task&)>;
    using Deliver = std::function<void(Result&)>;

    OrderedQueue(std::size_t window, Next next, Work work)
        : window_(window), next_(std::move(next)), work_(std::move(work)) {}

    void run(unsigned jobs, const Deliver& deliver) {
        std::vector<std::jthread> threads;
        try {
            while (threads.size() < jobs) threads.emplace_back([this] { serve(); });
            while (std::optional<Result> result = take()) {
                deliver(*result);
                result.reset();
                delivered_one();
            }
        } catch (...) {
            stop(std::current_exception());
        }
        threads.clear();
        if (error_) std::rethrow_exception(error_);
    }

  private:
    void serve() {
        try {
            std::size_t number = 0;
            while (std::optional<Task> task = fetch(number)) {
                Result result = work_(*task);
                task.reset();
                put(number, std::move(result));
            }
        } catch (...) {
            stop(std::current_exception());
        }
    }

    // The next task and its number, once there is room for it.
    std::optional<Task> fetch(std::size_t& number) {
        const std::lock_guard source_guard(source_lock_);
        {
            std::unique_lock guard(lock_);
            changed_.wait(guard, [this] { return ended_ || issued_ < delivered_ + window_; });
            if (ended_) return std::nullopt;
        }
        std::optional<Task> task = next_();
        const std::lock_guard guard(lock_);
        if (task) {
            number = issued_++;
        } else {
            ended_ = true;
        }
        changed_.notify_all();
        return task;
    }

    void put(std::size_t number, Result result) {
        const std::lock_guard guard(lock_);
        done_.emplace(number, std::move(result));
        changed_.notify_all();
    }

    std::optional<Result> take() {
        std::unique_lock guard(lock_);
        changed_.wait(guard, [this] {
            return error_ || done_.count(delivered_) || (ended_ && delivered_ == issued_);
        });
        if (error_ || !done_.count(delivered_)) return std::nullopt;
        return std::move(done_.extract(delivered_).mapped());
    }

    void delivered_one() {
        const std::lock_guard guard(lock_);
        ++delivered_;
        changed_.notify_all();
    }

    void stop(std::exception_ptr error) {
        const std::lock_guard guard(lock_);
        if (!error_) error_ = std::move(error);
        ended_ = true;
        changed_.notify_all();
    }

    const std::size_t window_;
    const Next next_;
    const Work work_;
    std::mutex source_lock_;
    std::mutex lock_;
    std::condition_variable changed_;
    std::map<std::size_t, Result> done_;
    std::size_t issued_ = 0;
    std::size_t delivered_ = 0;
    bool ended_ = false;
    std::exception_ptr error_;
};

}  // namespace tool::run
