// A ring of rows: the last few rows of per-pixel values that a pass needs at once.
//
// Use: write a row at write_row(), then push(); oldest_row() is the one that goes next, by pop() or
// by being overwritten once the ring is full.
//
// For window passes over rows to come; nothing in the library calls it yet.
//
// Keep true: capacity and row length are at least 1. The rows are owned; an object is not copied.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/memory.h"

namespace common {

template <class T>
class CircularBuffer2D;

template <>
class CircularBuffer2D<int> {
  public:
    // All rows zero. Throws const char* when the memory cannot be had.
    CircularBuffer2D(std::int32_t row_length, std::int32_t capacity)
        : row_length_(row_length), capacity_(capacity) {
        const auto bytes =
            static_cast<std::size_t>(std::int64_t{row_length} * capacity) * sizeof(int);
        base_ = static_cast<int*>(frame::allocate(bytes));
        if (base_ == nullptr) {
            throw static_cast<const char*>(
                "error while constructing CircularBuffer2D, could not allocate enough memory");
        }
        std::memset(base_, 0, bytes);
        reset();
    }
    CircularBuffer2D(const CircularBuffer2D&) = delete;
    CircularBuffer2D& operator=(const CircularBuffer2D&) = delete;
    ~CircularBuffer2D() { frame::release(base_); }

    // Takes the row at write_row() in. A full ring gives up its oldest row for it.
    void push() {
        if (count_ < capacity_) ++count_;
        if (write_index_ < capacity_) {
            ++write_index_;
            write_row_ += row_length_;
            previous_row_ = write_index_ == 2 ? base_ : previous_row_ + row_length_;
        } else {
            write_index_ = 1;
            write_row_ = base_;
            previous_row_ = base_ + std::ptrdiff_t{capacity_ - 1} * row_length_;
        }
        if (count_ == capacity_) {
            oldest_row_ = write_row_;
            oldest_index_ = write_index_;
        }
    }

    // Drops the oldest row; nothing when there is none.
    void pop() {
        if (count_ <= 0) return;
        if (--count_ == 0) {
            reset();
        } else if (oldest_index_ < capacity_) {
            ++oldest_index_;
            oldest_row_ += row_length_;
        } else {
            oldest_index_ = 1;
            oldest_row_ = base_;
        }
    }

    int* write_row() const { return write_row_; }
    int* previous_row() const { return previous_row_; }
    int* oldest_row() const { return oldest_row_; }
    std::int32_t count() const { return count_; }
    std::int32_t capacity() const { return capacity_; }
    std::int32_t row_length() const { return row_length_; }

  private:
    void reset() {
        oldest_row_ = previous_row_ = write_row_ = base_;
        write_index_ = oldest_index_ = 1;
    }

    int* base_ = nullptr;
    int* oldest_row_ = nullptr;
    int* previous_row_ = nullptr;
    int* write_row_ = nullptr;
    std::int32_t count_ = 0;
    std::int32_t row_length_;
    std::int32_t capacity_;
    std::int32_t write_index_ = 1;  // slots count from 1
    std::int32_t oldest_index_ = 1;
};

}  // namespace common
