// A pool of threads that lives for one call: created, fed with tasks, joined, destroyed.
//
// Use: WorkerPool pool(n); pool.post(task) per band; pool.join().
// run_in_bands() below is that sequence for the usual case.
//
// A task that throws ends neither its thread nor the other tasks: join() rethrows the first
// exception once all tasks have run.
//
// Keep true: tasks write only what belongs to their own band. Nothing touches the destination on
// the calling thread between the first post() and join(), which makes all results visible.
#pragma once

#include <atomic>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <exception>
#include <thread>
#include <utility>
#include <vector>

#include "threads/bands.h"

namespace threads {

// An io_context that n threads run, rather than Boost's own thread_pool: should a thread or its
// bookkeeping fail to be created, the threads already started are released and joined before the
// error leaves the constructor, where thread_pool would wait for them for ever.
class WorkerPool {
  public:
    // Throws std::system_error or std::bad_alloc; no thread is left running then.
    explicit WorkerPool(int n)
        : context_(n), work_(context_.get_executor()), threads_(context_, n) {}

    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    // Queues a task; an idle thread takes the oldest. Throws std::bad_alloc.
    template <class Task>
    void post(Task&& task) {
        boost::asio::post(context_, std::forward<Task>(task));
    }

    // Waits until every posted task has run, ends the threads and throws what the first failing
    // task threw. No post() afterwards.
    void join() {
        work_.reset();
        threads_.join();
        threads_.rethrow_failure();
    }

  private:
    // Tasks still queued when the pool is destroyed without join() are dropped; running ones are
    // waited for, and what they throw is dropped, too.
    class Threads {
      public:
        Threads(boost::asio::io_context& context, int n);
        ~Threads();
        void join();
        void rethrow_failure() const;

      private:
        void run_tasks() noexcept;

        boost::asio::io_context& context_;
        std::vector<std::thread> threads_;
        std::atomic_flag failed_;
        std::exception_ptr failure_;  // of the task that set the flag; read after join()
    };

    boost::asio::io_context context_;
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work_;
    Threads threads_;
};

// Calls task(band) for every band, on n threads when n > 1 and inline otherwise. Throws what the
// first failing task throws; inline, the bands after it are left out.
template <class Task>
void run_in_bands(const std::vector<Band>& bands, int n, const Task& task) {
    if (n < 2) {
        for (const Band& band : bands) task(band);
        return;
    }
    WorkerPool pool(n);
    for (const Band& band : bands) {
        pool.post([&task, band] { task(band); });
    }
    pool.join();
}

}  // namespace threads
