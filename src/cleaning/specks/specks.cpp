// The first pixel of a component in raster order has no ink to its left and none in the three
// pixels above it. Pixels like that are found 64 at a time, and so are those among them that have
// no ink around them at all: most specks are single pixels. From each of the others the ink is
// flooded in a window around it, one 64-bit word a row, until one of three things is known:
//
//   - there are more pixels than a speck may have: it is none;
//   - the ink touches ink above the row that the flood began in: another pixel is the first;
//   - nothing more hangs on it: it is a speck, and all its pixels are at hand.
//
// The window is wide enough: ink that reaches beyond its sides has more than 31 pixels on the way
// there.
#include "cleaning/specks/specks.h"

#include <bit>

#include "frame/buffer.h"
#include "ink/bit_words.h"

namespace cleaning {
namespace {

constexpr std::int32_t kWordPixels = static_cast<std::int32_t>(ink::kWordPixels);

// A window has the first pixel of a flood in this column and row.
constexpr std::int32_t kFirstColumn = kMaxSpeckArea;
constexpr std::int32_t kFirstRow = kMaxSpeckArea - 1;
// A speck takes at most kMaxSpeckArea rows from there on, and one more row shows that it is none.
constexpr std::int32_t kWindowRows = kFirstRow + kMaxSpeckArea + 1;

// The pixels and their neighbours to both sides, inside the word.
std::uint64_t dilated(std::uint64_t word) {
    return word | word << 1 | word >> 1;
}

// A page read by words of 64 pixels, the leftmost in the most significant bit; white around.
class PageWords {
  public:
    explicit PageWords(common::BitonalView page)
        : page_(page), row_bytes_(static_cast<std::ptrdiff_t>(common::bitonal_bytes(page.width))) {}

    std::int32_t height() const { return page_.height; }

    // The pixels of row y from x on; both may lie anywhere.
    std::uint64_t at(std::int32_t x, std::int32_t y) const {
        if (y < 0 || y >= page_.height) return 0;
        return ink::word_at(page_.row(y), page_.width, row_bytes_, x);
    }

    // The pixels of row y, which the page has, from x on, a multiple of 64.
    std::uint64_t aligned(std::int32_t x, std::int32_t y) const {
        return ink::aligned_word(page_.row(y), page_.width, x);
    }

    // The same, with the neighbours of the ink to both sides: those of ink beside the word too.
    std::uint64_t aligned_dilated(std::int32_t x, std::int32_t y) const {
        const std::uint8_t* const row = page_.row(y);
        std::uint64_t word = dilated(aligned(x, y));
        if (x > 0) word |= static_cast<std::uint64_t>(row[x / 8 - 1] & 1) << 63;
        const std::int32_t next = x + kWordPixels;
        if (next < page_.width) word |= static_cast<std::uint64_t>(row[next / 8] >> 7);
        return word;
    }

  private:
    common::BitonalView page_;
    std::ptrdiff_t row_bytes_;
};

// The ink that hangs together with one pixel, flooded in a window. Rows top_ .. bottom_ of the
// window are in use: for these, ink_ has the page's pixels and flooded_ those that the flood has
// reached. Flooded pixels of a row are always whole runs of its ink.
class Speck {
  public:
    // Throws std::bad_alloc.
    Speck() = default;

    // Floods from the pixel at (x, y), which has no ink to its left and none in the three pixels
    // above it. Returns whether it is ink and the first pixel of a component of at most `max_area`
    // pixels; all of them are flooded then.
    bool flood_from_first(const PageWords& page, std::int32_t x, std::int32_t y,
                          std::int32_t max_area) {
        open_window(page, x, y);
        const int length = std::countl_one(ink_[kFirstRow] << kFirstColumn);
        if (length == 0 || length > max_area) return false;
        flooded_[kFirstRow] = ~(~std::uint64_t{0} >> length) >> kFirstColumn;
        area_ = length;
        const std::uint64_t above = page.at(x_, y - 1);
        const auto began_above = [&] { return (dilated(flooded_[kFirstRow]) & above) != 0; };
        if (began_above()) return false;
        while (flood_row_below()) {
            flood_arms_upwards(max_area);
            if (area_ > max_area || began_above()) return false;
        }
        return true;
    }

    // Floods all that hangs together with the ink pixel at (x, y), which must be part of a speck.
    void flood_all(const PageWords& page, std::int32_t x, std::int32_t y) {
        open_window(page, x, y);
        flooded_[kFirstRow] = 0;
        flood(kFirstRow, std::uint64_t{1} << 63 >> kFirstColumn);
        for (bool grown = true; grown;) {
            while (flood_row_below()) {
            }
            while (flood_row_above()) {
            }
            grown = flood_rows_upwards();
            grown |= flood_rows_downwards();
        }
    }

    // Calls visit(row of the page, column of the most significant bit, flooded pixels).
    template <class Visit>
    void for_each_row(Visit visit) const {
        for (std::int32_t i = top_; i <= bottom_; ++i) visit(y_ + i, x_, flooded_[i]);
    }

  private:
    void open_window(const PageWords& page, std::int32_t x, std::int32_t y) {
        page_ = &page;
        x_ = x - kFirstColumn;
        y_ = y - kFirstRow;
        top_ = bottom_ = kFirstRow;
        ink_[kFirstRow] = page.at(x_, y);
    }

    // Floods the ink of row i that hangs together, along the row, with ink in `seeds`. Returns
    // whether there is any that has not been flooded before.
    bool flood(std::int32_t i, std::uint64_t seeds) {
        std::uint64_t reached = flooded_[i] | (seeds & ink_[i]);
        if (reached == flooded_[i]) return false;
        for (std::uint64_t before = 0; reached != before;) {
            before = reached;
            reached = dilated(reached) & ink_[i];
        }
        area_ += std::popcount(reached) - std::popcount(flooded_[i]);
        flooded_[i] = reached;
        return true;
    }

    // Takes the row below the last one into use, or the one above the first one, and floods what
    // touches the flood there; false, with nothing done, when that is nothing.
    bool flood_row_below() { return flood_next_row(bottom_, 1); }
    bool flood_row_above() { return flood_next_row(top_, -1); }

    bool flood_next_row(std::int32_t& end, std::int32_t step) {
        const std::uint64_t seeds = dilated(flooded_[end]);
        const std::uint64_t ink = page_->at(x_, y_ + end + step);
        if ((seeds & ink) == 0) return false;
        end += step;
        ink_[end] = ink;
        flooded_[end] = 0;
        flood(end, seeds);
        return true;
    }

    // Follows the ink that leads up again from the last row, and down from there, within the rows
    // in use. Most last rows lead to nothing new in the row above them, and that is the end of it.
    void flood_arms_upwards(std::int32_t max_area) {
        bool grown = flood(bottom_ - 1, dilated(flooded_[bottom_]));
        while (grown && area_ <= max_area) {
            grown = flood_rows_upwards();
            grown |= flood_rows_downwards();
        }
    }

    bool flood_rows_upwards() {
        bool grown = false;
        for (std::int32_t i = bottom_ - 1; i >= top_; --i) {
            grown |= flood(i, dilated(flooded_[i + 1]));
        }
        return grown;
    }

    bool flood_rows_downwards() {
        bool grown = false;
        for (std::int32_t i = top_ + 1; i <= bottom_; ++i) {
            grown |= flood(i, dilated(flooded_[i - 1]));
        }
        return grown;
    }

    const PageWords* page_ = nullptr;
    std::int32_t x_ = 0;  // of the window's first column, on the page
    std::int32_t y_ = 0;  // of the window's first row
    std::int32_t top_ = 0;
    std::int32_t bottom_ = 0;
    std::int32_t area_ = 0;  // flooded pixels
    frame::Buffer<std::uint64_t> window_{2 * kWindowRows};
    std::uint64_t* const ink_ = window_.data();
    std::uint64_t* const flooded_ = ink_ + kWindowRows;
};

// Calls change(byte of the page, pixels of the speck in it) for all bytes that have some.
template <class Change>
void change_pixels(common::MutableBitonalView page, const Speck& speck, Change change) {
    speck.for_each_row([&](std::int32_t y, std::int32_t x, std::uint64_t pixels) {
        if (pixels == 0) return;
        const int blank = std::countl_zero(pixels);
        std::uint8_t* byte = page.row(y) + (x + blank) / 8;
        pixels = pixels << blank >> ((x + blank) % 8);
        for (; pixels != 0; pixels <<= 8, ++byte) {
            *byte = static_cast<std::uint8_t>(change(*byte, static_cast<int>(pixels >> 56)));
        }
    });
}

void erase(common::MutableBitonalView page, const Speck& speck) {
    change_pixels(page, speck, [](int byte, int pixels) { return byte & ~pixels; });
}

void draw(common::MutableBitonalView page, const Speck& speck) {
    change_pixels(page, speck, [](int byte, int pixels) { return byte | pixels; });
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

// Those of some pixels of an aligned word that are all of a component. None of them has ink before
// it or above it, nor behind it in the word.
std::uint64_t single_pixels(const PageWords& page, std::int32_t x, std::int32_t y,
                            std::uint64_t pixels) {
    if (pixels == 0) return 0;
    const std::int32_t next = x + kWordPixels;
    if (pixels & 1 && page.at(next, y) >> 63 != 0) pixels &= ~std::uint64_t{1};
    return y + 1 < page.height() ? pixels & ~page.aligned_dilated(x, y + 1) : pixels;
}

}  // namespace

void erase_specks(common::MutableBitonalView page, std::int32_t max_area) {
    Speck speck;
    if (max_area < 1) return;  // not before: whether there is memory must not depend on the area
    const PageWords words(page);
    for (std::int32_t y = 0; y < page.height; ++y) {
        std::uint64_t pixel_before = 0;  // of the word
        for (std::int32_t x = 0; x < page.width; x += kWordPixels) {
            const std::uint64_t ink = words.aligned(x, y);
            std::uint64_t first = ink & ~(ink >> 1 | pixel_before << 63);
            pixel_before = ink & 1;
            if (first == 0) continue;
            if (y > 0) first &= ~words.aligned_dilated(x, y - 1);
            const std::uint64_t single = single_pixels(words, x, y, first & ~(ink << 1));
            if (single != 0) {
                ink::erase_pixels(page.row(y), page.width, x, single);
                first &= ~single;
            }
            for_each_one(first, x, [&](std::int32_t first_x) {
                if (speck.flood_from_first(words, first_x, y, max_area)) erase(page, speck);
            });
        }
    }
}

void restore_specks(common::MutableBitonalView specks, common::BitonalView near,
                    common::MutableBitonalView page) {
    const PageWords words(specks);
    const PageWords near_words(near);
    Speck speck;
    for (std::int32_t y = 0; y < page.height; ++y) {
        for (std::int32_t x = 0; x < page.width; x += kWordPixels) {
            const std::uint64_t touched = words.aligned(x, y) & near_words.aligned(x, y);
            for_each_one(touched, x, [&](std::int32_t touched_x) {
                const bool moved_already = words.at(touched_x, y) >> 63 == 0;
                if (moved_already) return;
                speck.flood_all(words, touched_x, y);
                draw(page, speck);
                erase(specks, speck);
            });
        }
    }
}

}  // namespace cleaning
