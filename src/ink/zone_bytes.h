// The bytes of a bitonal row that hold the columns of a zone, copied out of the row and back
// without the pixels beside the zone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ink {

class ZoneBytes {
  public:
    // Columns x0 <= x < x1, of which there is at least one.
    ZoneBytes(std::int32_t x0, std::int32_t x1)
        : ZoneBytes(static_cast<std::size_t>(x0 / 8),
                    static_cast<std::size_t>((std::int64_t{x1} + 7) / 8 - x0 / 8), 0xFF >> (x0 % 8),
                    0xFF << (7 - (x1 - 1) % 8)) {}

    std::size_t size() const { return size_; }

    // The bytes from byte `at` of these on, at most `most` of them.
    ZoneBytes part(std::size_t at, std::size_t most) const {
        const bool last = size_ - at <= most;
        return {first_ + at, last ? size_ - at : most, at == 0 ? head_ : 0xFF, last ? tail_ : 0xFF};
    }

    // Copies the bytes; the pixels beside the zone become white.
    void load(std::uint8_t* to, const std::uint8_t* row) const {
        copy(to, row + first_, size_);
        if (head_ != 0xFF) to[0] &= head_;
        if (tail_ != 0xFF) to[size_ - 1] &= tail_;
    }

    // Copies the bytes back; the pixels beside the zone stay.
    void store(std::uint8_t* row, const std::uint8_t* from) const {
        std::uint8_t* const to = row + first_;
        if ((head_ & tail_) == 0xFF) return copy(to, from, size_);
        const std::size_t last = size_ - 1;
        replace(to[0], from[0], head_);
        if (last > 1) std::memcpy(to + 1, from + 1, last - 1);
        if (last > 0) replace(to[last], from[last], tail_);
    }

  private:
    // The masks of a single byte are both.
    ZoneBytes(std::size_t first, std::size_t size, int head, int tail)
        : first_(first),
          size_(size),
          head_(static_cast<std::uint8_t>(size == 1 ? head & tail : head)),
          tail_(static_cast<std::uint8_t>(size == 1 ? head & tail : tail)) {}

    // A copy of a size that the compiler knows needs no call. Most strips of columns have this one.
    static void copy(std::uint8_t* to, const std::uint8_t* from, std::size_t size) {
        constexpr std::size_t kLine = 64;
        if (size == kLine) {
            std::memcpy(to, from, kLine);
        } else {
            std::memcpy(to, from, size);
        }
    }

    static void replace(std::uint8_t& byte, std::uint8_t value, std::uint8_t mask) {
        byte = static_cast<std::uint8_t>((byte & ~mask) | (value & mask));
    }

    std::size_t first_;  // byte of the row
    std::size_t size_;   // bytes
    std::uint8_t head_;  // the zone's pixels in the first byte
    std::uint8_t tail_;  // and in the last one
};

}  // namespace ink
