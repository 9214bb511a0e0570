// Edges of a grey image: thin lines of pixels whose grey changes most steeply.
//
// Use: EdgeFinder finder(height, width, options); finder.find(grey) and, when that says so,
// finder.trace(); then edges(y, words) for any row. thresholds_used() afterwards.
//
// Source: J. Canny, A computational approach to edge detection, IEEE Transactions on Pattern
// Analysis and Machine Intelligence, 1986.
#pragma once

#include <cstddef>
#include <cstdint>

#include "binarization/padded_rows.h"
#include "common/views.h"
#include "frame/buffer.h"

namespace binarization {

// One bit a pixel, pixel 0 of a row in the least significant bit of its first word.
class BitRows {
  public:
    // Not initialised. Throws std::bad_alloc.
    BitRows(std::size_t rows, std::size_t width)
        : words_(whole_words(width)), bits_(rows * words_) {}

    std::size_t words() const { return words_; }
    std::uint64_t* row(std::size_t y) { return bits_.data() + y * words_; }
    const std::uint64_t* row(std::size_t y) const { return bits_.data() + y * words_; }

  private:
    std::size_t words_;
    frame::Buffer<std::uint64_t> bits_;
};

enum class Normalization {
    kOff,
    kMagnitudes,  // magnitudes are enlarged to the full range
    kThresholds   // thresholds are reduced instead
};

struct EdgeOptions {
    int start = 48;   // the least magnitude that starts an edge, 8 .. 254
    int follow = 32;  // an edge is followed into magnitudes above this, 0 .. 255
    bool smoothed = false;
    Normalization normalization = Normalization::kOff;
};

class EdgeFinder {
  public:
    // Allocates all it needs. Throws std::bad_alloc. height and width are at least 2.
    EdgeFinder(std::size_t height, std::size_t width, const EdgeOptions& options);

    // Finds the candidates. Returns whether there are any; there are no edges otherwise.
    bool find(const common::GreyView& grey);

    // Tells the edges among the candidates (gradient_hysteresis.cpp).
    void trace();

    // The least magnitude that starts an edge, after find(): normalization may have reduced it.
    int start_threshold() const { return start_; }

    // The edge pixels of a row, after trace(): words() words.
    void edges(std::size_t y, std::uint64_t* row) const;
    std::size_t words() const { return starts_.words(); }

  private:
    struct Scale;

    int largest_magnitude(const common::GreyView& grey);
    bool find_candidates(const common::GreyView& grey, const std::uint8_t* scaled);
    void load_row(const common::GreyView& grey, std::size_t y);
    simd::GradientRow gradient_row(std::size_t y);
    void take_gradients(std::size_t y);
    void trace_from(std::size_t y, std::size_t x);

    std::size_t height_;
    std::size_t width_;
    EdgeOptions options_;
    int candidate_;  // the least magnitude of a candidate
    int start_;
    int follow_;
    PaddedRows source_;  // grey, smoothed where asked for
    PaddedRows magnitudes_;
    PaddedRows across_;
    PaddedRows down_;
    BitRows starts_;   // candidates that start an edge
    BitRows follows_;  // candidates into which an edge is followed
    BitRows open_;     // those of follows_ that no trace has reached yet
};

}  // namespace binarization
