// A destination with known bytes before and behind it: what a call writes outside shows.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace support {

class GuardedBuffer {
  public:
    static constexpr std::size_t kGuard = 64;
    static constexpr std::uint8_t kGuardByte = 0xA5;

    explicit GuardedBuffer(std::size_t size, std::uint8_t fill = 0x5C)
        : size_(size), bytes_(size + 2 * kGuard, kGuardByte) {
        std::fill_n(bytes_.begin() + kGuard, size, fill);
    }

    explicit GuardedBuffer(const std::vector<std::uint8_t>& contents) : size_(contents.size()) {
        bytes_.assign(kGuard, kGuardByte);
        bytes_.insert(bytes_.end(), contents.begin(), contents.end());
        bytes_.insert(bytes_.end(), kGuard, kGuardByte);
    }

    std::uint8_t* data() { return bytes_.data() + kGuard; }
    std::size_t size() const { return size_; }
    std::vector<std::uint8_t> contents() const {
        const auto begin = bytes_.begin() + kGuard;
        return {begin, begin + static_cast<std::ptrdiff_t>(size_)};
    }
    bool guards_intact() const {
        const auto guarded = [](std::uint8_t value) { return value == kGuardByte; };
        return std::all_of(bytes_.begin(), bytes_.begin() + kGuard, guarded) &&
               std::all_of(bytes_.end() - kGuard, bytes_.end(), guarded);
    }

  private:
    std::size_t size_;
    std::vector<std::uint8_t> bytes_;
};

}  // namespace support
