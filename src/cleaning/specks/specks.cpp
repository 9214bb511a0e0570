// The first pixel of a component in raster order has no ink to its left, nor above it to the left,
// straight or to the right. The pixels without are found 64 at a time. From each the ink is
// flooded, row by row in 64-bit words around it, until it has more pixels than a speck, or touches
// ink above the row that it started from, or is complete. In the first case it is no speck, in the
// second another pixel is its first, and in the last all its pixels are at hand.
//
// A component with a pixel outside the words has more than 31 inside them, on the way there.
#include "cleaning/specks/specks.h"

#include <bit>

#include "common/byte_order.h"
#include "frame/buffer.h"

namespace cleaning {
namespace {

constexpr std::int32_t kWordPixels = 64;
constexpr std::int32_t kBefore = kMaxSpeckArea;     // columns of a window before its first pixel
constexpr std::int32_t kAbove = kMaxSpeckArea - 1;  // rows of a speck above any pixel of it
constexpr std::int32_t kRows = kAbove + kMaxSpeckArea + 1;

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
        return common::load_big_endian(from) << offset |
               static_cast<std::uint64_t>(from[8] >> (8 - offset));
    }

    // The same for an x that is a multiple of 64.
    std::uint64_t aligned(std::int32_t x, const std::uint8_t* row) const {
        return x + kWordPixels <= page_.width ? common::load_big_endian(row + x / 8)
                                              : at_end(row, x);
    }

    // Ink and its neighbours to both sides: those beyond the word too.
    std::uint64_t widened_at(std::int32_t x, const std::uint8_t* row) const {
        std::uint64_t ink = widened(aligned(x, row));
        if (x > 0) ink |= static_cast<std::uint64_t>(row[x / 8 - 1] & 1) << 63;
        const std::int32_t next = x + kWordPixels;
        if (next < page_.width) ink |= static_cast<std::uint64_t>(row[next / 8] >> 7);
        return ink;
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

// The ink that is connected to a pixel, in a window of words: rows first() .. last() of the window.
class Speck {
  public:
    // Throws std::bad_alloc.
    Speck() = default;

    // Whether the pixel at (x, y) begins a component of at most `max_area` pixels.
    bool grow(const Words& page, std::int32_t x, std::int32_t y, std::int32_t max_area) {
        move_to(page, x, y);
        const int length = std::countl_one(ink_[kAbove] << kBefore);
        if (length == 0 || length > max_area) return false;
        found_[kAbove] = ~(~std::uint64_t{0} >> length) >> kBefore;
        area_ = length;
        const std::uint64_t above = page.at(x_, y - 1);
        if ((widened(found_[kAbove]) & above) != 0) return false;
        while (reach(1)) {
            // Arms that lead up again are followed before the next row down. Most rows lead to
            // none.
            bool grown = take(last_ - 1, widened(found_[last_]));
            while (grown && area_ <= max_area) {
                grown = sweep_up();
                grown |= sweep_down();
            }
            if (area_ > max_area || (widened(found_[kAbove]) & above) != 0) return false;
        }
        return true;
    }

    // Takes all that is connected to the ink pixel at (x, y), which must belong to a speck.
    void gather(const Words& page, std::int32_t x, std::int32_t y) {
        move_to(page, x, y);
        found_[kAbove] = 0;
        take(kAbove, std::uint64_t{1} << 63 >> kBefore);
        for (bool grown = true; grown;) {
            while (reach(1)) {
            }
            while (reach(-1)) {
            }
            grown = sweep_up();
            grown |= sweep_down();
        }
    }

    // Calls visit(row of the page, column of the most significant bit, bits).
    template <class Visit>
    void for_each_row(Visit visit) const {
        for (std::int32_t i = first_; i <= last_; ++i) visit(y_ + i, x_, found_[i]);
    }

  private:
    void move_to(const Words& page, std::int32_t x, std::int32_t y) {
        page_ = &page;
        x_ = x - kBefore;
        y_ = y - kAbove;
        first_ = last_ = kAbove;
        ink_[kAbove] = page.at(x_, y);
    }

    // Takes what the last (1) or first (-1) row touches beyond it; false when that is nothing.
    bool reach(std::int32_t step) {
        std::int32_t& end = step > 0 ? last_ : first_;
        const std::uint64_t reached = widened(found_[end]);
        const std::uint64_t beyond = page_->at(x_, y_ + end + step);
        if ((reached & beyond) == 0) return false;
        end += step;
        ink_[end] = beyond;
        found_[end] = 0;
        take(end, reached);
        return true;
    }

    // Takes the ink of a row that is connected, along the row, to what is reached; false when all
    // of that has been found before.
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

    bool sweep_up() {
        bool grown = false;
        for (std::int32_t i = last_ - 1; i >= first_; --i) {
            grown |= take(i, widened(found_[i + 1]));
        }
        return grown;
    }

    bool sweep_down() {
        bool grown = false;
        for (std::int32_t i = first_ + 1; i <= last_; ++i) {
            grown |= take(i, widened(found_[i - 1]));
        }
        return grown;
    }

    const Words* page_ = nullptr;
    std::int32_t x_ = 0;  // of the most significant bits
    std::int32_t y_ = 0;  // of row 0 of the window
    std::int32_t first_ = 0;
    std::int32_t last_ = 0;
    std::int32_t area_ = 0;
    frame::Buffer<std::uint64_t> window_{2 * kRows};
    std::uint64_t* const ink_ = window_.data();
    std::uint64_t* const found_ = ink_ + kRows;
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
    speck.for_each_row([page](std::int32_t y, std::int32_t x, std::uint64_t ink) {
        change_row(page.row(y), x, ink, [](std::uint8_t& byte, int bits) {
            byte = static_cast<std::uint8_t>(byte & ~bits);
        });
    });
}

void draw(common::MutableBitonalView page, const Speck& speck) {
    speck.for_each_row([page](std::int32_t y, std::int32_t x, std::uint64_t ink) {
        change_row(page.row(y), x, ink, [](std::uint8_t& byte, int bits) {
            byte = static_cast<std::uint8_t>(byte | bits);
        });
    });
}

// Calls visit(x) for the ones of a word whose first pixel is x.
template <class Visit>
void for_each_one(std::uint64_t word, std::int32_t x, Visit visit) {
    while (word != 0) {
        const int position = std::countl_zero(word);
        word &= ~(std::uint64_t{1} << 63 >> position);
        visit(x + position);
    }
}

}  // namespace

void erase_specks(common::MutableBitonalView page, std::int32_t max_area) {
    // Also where nothing can be erased: whether there is memory does not depend on the area.
    Speck speck;
    if (max_area < 1) return;
    const Words words(page);
    for (std::int32_t y = 0; y < page.height; ++y) {
        const std::uint8_t* const row = page.row(y);
        const std::uint8_t* const above = y > 0 ? page.row(y - 1) : nullptr;
        std::uint64_t left = 0;  // the pixel before the word
        for (std::int32_t x = 0; x < page.width; x += kWordPixels) {
            const std::uint64_t ink = words.aligned(x, row);
            std::uint64_t first = ink & ~(ink >> 1 | left << 63);
            left = ink & 1;
            if (first == 0) continue;
            if (above != nullptr) first &= ~words.widened_at(x, above);
            for_each_one(first, x, [&](std::int32_t first_x) {
                if (speck.grow(words, first_x, y, max_area)) erase(page, speck);
            });
        }
    }
}

void restore_specks(common::MutableBitonalView specks, common::BitonalView near,
                    common::MutableBitonalView page) {
    const Words words(specks);
    const Words near_words(near);
    Speck speck;
    for (std::int32_t y = 0; y < page.height; ++y) {
        for (std::int32_t x = 0; x < page.width; x += kWordPixels) {
            const std::uint64_t near_ink = near_words.aligned(x, near.row(y));
            const std::uint64_t touched = near_ink & words.aligned(x, specks.row(y));
            for_each_one(touched, x, [&](std::int32_t touched_x) {
                // Not when it has gone with a pixel before it.
                if (words.at(touched_x, y) >> 63 == 0) return;
                speck.gather(words, touched_x, y);
                draw(page, speck);
                erase(specks, speck);
            });
        }
    }
}

}  // namespace cleaning
