// What must not be left behind when a signal ends the program: files that are not complete.
//
// Use: remove_unfinished_on_signals() before the first thread is started. Whoever makes such a file
// notes its path in unfinished() and takes it off again when it is complete or gone.
//
// Keep true: the lock is held from before a file is made until its path is noted, and in the same
// way while it is published or removed.
#pragma once

#include <functional>
#include <mutex>
#include <set>
#include <string>

namespace tool::files {

struct Unfinished {
    std::mutex lock;
    std::set<std::string> files;
};
Unfinished& unfinished();

// While there is one, the first signal has it called before anything is removed, by a thread of its
// own. What takes longer than ten seconds, or until a second signal, is cut short.
class LastWords {
  public:
    explicit LastWords(std::function<void()> say);
    // Waits for the end of the program when it is ending already.
    ~LastWords();
    LastWords(const LastWords&) = delete;
    LastWords& operator=(const LastWords&) = delete;
};

// SIGINT, SIGTERM and SIGHUP then remove all that is unfinished and end the program as usual.
void remove_unfinished_on_signals();

}  // namespace tool::files
