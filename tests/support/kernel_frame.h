// The frame of kernel tests, which stand in namespace simd: rows of every length, at odd addresses,
// on every instruction set; and a kernel beside its plain twin.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "simd/pixels/padded_rows.h"
#include "support/every_target.h"
#include "support/random_page.h"

namespace support {

using Bytes = std::vector<std::uint8_t>;
using Words = std::vector<std::uint64_t>;

constexpr std::size_t kLongestRow = 3 * 64 + 7;  // three of the widest vectors, and a rest

// Calls check(width, random) for every width on every instruction set, until one fails.
template <class Check>
void on_every_width(std::size_t least, std::size_t most, const Check& check) {
    on_every_target([&] {
        Random random(11);
        for (std::size_t width = least; width <= most; ++width) {
            SCOPED_TRACE(testing::Message() << "width " << width);
            check(width, random);
            if (testing::Test::HasFatalFailure()) return;
        }
    });
}
template <class Check>
void on_every_width(std::size_t least, const Check& check) {
    on_every_width(least, kLongestRow, check);
}

// On every instruction set, calls check(colours) with all pixels of one red, in all greens and
// blues, for reds `step` apart. The emulated vectors are slow; a few reds tell as much about them.
template <class Check>
void on_colours(std::size_t step, const Check& check) {
    on_every_target([&] {
        Bytes colours(std::size_t{3} * 65536);
        const bool emulated = HWY_STATIC_TARGET == HWY_EMU128;
        for (std::size_t red = 0; red < 256; red += emulated ? 51 : step) {
            for (std::size_t i = 0; i < colours.size(); i += 3) {
                colours[i] = static_cast<std::uint8_t>(red);
                colours[i + 1] = static_cast<std::uint8_t>(i / 3 >> 8);
                colours[i + 2] = static_cast<std::uint8_t>(i / 3);
            }
            check(colours);
        }
    });
}

// Noise between two values, of which a share is 0; `margin` bytes of it before and behind. It
// begins at any address and ends where its memory ends.
class Row {
  public:
    Row(std::size_t size, Random& random, int low = 0, int high = 255, double empty = 0,
        std::size_t margin = 0)
        : first_(margin + static_cast<std::size_t>(random.between(0, 15))),
          bytes_(first_ + size + margin) {
        for (auto& value : bytes_) {
            const int tone = random.between(low, high);
            value = static_cast<std::uint8_t>(random.chance(empty) ? 0 : tone);
        }
    }
    std::uint8_t* data() { return bytes_.data() + first_; }
    operator std::uint8_t*() { return data(); }

  private:
    std::size_t first_;
    Bytes bytes_;
};

constexpr std::size_t kRoom = simd::kRowPad + 64;  // a rest of 64, and the padding behind it

// Rows with the padding that kernels on three or four rows ask for.
class PaddedRows {
  public:
    PaddedRows(std::size_t count, std::size_t width, Random& random, int high = 255,
               double empty = 0) {
        for (std::size_t i = 0; i < count; ++i)
            rows_.emplace_back(width, random, 0, high, empty, kRoom);
    }
    std::uint8_t* operator[](std::size_t i) { return rows_[i]; }
    simd::ThreeRows three(std::size_t i = 0) { return {rows_[i], rows_[i + 1], rows_[i + 2]}; }
    simd::FourRows four() { return {{rows_[0], rows_[1], rows_[2], rows_[3]}}; }

  private:
    std::vector<Row> rows_;
};

// Words of which bit x is set with a probability; none beyond `pixels`.
inline Words random_marks(std::size_t pixels, double density, Random& random) {
    Words marks((pixels + 63) / 64);
    for (std::size_t x = 0; x < pixels; ++x)
        if (random.chance(density)) marks[x / 64] |= std::uint64_t{1} << (x % 64);
    return marks;
}

// In such a call: the kernel, or its plain form.
#define TWIN(name) (fast ? simd::name : simd::plain::name)

// Calls call(false, out) for the plain form and call(true, out) for the kernel, each with outputs
// out[i] of `size` values that begin as the same noise, and expects the same values, results and
// surroundings. A kernel that is given room may leave anything in as many values around an output.
template <class Value = std::uint8_t, class Call>
void expect_twins(std::size_t outputs, std::size_t size, Random& random, const Call& call,
                  std::size_t room = 0) {
    constexpr std::size_t kGuard = 64;
    const std::size_t pitch = size + 2 * (kGuard + room);
    std::vector<Value> before(outputs * pitch);
    for (auto& value : before) value = static_cast<Value>(random.byte());
    const auto left_by = [&](bool fast) {
        std::vector<Value> values = before;
        std::vector<Value*> out;
        for (std::size_t i = 0; i < outputs; ++i)
            out.push_back(values.data() + i * pitch + kGuard + room);
        std::uint64_t result = 0;
        if constexpr (std::is_void_v<decltype(call(fast, out))>) {
            call(fast, out);
        } else {
            result = static_cast<std::uint64_t>(call(fast, out));
        }
        for (Value* const first : out) {
            std::fill_n(first - room, room, Value{});
            std::fill_n(first + size, room, Value{});
        }
        return std::pair(values, result);
    };
    const auto [expected, result] = left_by(false);
    const auto [values, fast_result] = left_by(true);
    ASSERT_EQ(fast_result, result);
    for (std::size_t i = 0; i < values.size(); ++i)
        ASSERT_EQ(values[i], expected[i])
            << "output " << i / pitch << ", value "
            << static_cast<std::ptrdiff_t>(i % pitch) - static_cast<std::ptrdiff_t>(kGuard + room);
}

}  // namespace support

namespace simd {
using namespace support;
}
