// The first pixel of a component in raster order has no ink to its left, nor above it to the left,
// straight or to the right. The pixels without are found 64 at a time. From each the ink is
// flooded, row by row in 64-bit words around it, until it has more pixels than a speck, or touches
// ink above the row that it started from, or is complete. In the first case it is no speck, in the
// second another pixel is its first, and in the last all its pixels are at hand.
//
// A component with a pixel outside the words has more than 31 inside them, on the way there.
#include "cleaning/specks.h"

#include <bit>
#include <cstddef>
#include <cstring>

namespace cleaning {
namespace {

constexpr std::int32_t kWordPixels = 64;
constexpr std::int32_t kBefore = kMaxSpeckArea;  // columns of a window before its first pixel
constexpr std::int32_t kRows = kMaxSpeckArea + 1;

std::uint64_t load_word(const std::uint8_t* bytes) {
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof(word));
    if constexpr (std::endian::native == std::endian::little) word = __builtin_bswap64(word);
    return word;
}

std::uint64_t widened(std::uint64_t ink) {
    return ink | ink << 1 | ink >> 1;
}

// Rows of a page by words, the leftmost pixel in the most significant bit, paper around.
class Words {
  public:
    explicit Words(common::BitonalView page)
        : page_(page), bytes_(static_cast<std::int32_t>(common::bitonal_bytes(page.width))) {}

    // The 64 pixels from any x on.
    std::uint64_t at(std::int32_t x, std::int32_t y) const {
        if (y < 0 || y >= page_.height) return 0;
        const std::uint8_t* const row = page_.row(y);
        if (x < 0 || x / 8 + 9 > bytes_ || x + kWordPixels > page_.width) return at_end(row, x);
        const int offset = x % 8;
        const std::uint8_t* const from = row + x / 8;
        return load_word(from) << offset | static_cast<std::uint64_t>(from[8] >> (8 - offset));
    }

    // The same for an x that is a multiple of 64.
    std::uint64_t aligned(std::int32_t x, const std::uint8_t* row) const {
        return x + kWordPixels <= page_.width ? load_word(row + x / 8) : at_end(row, x);
    }

  private:
    std::uint64_t at_end(const std::uint8_t* row, std::int32_t x) const {
        const std::int32_t first = x >> 3;  // rounds down, also left of the row
        const int offset = x & 7;
        std::uint64_t word = 0;
        for (int i = 0; i < 9; ++i) {
            const std::int32_t index = first + i;
            const std::uint64_t value = index >= 0 && index < bytes_ ? row[index] : 0;
            const int left = 56 - 8 * i + offset;
            word |= left >= 0 ? value << left : value >> -left;
        }
        const std::int32_t inside = page_.width - x;  // at least 1
        return inside >= kWordPixels ? word : word & ~(~std::uint64_t{0} >> inside);
    }

    common::BitonalView page_;
    std::int32_t bytes_;
};

// The ink that is connected to a first pixel, in a window of words.
class Speck {
  public:
    // Whether the pixel at (x, y) begins a component of at most `max_area` pixels.
    bool grow(const Words& page, std::int32_t x, std::int32_t y, std::int32_t max_area) {
        page_ = &page;
        x_ = x - kBefore;
        y_ = y;
        rows_ = 1;
        ink_[0] = page.at(x_, y);
        area_ = std::countl_one(ink_[0] << kBefore);
        if (area_ == 0 || area_ > max_area) return false;
        found_[0] = ~(~std::uint64_t{0} >> area_) >> kBefore;
        const std::uint64_t above = page.at(x_, y - 1);
        if ((widened(found_[0]) & above) != 0) return false;
        max_area_ = max_area;
        while (grow_down()) {
            if (area_ > max_area) return false;
            // Arms that lead up again are followed before the next row down.
            if (!grow_up() || (widened(found_[0]) & above) != 0) return false;
        }
        return true;
    }

    std::int32_t x() const { return x_; }
    std::int32_t y() const { return y_; }
    std::int32_t rows() const { return rows_; }
    std::uint64_t row(std::int32_t i) const { return found_[i]; }

  private:
    // Takes what the last row touches in the next one; false when there is nothing.
    bool grow_down() {
        if (rows_ == kRows) return false;
        const std::uint64_t reached = widened(found_[rows_ - 1]);
        const std::uint64_t below = page_->at(x_, y_ + rows_);
        if ((reached & below) == 0) return false;
        ink_[rows_] = below;
        found_[rows_] = 0;
        ++rows_;
        take(rows_ - 1, reached);
        return true;
    }

    // Takes the ink of a row that is connected, along the row, to what is reached.
    bool take(std::int32_t i, std::uint64_t reached) {
        std::uint64_t found = found_[i] | (reached & ink_[i]);
        if (found == found_[i]) return false;
        for (std::uint64_t before = 0; found != before;) {
            before = found;
            found = widened(found) & ink_[i];
        }
        area_ += std::popcount(found) - std::popcount(found_[i]);
        found_[i] = found;
        return true;
    }

    // Follows the ink through the rows so far until it is complete; false when it becomes too much.
    bool grow_up() {
        for (bool grown = true; grown;) {
            grown = false;
            for (std::int32_t i = rows_ - 2; i >= 0; --i) {
                grown |= take(i, widened(found_[i + 1]));
            }
            if (grown) {
                for (std::int32_t i = 1; i < rows_; ++i) take(i, widened(found_[i - 1]));
            }
            if (area_ > max_area_) return false;
        }
        return true;
    }

    const Words* page_ = nullptr;
    std::int32_t x_ = 0;
    std::int32_t y_ = 0;
    std::int32_t rows_ = 0;
    std::int32_t area_ = 0;
    std::int32_t max_area_ = 0;
    std::uint64_t ink_[kRows];
    std::uint64_t found_[kRows];
};

// Calls change(byte of the row, bits of the speck in it) for the bytes of a row of a speck.
template <class Change>
void change_row(std::uint8_t* row, std::int32_t x, std::uint64_t ink, Change change) {
    if (ink == 0) return;
    const int blank = std::countl_zero(ink);
    std::uint8_t* byte = row + (x + blank) / 8;
    for (std::uint64_t bits = ink << blank >> ((x + blank) % 8); bits != 0; bits <<= 8, ++byte) {
        change(*byte, static_cast<std::uint8_t>(bits >> 56));
    }
}

void erase(common::MutableBitonalView page, const Speck& speck) {
    for (std::int32_t i = 0; i < speck.rows(); ++i) {
        change_row(
            page.row(speck.y() + i), speck.x(), speck.row(i),
            [](std::uint8_t& byte, int bits) { byte = static_cast<std::uint8_t>(byte & ~bits); });
    }
}

void draw(common::MutableBitonalView page, const Speck& speck) {
    for (std::int32_t i = 0; i < speck.rows(); ++i) {
        change_row(
            page.row(speck.y() + i), speck.x(), speck.row(i),
            [](std::uint8_t& byte, int bits) { byte = static_cast<std::uint8_t>(byte | bits); });
    }
}

// Calls visit(speck) for every speck of the page, once or, with arms that begin in the same row,
// again unless it has been erased.
template <class Visit>
void for_each_speck(common::BitonalView page, std::int32_t max_area, Visit visit) {
    const Words words(page);
    Speck speck;
    for (std::int32_t y = 0; y < page.height; ++y) {
        const std::uint8_t* const row = page.row(y);
        const std::uint8_t* const above_row = y > 0 ? page.row(y - 1) : nullptr;
        const auto above = [&](std::int32_t x) -> std::uint64_t {
            return above_row != nullptr && x < page.width ? words.aligned(x, above_row) : 0;
        };
        std::uint64_t left = 0;  // the pixel before the word
        for (std::int32_t x = 0; x < page.width; x += kWordPixels) {
            const std::uint64_t ink = words.aligned(x, row);
            const std::uint64_t begins = ink & ~(ink >> 1 | left << 63);
            left = ink & 1;
            if (begins == 0) continue;
            const std::uint64_t up = above(x);
            std::uint64_t first = begins & ~widened(up);
            if (first == 0) continue;
            if (x > 0 && above_row != nullptr && (above_row[x / 8 - 1] & 1) != 0) {
                first &= ~(std::uint64_t{1} << 63);
            }
            if ((first & 1) != 0 && above(x + kWordPixels) >> 63 != 0) first &= ~std::uint64_t{1};
            while (first != 0) {
                const int position = std::countl_zero(first);
                first &= ~(std::uint64_t{1} << 63 >> position);
                if (speck.grow(words, x + position, y, max_area)) visit(speck);
            }
        }
    }
}

}  // namespace

void erase_specks(common::MutableBitonalView page, std::int32_t max_area) {
    for_each_speck(page, max_area, [page](const Speck& speck) { erase(page, speck); });
}

void restore_specks(common::MutableBitonalView specks, common::BitonalView near,
                    std::int32_t max_area, common::MutableBitonalView page) {
    const Words near_words(near);
    for_each_speck(specks, max_area, [&](const Speck& speck) {
        for (std::int32_t i = 0; i < speck.rows(); ++i) {
            if ((near_words.at(speck.x(), speck.y() + i) & speck.row(i)) == 0) continue;
            draw(page, speck);
            erase(specks, speck);
            return;
        }
    });
}

}  // namespace cleaning
