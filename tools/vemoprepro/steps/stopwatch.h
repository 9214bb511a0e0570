// The wall-clock time since an object of it was made.
#pragma once

#include <chrono>

namespace tool::steps {

class Stopwatch {
  public:
    double seconds() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    }

  private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace tool::steps
