// The bytes of a fuzz input, taken one after the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace fuzz {

using Bytes = std::vector<std::uint8_t>;

inline void check(bool holds) {
    if (!holds) std::abort();
}

class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    // 0 .. 255; 0 where nothing is left.
    int next() {
        if (size_ == 0) return 0;
        --size_;
        return *data_++;
    }
    int next_below(int limit) { return next() % limit; }

    // Bytes to the end of the input, zeros behind it.
    Bytes take(std::size_t count) {
        Bytes result(count);
        for (auto& value : result) value = static_cast<std::uint8_t>(next());
        return result;
    }
    // What is left, over and over, so that short inputs are images, too.
    Bytes repeat(std::size_t count) const {
        Bytes result(count, 0xA6);
        for (std::size_t i = 0; size_ > 0 && i < count; ++i) result[i] = data_[i % size_];
        return result;
    }

  private:
    const std::uint8_t* data_;
    std::size_t size_;
};

}  // namespace fuzz
