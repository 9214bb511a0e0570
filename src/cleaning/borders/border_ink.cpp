// A run of ink is reachable when it begins or ends a row, when it lies in the row that a pass
// begins with, or when it touches a reachable run of the row that the pass comes from, corners
// included. Two passes, down and up, follow most borders; ink that turns back a third time is not
// followed.
//
// The target is a copy of the page from which the reachable runs are erased, so that the reachable
// ink of a row is what the page has there and the target has not. Runs are followed in words of 64
// pixels, however many of them a word has.
#include "cleaning/borders/border_ink.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

#include "frame/buffer.h"
#include "ink/bit_words.h"

namespace cleaning {
namespace {

constexpr std::uint64_t kAll = ~std::uint64_t{0};
constexpr std::uint64_t kFirstPixel = std::uint64_t{1} << 63;
constexpr std::uint64_t kLastPixel = 1;

// The runs of a word's ink that have one of `seeds`, which are pixels of the ink.
//
// A sum carries from each seed to the end of its run, towards the first pixel: what it flips of the
// ink lies between. The other way goes in steps that double, over ink without a gap.
std::uint64_t runs_with(std::uint64_t ink, std::uint64_t seeds) {
    std::uint64_t reached = seeds | (((ink + seeds) ^ ink) & ink);
    for (int step = 1; step < ink::kWordPixels; step *= 2) {
        reached |= reached >> step & ink;
        ink &= ink >> step;
    }
    return reached;
}

// The pixels of a row that have been reached, in words. Words before begin() and from end() on are
// blank, and there is one on either side of the row.
class ReachedRow {
  public:
    // Throws std::bad_alloc.
    explicit ReachedRow(std::ptrdiff_t words)
        : words_(frame::Buffer<std::uint64_t>::zeroed(static_cast<std::size_t>(words) + 2)) {}

    std::ptrdiff_t begin() const { return begin_; }
    std::ptrdiff_t end() const { return end_; }

    void clear() {
        if (begin_ < end_) std::fill(&word(begin_), &word(end_), std::uint64_t{0});
        begin_ = end_ = 0;
    }

    void add(std::ptrdiff_t i, std::uint64_t pixels) {
        word(i) |= pixels;
        begin_ = begin_ < end_ ? std::min(begin_, i) : i;
        end_ = std::max(end_, i + 1);
    }

    // The first word from i on that is not blank; i or end() if there is none.
    std::ptrdiff_t find(std::ptrdiff_t i) {
        while (i < end_ && word(i) == 0) ++i;
        return i;
    }

    // The pixels of word i of a neighbouring row that touch one of these.
    std::uint64_t touched(std::ptrdiff_t i) {
        const std::uint64_t here = word(i);
        return here | here << 1 | here >> 1 | word(i - 1) << 63 | word(i + 1) >> 63;
    }

  private:
    std::uint64_t& word(std::ptrdiff_t i) { return words_[static_cast<std::size_t>(i + 1)]; }

    frame::Buffer<std::uint64_t> words_;
    std::ptrdiff_t begin_ = 0;
    std::ptrdiff_t end_ = 0;
};

// Erases the reachable runs of one row after another.
//
// Use, for each pass:
//     start (erase_touched (follow_erased | follow_difference))*
class RunEraser {
  public:
    // Throws std::bad_alloc.
    explicit RunEraser(std::int32_t width)
        : width_(std::max(width, 0)),
          words_((width_ + ink::kWordPixels - 1) / ink::kWordPixels),
          before_(words_),
          erased_(words_) {}

    // The pass comes from a row that is reached all along.
    void start() {
        before_.clear();
        for (std::ptrdiff_t i = 0; i < words_; ++i) before_.add(i, kAll);
    }

    // Erases the runs that touch a reached pixel of the row that the pass comes from, and with
    // `ends` those that begin or end the row.
    void erase_touched(std::uint8_t* row, bool ends) {
        erased_.clear();
        std::ptrdiff_t next = ends ? erase_in_words(row, 0, 1, true) : 0;
        if (before_.begin() < before_.end()) {
            next = std::max(next, before_.begin() - 1);
            next = erase_in_words(row, next, before_.end() + 1, ends);
        }
        if (ends) erase_in_words(row, std::max(next, words_ - 1), words_, true);
    }

    // The pass goes on from what has been erased of the row.
    void follow_erased() { std::swap(before_, erased_); }

    // The pass goes on from the pixels in which the rows differ. Returns whether there are any.
    bool follow_difference(const std::uint8_t* row, const std::uint8_t* other) {
        const auto bytes = static_cast<std::size_t>(common::bitonal_bytes(width_));
        before_.clear();
        if (std::memcmp(row, other, bytes) == 0) return false;
        for (std::ptrdiff_t i = 0; i < words_; ++i) {
            const std::uint64_t different = word(row, i) ^ word(other, i);
            if (different != 0) before_.add(i, different);
        }
        return true;
    }

  private:
    std::uint64_t word(const std::uint8_t* row, std::ptrdiff_t i) const {
        return ink::aligned_word(row, width_, i * ink::kWordPixels);
    }

    // Looks at the words i .. end - 1, and on as long as a run goes on. Returns the first word that
    // it has not looked at.
    std::ptrdiff_t erase_in_words(std::uint8_t* row, std::ptrdiff_t i, std::ptrdiff_t end,
                                  bool ends) {
        bool continued = false;  // the last pixel of the word before is reached
        for (; i < words_ && (i < end || continued); ++i) {
            std::uint64_t seeds = before_.touched(i);
            if (continued || (ends && i == 0)) seeds |= kFirstPixel;
            if (ends && i + 1 == words_) seeds |= kFirstPixel >> (width_ - 1) % ink::kWordPixels;
            const std::uint64_t ink = seeds == 0 ? 0 : word(row, i);
            seeds &= ink;
            if (seeds == 0) {
                continued = false;
                // The word in front of the next one that is not blank may be touched.
                i = std::max(i, before_.find(i) - 2);
                continue;
            }
            const std::uint64_t runs = ink == kAll ? kAll : runs_with(ink, seeds);
            erase(row, i, runs);
            if ((runs & kFirstPixel) != 0 && !continued) erase_backwards(row, i - 1);
            continued = (runs & kLastPixel) != 0;
        }
        return i;
    }

    // Erases the run that ends with word i.
    void erase_backwards(std::uint8_t* row, std::ptrdiff_t i) {
        for (; i >= 0; --i) {
            const std::uint64_t ink = word(row, i);
            if ((ink & kLastPixel) == 0) return;
            erase(row, i, ink == kAll ? ink : ink & ~(kAll << std::countr_one(ink)));
            if (ink != kAll) return;
        }
    }

    void erase(std::uint8_t* row, std::ptrdiff_t i, std::uint64_t pixels) {
        ink::erase_pixels(row, width_, i * ink::kWordPixels, pixels);
        erased_.add(i, pixels);
    }

    std::int32_t width_;
    std::ptrdiff_t words_;  // of a row
    ReachedRow before_;     // the row that the pass comes from
    ReachedRow erased_;     // of the current row
};

void erase_downwards(common::MutableBitonalView result, RunEraser& eraser) {
    eraser.start();
    for (std::ptrdiff_t y = 0; y < result.height; ++y) {
        eraser.erase_touched(result.row(y), true);
        eraser.follow_erased();
    }
}

// In the row below, the runs that either pass has erased are reachable. The runs at the ends of the
// rows are gone already.
void erase_upwards(common::BitonalView page, common::MutableBitonalView result, RunEraser& eraser) {
    eraser.start();
    bool any = true;
    for (std::ptrdiff_t y = page.height - 1; y >= 0; --y) {
        if (any) eraser.erase_touched(result.row(y), false);
        any = eraser.follow_difference(page.row(y), result.row(y));
    }
}

}  // namespace

void copy_without_edge_ink(common::BitonalView page, EdgeInk ink, std::uint8_t* target) {
    RunEraser eraser(page.width);
    if (page.height < 1 || page.stride < 1) return;
    std::memcpy(target, page.data, static_cast<std::size_t>(page.height * page.stride));
    if (page.width < 1 || ink == EdgeInk::kKept) return;
    const common::MutableBitonalView result{target, page.height, page.width, page.stride};
    erase_downwards(result, eraser);
    erase_upwards(page, result, eraser);
}

}  // namespace cleaning
