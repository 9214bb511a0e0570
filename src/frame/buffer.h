// An owned array of plain values straight from the memory hooks: the work buffer of the families.
//
// Use: Buffer<int> bins(n) leaves the values uninitialised, which is what a buffer that is written
// before it is read wants; Buffer<int>::zeroed(n) clears them.
//
// Keep true: T is trivial and needs no more alignment than malloc gives (16 bytes).
#pragma once

#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

#include "frame/memory.h"

namespace frame {

template <class T>
class Buffer {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_default_constructible_v<T>);
    static_assert(alignof(T) <= 16);

  public:
    Buffer() = default;

    // Throws std::bad_alloc when the hook gives no block or the size overflows. Zero values need no
    // block.
    explicit Buffer(std::size_t count) : size_(count) {
        if (count == 0) return;
        if (count > std::numeric_limits<std::size_t>::max() / 2 / sizeof(T)) throw std::bad_alloc();
        data_ = static_cast<T*>(allocate(count * sizeof(T)));
        if (data_ == nullptr) throw std::bad_alloc();
    }

    static Buffer zeroed(std::size_t count) {
        Buffer buffer(count);
        if (count != 0) std::memset(buffer.data_, 0, count * sizeof(T));
        return buffer;
    }

    Buffer(Buffer&& other) noexcept
        : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)) {}

    Buffer& operator=(Buffer&& other) noexcept {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        return *this;
    }

    ~Buffer() { release(data_); }

    T* data() { return data_; }
    const T* data() const { return data_; }
    std::size_t size() const { return size_; }

    T& operator[](std::size_t index) { return data_[index]; }
    const T& operator[](std::size_t index) const { return data_[index]; }

    T* begin() { return data_; }
    T* end() { return data_ + size_; }
    const T* begin() const { return data_; }
    const T* end() const { return data_ + size_; }

  private:
    T* data_ = nullptr;
    std::size_t size_ = 0;
};

}  // namespace frame
