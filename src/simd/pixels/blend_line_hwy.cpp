// Vector forms of blend_line.h.
//
// Pixels of one byte come in blocks of eight, one block in every 128 bits of a vector. Their places
// are in a window of 16 columns and at most 9 rows, so each row of the window is loaded once, and
// its left and right neighbours are looked up in the 16 bytes. Every row has a weight for every
// pixel that falls off with its distance, to 0 at one pixel:
//
//     16 |    /\          the weights of three rows at a place between the second and the third
//        |   /  \ *       one (*) add up to 16
//      0 |__/    \__
//
// Pixels of three and four bytes are taken one at a time, the four pixels around it in 16 bytes:
// the upper two in the first eight and the lower two in the last eight.
#include "simd/pixels/blend_line.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "simd/pixels/plain/blend_line.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/pixels/blend_line_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using U8 = hn::CappedTag<std::uint8_t, 32>;
using U16 = hn::Repartition<std::uint16_t, U8>;
using I16 = hn::Repartition<std::int16_t, U8>;
using VecU8 = hn::Vec<U8>;
using VecU16 = hn::Vec<U16>;

constexpr U8 kU8;
constexpr U16 kU16;
constexpr std::int64_t kBlock = 8;    // pixels
constexpr std::int64_t kWindow = 16;  // columns
constexpr std::size_t kBlocks = hn::MaxLanes(U8()) / 16;
constexpr int kToSixteenths = kPlaceBits - 4;
constexpr std::int64_t kBelowSixteenths = (std::int64_t{1} << kToSixteenths) - 1;

template <class Get>
HWY_INLINE VecU16 per_block(const Get& get) {
    if constexpr (kBlocks == 1) {
        return hn::Set(kU16, static_cast<std::uint16_t>(get(0)));
    } else {
        const hn::Half<U16> half;
        return hn::Combine(kU16, hn::Set(half, static_cast<std::uint16_t>(get(1))),
                           hn::Set(half, static_cast<std::uint16_t>(get(0))));
    }
}

// One axis of the places of the pixels of a block.
class Axis {
  public:
    // `window`: the rows or columns that a window has, of `size` of the image.
    HWY_INLINE Axis(std::int64_t step, std::int64_t window, std::int64_t size)
        : least_(std::min<std::int64_t>((kBlock - 1) * step, 0)), last_window_(size - window) {
        HWY_ALIGN std::uint16_t whole[kBlocks * kBlock];
        HWY_ALIGN std::uint16_t rest[kBlocks * kBlock];
        for (std::size_t i = 0; i < kBlocks * kBlock; ++i) {
            const std::int64_t offset = static_cast<std::int64_t>(i % kBlock) * step;
            whole[i] = static_cast<std::uint16_t>(offset >> kToSixteenths);
            rest[i] = static_cast<std::uint16_t>(offset & kBelowSixteenths);
        }
        whole_ = hn::Load(kU16, whole);
        rest_ = hn::Load(kU16, rest);
    }

    // Where the window starts for a block whose first pixel is at `place`.
    HWY_INLINE std::int64_t window_at(std::int64_t place) const {
        return std::min((place + least_) >> kPlaceBits, last_window_);
    }

    // The places in the windows in sixteenths of a pixel, from those of the first pixels.
    HWY_INLINE VecU16 places(const std::int64_t (&first)[kBlocks]) const {
        const auto whole =
            per_block([&](std::size_t b) HWY_ATTR { return first[b] >> kToSixteenths; });
        const auto rest =
            per_block([&](std::size_t b) HWY_ATTR { return first[b] & kBelowSixteenths; });
        return hn::Add(hn::Add(whole, whole_), hn::ShiftRight<kToSixteenths>(hn::Add(rest, rest_)));
    }

  private:
    std::int64_t least_;
    std::int64_t last_window_;
    VecU16 whole_, rest_;  // the way from a block's first pixel to each of its pixels
};

HWY_INLINE std::int64_t window_rows(std::int64_t y_step) {
    constexpr std::int64_t kOne = std::int64_t{1} << kPlaceBits;
    return (((kBlock - 1) * std::abs(y_step) + kOne - 1) >> kPlaceBits) + 2;
}

// Blended sums, 256 times a byte, of kBlocks blocks after one another.
class Blender {
  public:
    HWY_INLINE explicit Blender(const SlantedLine& line)
        : line_(line),
          rows_(window_rows(line.y_step)),
          columns_axis_(line.x_step, kWindow, line.width),
          rows_axis_(line.y_step, rows_, line.height) {}

    HWY_INLINE VecU16 sums(std::int64_t x, std::int64_t y) const {
        const std::uint8_t* from[kBlocks];
        std::int64_t in_window_x[kBlocks];
        std::int64_t in_window_y[kBlocks];
        for (std::size_t b = 0; b < kBlocks; ++b) {
            const std::int64_t column = columns_axis_.window_at(x);
            const std::int64_t row = rows_axis_.window_at(y);
            from[b] = line_.src + row * line_.stride + column;
            in_window_x[b] = x - (column << kPlaceBits);
            in_window_y[b] = y - (row << kPlaceBits);
            x += kBlock * line_.x_step;
            y += kBlock * line_.y_step;
        }
        const VecU16 columns = columns_axis_.places(in_window_x);
        VecU16 distance = rows_axis_.places(in_window_y);
        // The upper bytes look up nothing.
        const VecU16 left =
            hn::Or(hn::ShiftRight<4>(columns), hn::Set(kU16, std::uint16_t{0x8000}));
        const VecU16 right = hn::Add(left, hn::Set(kU16, std::uint16_t{1}));
        VecU16 left_sum = hn::Zero(kU16);
        VecU16 right_sum = hn::Zero(kU16);
        const VecU16 sixteen = hn::Set(kU16, std::uint16_t{16});
        for (std::int64_t r = 0; r < rows_; ++r) {
            const VecU8 bytes = window_row(from, r * line_.stride);
            const auto apart = hn::BitCast(kU16, hn::Abs(hn::BitCast(I16(), distance)));
            const VecU16 weight = hn::SaturatedSub(sixteen, apart);
            left_sum = hn::Add(left_sum, hn::Mul(weight, looked_up(bytes, left)));
            right_sum = hn::Add(right_sum, hn::Mul(weight, looked_up(bytes, right)));
            distance = hn::Sub(distance, sixteen);
        }
        const VecU16 to_right = hn::And(columns, hn::Set(kU16, std::uint16_t{15}));
        return hn::Add(hn::Mul(left_sum, hn::Sub(sixteen, to_right)), hn::Mul(right_sum, to_right));
    }

    HWY_INLINE bool fits() const { return line_.width >= kWindow && line_.height >= rows_; }

  private:
    static HWY_INLINE VecU16 looked_up(VecU8 bytes, VecU16 at) {
        return hn::BitCast(kU16, hn::TableLookupBytesOr0(bytes, hn::BitCast(kU8, at)));
    }

    static HWY_INLINE VecU8 window_row(const std::uint8_t* const (&from)[kBlocks],
                                       std::ptrdiff_t offset) {
        if constexpr (kBlocks == 1) {
            return hn::LoadU(kU8, from[0] + offset);
        } else {
            const hn::Half<U8> half;
            return hn::Combine(kU8, hn::LoadU(half, from[1] + offset),
                               hn::LoadU(half, from[0] + offset));
        }
    }

    const SlantedLine& line_;
    std::int64_t rows_;
    Axis columns_axis_, rows_axis_;
};

constexpr std::size_t kPixels = kBlocks * kBlock;  // of a vector

// Calls visit(i, sums of the pixels from i on) for a whole line of at least kPixels pixels: the
// last ones may come twice.
template <class Visit>
HWY_INLINE void for_each_sums(const SlantedLine& line, const Blender& blender,
                              const MarkedPart& part, const Visit& visit) {
    for (std::size_t i = 0; i < part.count; i += kPixels) {
        const std::size_t at = std::min(i, part.count - kPixels);
        const auto pixel = static_cast<std::int64_t>(at);
        visit(at, blender.sums(part.x + pixel * line.x_step, part.y + pixel * line.y_step));
    }
}

void blend_line(const SlantedLine& line, std::size_t count, std::uint8_t* out) {
    const Blender blender(line);
    if (count < kPixels || !blender.fits()) {
        plain::blend_line(line, count, out);
        return;
    }
    const hn::Half<U8> half;
    for_each_sums(line, blender, {line.x, line.y, count, 0},
                  [&](std::size_t i, VecU16 sums) HWY_ATTR {
                      const VecU16 rounded =
                          hn::ShiftRight<8>(hn::Add(sums, hn::Set(kU16, std::uint16_t{128})));
                      hn::StoreU(hn::DemoteTo(half, hn::BitCast(I16(), rounded)), half, out + i);
                  });
}

// One pixel of three or four bytes. The right and lower neighbours' share is in sixteenths.
template <int kBytes>
class PixelBlender {
    using Bytes = hn::Full128<std::uint8_t>;
    using Half = hn::Full64<std::uint8_t>;

  public:
    using Sums = hn::Full128<std::uint16_t>;
    using Vec = hn::Vec<Sums>;

    HWY_INLINE explicit PixelBlender(const SlantedLine& line) : line_(line) {
        for (std::uint16_t i = 0; i < 16; ++i) {
            for (std::size_t lane = 0; lane < 8; ++lane) {
                right_[i][lane] = i;
                lower_[i][lane] = lane < 4 ? static_cast<std::uint16_t>(16 - i) : i;
            }
        }
    }

    // The weighted bytes of the upper two pixels, to which those of the lower two are to be added:
    // four lanes of each.
    HWY_INLINE Vec weighted(std::int64_t x, std::int64_t y) const {
        const Sums d;
        const std::uint8_t* const upper =
            line_.src + (y >> kPlaceBits) * line_.stride + (x >> kPlaceBits) * kBytes;
        // The lower eight bytes end with the right pixel, since the image may end there.
        const std::uint8_t* const lower = upper + line_.stride - kSpare;
        const auto bytes = hn::Combine(Bytes(), hn::LoadU(Half(), lower), hn::LoadU(Half(), upper));
        const Vec left = lanes_of(bytes, 0);
        const Vec across = hn::Sub(lanes_of(bytes, kBytes), left);
        const Vec right = hn::Load(d, right_[x >> kToSixteenths & 15]);
        const Vec mixed = hn::Add(hn::ShiftLeft<4>(left), hn::Mul(across, right));
        return hn::Mul(mixed, hn::Load(d, lower_[y >> kToSixteenths & 15]));
    }

  private:
    static constexpr int kSpare = 8 - 2 * kBytes;

    // The bytes of a pixel above, from `first` on, and of the one below it.
    static HWY_INLINE Vec lanes_of(hn::Vec<Bytes> bytes, int first) {
        HWY_ALIGN std::uint8_t at[16];
        for (int lane = 0; lane < 8; ++lane) {
            const int channel = lane % 4;
            const int byte = lane < 4 ? first + channel : 8 + kSpare + first + channel;
            at[2 * lane] = static_cast<std::uint8_t>(channel < kBytes ? byte : 0x80);
            at[2 * lane + 1] = 0x80;
        }
        return hn::BitCast(Sums(), hn::TableLookupBytesOr0(bytes, hn::Load(Bytes(), at)));
    }

    const SlantedLine& line_;
    alignas(16) std::uint16_t right_[16][8];
    alignas(16) std::uint16_t lower_[16][8];
};

// Two pixels' sums of four bytes each, rounded.
template <class Vec>
HWY_INLINE Vec two_pixels(Vec first, Vec second) {
    const hn::Full128<std::uint16_t> d;
    const hn::Full128<std::uint64_t> d64;
    const auto a = hn::BitCast(d64, first);
    const auto b = hn::BitCast(d64, second);
    const Vec sums = hn::Add(hn::BitCast(d, hn::InterleaveLower(d64, a, b)),
                             hn::BitCast(d, hn::InterleaveUpper(d64, a, b)));
    return hn::ShiftRight<8>(hn::Add(sums, hn::Set(d, std::uint16_t{128})));
}

template <int kBytes>
HWY_INLINE void blend_pixels(const SlantedLine& line, std::size_t count, std::uint8_t* out) {
    constexpr std::size_t kTogether = 4;
    const PixelBlender<kBytes> blender(line);
    const hn::Full128<std::uint8_t> d8;
    alignas(16) static constexpr std::uint8_t kWithoutGaps[16] = {
        0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 0x80, 0x80, 0x80, 0x80};
    std::int64_t x = line.x;
    std::int64_t y = line.y;
    const auto next = [&]() HWY_ATTR {
        const auto sums = blender.weighted(x, y);
        x += line.x_step;
        y += line.y_step;
        return sums;
    };
    // A store may write four bytes too many, which the next one or the rest writes again.
    std::size_t i = 0;
    for (; i + kTogether + (kBytes == 3 ? 2 : 0) <= count; i += kTogether) {
        const auto p0 = next();
        const auto p1 = next();
        const auto p2 = next();
        const auto p3 = next();
        const hn::Half<decltype(d8)> half;
        const hn::Full128<std::int16_t> d16;
        const auto bytes = hn::Combine(d8, hn::DemoteTo(half, hn::BitCast(d16, two_pixels(p2, p3))),
                                       hn::DemoteTo(half, hn::BitCast(d16, two_pixels(p0, p1))));
        hn::StoreU(kBytes == 3 ? hn::TableLookupBytesOr0(bytes, hn::Load(d8, kWithoutGaps)) : bytes,
                   d8, out + i * kBytes);
    }
    SlantedLine rest = line;
    rest.x = x;
    rest.y = y;
    plain::blend_pixels<kBytes>(rest, count - i, out + i * kBytes);
}

void blend_line_of_3(const SlantedLine& line, std::size_t count, std::uint8_t* out) {
    blend_pixels<3>(line, count, out);
}
void blend_line_of_4(const SlantedLine& line, std::size_t count, std::uint8_t* out) {
    blend_pixels<4>(line, count, out);
}

// A bit per pixel of a vector, the first pixel in the least significant one.
HWY_INLINE std::uint64_t marks_of(VecU16 sums) {
    const auto above = hn::Gt(sums, hn::Set(kU16, std::uint16_t{128}));
    std::uint8_t bits[8] = {};
    hn::StoreMaskBits(kU16, above, bits);
    std::uint64_t marks = 0;
    std::memcpy(&marks, bits, kBlocks);
    return marks;
}

HWY_INLINE std::uint64_t reversed(std::uint64_t bits) {
    bits = (bits >> 1 & 0x5555555555555555) | (bits & 0x5555555555555555) << 1;
    bits = (bits >> 2 & 0x3333333333333333) | (bits & 0x3333333333333333) << 2;
    bits = (bits >> 4 & 0x0F0F0F0F0F0F0F0F) | (bits & 0x0F0F0F0F0F0F0F0F) << 4;
    return __builtin_bswap64(bits);
}

void blend_marks(const SlantedLine& line, MarkedPart* parts, std::size_t part_count) {
    const Blender blender(line);
    for (MarkedPart* part = parts; part != parts + part_count; ++part) {
        if (part->count < kPixels || !blender.fits()) {
            part->marks = plain::marks_of(line, *part);
            continue;
        }
        std::uint64_t marks = 0;
        for_each_sums(line, blender, *part,
                      [&](std::size_t i, VecU16 sums) HWY_ATTR { marks |= marks_of(sums) << i; });
        part->marks = reversed(marks);
    }
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(blend_line);
HWY_EXPORT(blend_line_of_3);
HWY_EXPORT(blend_line_of_4);
HWY_EXPORT(blend_marks);

void blend_line(const SlantedLine& line, std::size_t count, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(blend_line)(line, count, out);
}
void blend_line_of_3(const SlantedLine& line, std::size_t count, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(blend_line_of_3)(line, count, out);
}
void blend_line_of_4(const SlantedLine& line, std::size_t count, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(blend_line_of_4)(line, count, out);
}
void blend_marks(const SlantedLine& line, MarkedPart* parts, std::size_t part_count) {
    HWY_DYNAMIC_DISPATCH(blend_marks)(line, parts, part_count);
}

}  // namespace simd
#endif  // HWY_ONCE
