#include "threads/worker_pool.h"

namespace threads {

namespace {

// Stops and joins whatever was started when the constructor below is left by an exception.
class StopOnFailure {
  public:
    StopOnFailure(boost::asio::io_context& context, std::vector<std::thread>& threads)
        : context_(context), threads_(threads) {}
    ~StopOnFailure() {
        if (!armed_) return;
        context_.stop();
        for (std::thread& thread : threads_) thread.join();
    }
    void disarm() { armed_ = false; }

  private:
    boost::asio::io_context& context_;
    std::vector<std::thread>& threads_;
    bool armed_ = true;
};

}  // namespace

WorkerPool::Threads::Threads(boost::asio::io_context& context, int n) : context_(context) {
    StopOnFailure guard(context_, threads_);
    threads_.reserve(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
        threads_.emplace_back([this] { run_tasks(); });
    }
    guard.disarm();
}

WorkerPool::Threads::~Threads() {
    context_.stop();
    join();
}

void WorkerPool::Threads::join() {
    for (std::thread& thread : threads_) thread.join();
    threads_.clear();
}

void WorkerPool::Threads::rethrow_failure() const {
    if (failure_ != nullptr) std::rethrow_exception(failure_);
}

// What a task throws leaves run(), which then goes on with the next task.
void WorkerPool::Threads::run_tasks() noexcept {
    for (;;) {
        try {
            context_.run();
            return;
        } catch (...) {
            if (!failed_.test_and_set()) failure_ = std::current_exception();
        }
    }
}

}  // namespace threads
