// What the tests of the bitonal deskew rotations share: a call of eleven arguments as a value, and
// a recorder of progress reports.
#pragma once

#include <cstdint>
#include <ostream>
#include <utility>
#include <vector>

#include "support/random_page.h"
#include "vemoprepro/deskew.h"

namespace rotation_test {

using Reports = std::vector<std::pair<unsigned, unsigned>>;

inline Reports& reports() {
    static Reports recorded;
    return recorded;
}

inline void record(unsigned done, unsigned total) {
    reports().emplace_back(done, total);
}

// A page with its geometry; the padding is dirty.
struct Page {
    int height;
    int width;
    int stride;
    std::vector<std::uint8_t> bytes;
};

enum class Ink { kText, kNoise, kSparse, kFull };

inline int word_stride(int width) {
    return (width + 31) / 32 * 4;
}

inline Page make_page(int height, int width, int extra_stride, Ink ink, std::uint32_t seed) {
    Page page{height, width, word_stride(width) + extra_stride, {}};
    const auto stride = static_cast<std::size_t>(page.stride);
    switch (ink) {
        case Ink::kText:
            page.bytes = support::random_text(height, width, stride, seed);
            break;
        case Ink::kNoise:
            page.bytes = support::random_bitonal(height, stride, 0.4, seed);
            break;
        case Ink::kSparse:
            page.bytes = support::random_bitonal(height, stride, 0.05, seed);
            break;
        case Ink::kFull:
            page.bytes.assign(static_cast<std::size_t>(height) * stride, 0xFF);
            break;
    }
    return page;
}

// Size and stride of a destination.
struct Target {
    int height;
    int width;
    int stride;

    std::size_t bytes() const {
        return static_cast<std::size_t>(height) * static_cast<std::size_t>(stride);
    }
};

// The result of a rotation into a guarded buffer that held 0x5C before.
struct Outcome {
    int status;
    std::vector<std::uint8_t> bytes;
    Reports reports;

    friend bool operator==(const Outcome&, const Outcome&) = default;
};

template <class Rotation, class Source>
Outcome rotate(Rotation rotation, int skew, int scale, const Page& page, Source* src,
               const Target& target) {
    support::GuardedBuffer buffer(target.bytes());
    reports().clear();
    const int status = rotation(skew, scale, src, page.height, page.width, page.stride,
                                buffer.data(), target.height, target.width, target.stride, record);
    EXPECT_TRUE(buffer.guards_intact());
    return {status, buffer.contents(), reports()};
}

template <class Rotation>
Outcome rotate(Rotation rotation, int skew, int scale, const Page& page, const Target& target) {
    return rotate(rotation, skew, scale, page, page.bytes.data(), target);
}

// A rotation that writes to its source: the source comes back as it was.
template <class Rotation>
Outcome rotate_restoring(Rotation rotation, int skew, int scale, const Page& page,
                         const Target& target) {
    std::vector<std::uint8_t> source = page.bytes;
    Outcome outcome = rotate(rotation, skew, scale, page, source.data(), target);
    EXPECT_EQ(source, page.bytes);
    return outcome;
}

}  // namespace rotation_test
