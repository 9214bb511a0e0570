#include "geometry/bitonal_tiles.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "simd/pixels/blend_line.h"

namespace geometry {
namespace {

constexpr std::int64_t kTile = 64;  // pixels of the destination, each way

// The diagonal of a tile, with a neighbour on either side.
constexpr std::int64_t kWindowRows = 96;
constexpr std::int64_t kWindowColumns = 112;  // and from any pixel of a byte to any of another

// The eight pixels of a byte, the leftmost first.
constexpr auto kSpread = [] {
    std::array<std::array<std::uint8_t, 8>, 256> spread{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        for (unsigned i = 0; i < 8; ++i)
            spread[byte][i] = static_cast<std::uint8_t>(byte >> (7 - i) & 1);
    }
    return spread;
}();

// The pixels of the source that a tile is blended of.
struct Box {
    std::int64_t left = std::numeric_limits<std::int64_t>::max();
    std::int64_t top = std::numeric_limits<std::int64_t>::max();
    std::int64_t right = 0;  // the last ones
    std::int64_t bottom = 0;

    void add(std::int64_t x, std::int64_t y) {
        left = std::min(left, x >> kFractionBits);
        top = std::min(top, y >> kFractionBits);
        right = std::max(right, (x >> kFractionBits) + 1);
        bottom = std::max(bottom, (y >> kFractionBits) + 1);
    }
};

class Tile {
  public:
    explicit Tile(const SourceLines& lines) : lines_(lines) {}

    // Collects the part of a row from destination pixel u on that lies in the source.
    void add_row(const SourceLine& line, std::int64_t u) {
        const std::int64_t first = std::clamp(line.first, u, u + kTile);
        const std::int64_t end = std::clamp(line.end, first, u + kTile);
        const std::int64_t x = line.x + (first - line.first) * lines_.cosine();
        const std::int64_t y = line.y - (first - line.first) * lines_.sine();
        parts_[rows_] = {x, y, static_cast<std::size_t>(end - first), 0};
        skipped_[rows_++] = static_cast<int>(first - u);
        if (first == end) return;
        box_.add(x, y);
        box_.add(x + (end - 1 - first) * lines_.cosine(), y - (end - 1 - first) * lines_.sine());
    }

    void start() {
        rows_ = 0;
        box_ = {};
    }

    // Whether anything is black.
    bool blend(common::BitonalView src) {
        if (box_.bottom == 0 || !spread(src)) return false;
        const std::int64_t left = box_.left / 8 * 8 * kOnePixel;
        const std::int64_t top = box_.top * kOnePixel;
        for (std::size_t i = 0; i < rows_; ++i) {
            parts_[i].x -= left;
            parts_[i].y -= top;
        }
        simd::blend_marks({window_[0], kWindowColumns, kWindowRows, kWindowColumns, 0, 0,
                           lines_.cosine(), -lines_.sine()},
                          parts_, rows_);
        return true;
    }

    // Writes the first `bytes` bytes of a row of the tile, up to 8.
    void store(std::size_t row, std::uint8_t* out, std::size_t bytes) const {
        if (parts_[row].count == 0) return;
        const std::uint64_t marks = parts_[row].marks >> skipped_[row];
        for (std::size_t i = 0; i < bytes; ++i)
            out[i] = static_cast<std::uint8_t>(marks >> (56 - 8 * i));
    }

  private:
    bool spread(common::BitonalView src) {
        const std::int64_t first = box_.left / 8;
        const std::int64_t end = box_.right / 8 + 1;
        unsigned any = 0;
        for (std::int64_t y = box_.top; y <= box_.bottom; ++y) {
            const std::uint8_t* const row = src.row(y);
            for (std::int64_t i = first; i < end; ++i) any |= row[i];
        }
        if (any == 0) return false;
        for (std::int64_t y = box_.top; y <= box_.bottom; ++y) {
            const std::uint8_t* const row = src.row(y);
            std::uint8_t* out = window_[y - box_.top];
            for (std::int64_t i = first; i < end; ++i, out += 8)
                std::memcpy(out, kSpread[row[i]].data(), 8);
        }
        return true;
    }

    const SourceLines& lines_;
    Box box_;
    std::size_t rows_ = 0;
    simd::MarkedPart parts_[kTile];
    int skipped_[kTile];  // pixels before a part, at most 63 if it has any
    std::uint8_t window_[kWindowRows][kWindowColumns] = {};
};

}  // namespace

void rotate_tiles(common::BitonalView src, common::MutableBitonalView dst,
                  const SourceLines& lines) {
    Tile tile(lines);
    SourceLine rows[kTile];
    for (std::int64_t v = 0; v < dst.height; v += kTile) {
        const std::int64_t count = std::min(kTile, dst.height - v);
        for (std::int64_t i = 0; i < count; ++i) rows[i] = lines.of_row(v + i);
        for (std::int64_t u = 0; u < dst.width; u += kTile) {
            tile.start();
            for (std::int64_t i = 0; i < count; ++i) tile.add_row(rows[i], u);
            if (!tile.blend(src)) continue;
            const auto bytes = static_cast<std::size_t>(
                std::min<std::int64_t>(8, common::bitonal_bytes(dst.width) - u / 8));
            for (std::int64_t i = 0; i < count; ++i)
                tile.store(static_cast<std::size_t>(i), dst.row(v + i) + u / 8, bytes);
        }
    }
}

}  // namespace geometry
