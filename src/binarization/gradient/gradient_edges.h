// Edges of a grey image: thin lines of pixels whose grey changes most steeply.
//
// Use: EdgeFinder finder(height, width, options); then in the order
//     begin (advance edges*)*
// with advance(0), advance(1), ... down to the last row: advance(y) makes edges(y) final, and the
// edges of the 8 rows above it stay readable.
//
// Source: J. Canny, A computational approach to edge detection, IEEE Transactions on Pattern
// Analysis and Machine Intelligence, 1986.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "binarization/gradient/readable_rows.h"
#include "binarization/row_ring.h"
#include "common/views.h"
#include "simd/pixels/gradient_rows.h"

namespace binarization {

// The most rows that a trace gets away from where it starts (gradient_hysteresis.cpp).
constexpr std::size_t kTraceReach = 65;

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

    // Starts from the top of an image, which stays valid until its last row is done.
    void begin(const common::GreyView& grey);

    // Makes the edges of row y final. Called for each row in order.
    void advance(std::size_t y);

    // The edge pixels of a row: words() words.
    const std::uint64_t* edges(std::size_t y) const { return starts_.row(y); }
    std::size_t words() const { return starts_.words(); }

    // The least magnitude that starts an edge, after begin(): normalization may have reduced it.
    int start_threshold() const { return thresholds_.start; }

    // After the last row: whether the image has candidates, though perhaps no edges.
    bool found_candidates() const { return found_candidates_; }

  private:
    int largest_magnitude();
    const std::uint8_t* source_row(std::size_t y);
    void smooth_row(std::size_t y);
    simd::GradientRow gradient_row(std::size_t y);
    simd::ThreeRows sources_around(std::size_t y);
    void mark_steep(std::size_t y);
    void take_gradients(std::size_t y);
    void find_candidates(std::size_t y);
    void trace(std::size_t y);
    void trace_from(std::size_t y, std::size_t x);

    std::size_t height_;
    std::size_t width_;
    EdgeOptions options_;
    common::GreyView grey_;
    simd::EdgeThresholds thresholds_{};
    std::array<std::uint8_t, 256> scaled_{};  // what magnitudes become where they are normalized
    int steep_limit_ = -1;  // no candidate without a larger difference; -1: there may be some
    bool found_candidates_ = false;

    // How many rows each step has done: steep pixels marked, gradients taken, candidates found,
    // starts traced.
    std::size_t marked_ = 0;
    std::size_t graded_ = 0;
    std::size_t searched_ = 0;
    std::size_t traced_ = 0;

    ReadableRows greys_;
    PaddedRows smoothed_;
    PaddedRows magnitudes_;
    PaddedRows across_;
    PaddedRows down_;
    BitRows steep_;    // pixels that may be candidates
    BitRows wanted_;   // those and their neighbours, in one row
    BitRows starts_;   // candidates that start an edge; the edges in rows that are final
    BitRows follows_;  // candidates into which an edge is followed
    BitRows open_;     // those of follows_ that no trace has reached yet
};

}  // namespace binarization
