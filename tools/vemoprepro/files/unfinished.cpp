// A thread of its own waits for the signals, which every other thread blocks, removes what has been
// noted and lets the signal end the process as it would have done. So no work is done in a signal
// handler.
#include "files/unfinished.h"

#include <signal.h>
#include <unistd.h>

#include <ctime>
#include <exception>
#include <thread>
#include <utility>

namespace tool::files {
namespace {

void end_by_signal(int signal) {
    struct sigaction as_usual {};
    as_usual.sa_handler = SIG_DFL;
    sigaction(signal, &as_usual, nullptr);
    sigset_t only;
    sigemptyset(&only);
    sigaddset(&only, signal);
    pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
    raise(signal);
}

// The lock is kept to the end, so that nothing is made or published any more.
void remove_and_end(int signal) {
    unfinished().lock.lock();
    for (const std::string& path : unfinished().files) unlink(path.c_str());
    end_by_signal(signal);
}

struct Words {
    std::mutex lock;
    std::function<void()> say;
};

// Never destroyed, like unfinished().
Words& last_words() {
    static Words* const words = new Words;
    return *words;
}

void say_last_words() {
    last_words().lock.lock();
    try {
        if (last_words().say) last_words().say();
    } catch (const std::exception&) {
        // There is nobody left to tell.
    }
}

void wait_for_signals(sigset_t signals) {
    int signal = 0;
    while (sigwait(&signals, &signal) != 0) {
    }
    constexpr timespec kPatience = {10, 0};
    try {
        std::thread([signal] {
            say_last_words();
            remove_and_end(signal);
        }).detach();
        sigtimedwait(&signals, nullptr, &kPatience);
    } catch (const std::exception&) {
        // No thread: no words.
    }
    remove_and_end(signal);
}

}  // namespace

// Never destroyed: the signal thread may look at it until the process has ended.
Unfinished& unfinished() {
    static Unfinished* const all = new Unfinished;
    return *all;
}

LastWords::LastWords(std::function<void()> say) {
    const std::lock_guard guard(last_words().lock);
    last_words().say = std::move(say);
}

LastWords::~LastWords() {
    const std::lock_guard guard(last_words().lock);
    last_words().say = nullptr;
}

void remove_unfinished_on_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction now {};
        sigaction(signal, nullptr, &now);
        if (now.sa_handler != SIG_IGN) sigaddset(&signals, signal);
    }
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    // A pipe that nobody reads is a write error like any other.
    signal(SIGPIPE, SIG_IGN);
    unfinished();
    last_words();
    std::thread(wait_for_signals, signals).detach();
}

}  // namespace tool::files
