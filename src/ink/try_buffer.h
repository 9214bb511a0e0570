// A work buffer whose allocation fails without an exception, for the operations that report a
// failure by their result.
//
// Use: TryBuffer<std::int32_t> runs(width + 1); if (!runs) return -1;
#pragma once

#include <cstddef>
#include <limits>
#include <type_traits>
#include <utility>

#include "frame/memory.h"

namespace ink {

template <class T>
class TryBuffer {
    static_assert(std::is_trivially_copyable_v<T> && alignof(T) <= 16);

  public:
    TryBuffer() = default;

    // Uninitialised values, or none. A count of 0 gives a block too.
    explicit TryBuffer(std::size_t count) {
        if (count > std::numeric_limits<std::size_t>::max() / 2 / sizeof(T)) return;
        data_ = static_cast<T*>(frame::allocate(count == 0 ? 1 : count * sizeof(T)));
    }
    TryBuffer(TryBuffer&& other) noexcept : data_(std::exchange(other.data_, nullptr)) {}
    TryBuffer& operator=(TryBuffer&& other) noexcept {
        std::swap(data_, other.data_);
        return *this;
    }
    ~TryBuffer() { frame::release(data_); }

    explicit operator bool() const { return data_ != nullptr; }
    T* data() const { return data_; }

  private:
    T* data_ = nullptr;
};

}  // namespace ink
