// Vector forms of shear_pixels.h.
//
// Values are bytes or, for channels of five bits, numbers of 16 bits with their bytes exchanged.
// What a channel gives away is at most itself, and a channel stays within its bits in the end;
// wrapping sums are exact therefore, also those of all fields of a number at once.
//
// Lines move away from where they began, so the last place is written first and nothing is
// overwritten before it has been read. A vector of columns goes up the image: each row takes what
// the pixels of the row gives and what those of the row above give, which is the next row's
// concern too. Columns of a vector that move by different shifts are gathered from as many rows.
// The rows are taken in tiles, all vectors of a tile one after the other, so that memory is met in
// order.
#include "simd/pixels/shear_pixels.h"

#include <algorithm>
#include <cstring>

#include "simd/pixels/plain/shear_pixels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/pixels/shear_pixels_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/vectors.h"

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

// A channel in every byte.
struct ByteChannels {
    static constexpr ShearedChannels kKind = ShearedChannels::kBytes;

    HWY_INLINE explicit ByteChannels(VecU8 fractions)
        : even_(even_bytes(fractions)), odd_(odd_bytes(fractions)) {}

    static HWY_INLINE VecU8 values(VecU8 bytes) { return bytes; }
    static HWY_INLINE VecU8 bytes(VecU8 values) { return values; }

    // What each value gives away.
    HWY_INLINE VecU8 given(VecU8 values) const {
        const VecU16 even = hn::Mul(even_bytes(values), even_);
        const VecU16 odd = hn::Mul(odd_bytes(values), odd_);
        return hn::BitCast(kU8, hn::Or(hn::ShiftRight<8>(even),
                                       hn::And(odd, hn::Set(kU16, std::uint16_t{0xFF00}))));
    }
    static HWY_INLINE VecU8 sheared(VecU8 values, VecU8 given, VecU8 received) {
        return hn::Add(hn::Sub(values, given), received);
    }
    static HWY_INLINE VecU8 beside_end(VecU8 end, VecU8 background) {
        const VecU8 halves =
            hn::And(hn::ShiftRight<1>(hn::Xor(end, background)), hn::Set(kU8, std::uint8_t{0x7F}));
        return hn::Add(hn::And(end, background), halves);
    }

  private:
    VecU16 even_;  // fractions
    VecU16 odd_;
};

// Three channels in every number of 16 bits.
struct FieldChannels {
    static constexpr ShearedChannels kKind = ShearedChannels::kFiveBits;

    HWY_INLINE explicit FieldChannels(VecU8 fractions) : fractions_(even_bytes(fractions)) {}

    static HWY_INLINE VecU8 bytes(VecU8 values) {
        const VecU16 v = hn::BitCast(kU16, values);
        return hn::BitCast(kU8, hn::Or(hn::ShiftLeft<8>(v), hn::ShiftRight<8>(v)));
    }
    static HWY_INLINE VecU8 values(VecU8 bytes_in_order) {
        const VecU16 v = hn::BitCast(kU16, bytes(bytes_in_order));
        return hn::BitCast(kU8, hn::And(v, hn::Set(kU16, std::uint16_t{0x7FFF})));
    }
    HWY_INLINE VecU8 given(VecU8 values) const {
        const VecU16 v = hn::BitCast(kU16, values);
        const VecU16 field = hn::Set(kU16, std::uint16_t{31});
        const auto part = [&](VecU16 channel) HWY_ATTR {
            return hn::ShiftRight<5>(hn::Mul(hn::And(channel, field), fractions_));
        };
        const VecU16 high = hn::ShiftLeft<10>(part(hn::ShiftRight<10>(v)));
        const VecU16 middle = hn::ShiftLeft<5>(part(hn::ShiftRight<5>(v)));
        return hn::BitCast(kU8, hn::Or(hn::Or(high, middle), part(v)));
    }
    static HWY_INLINE VecU8 sheared(VecU8 values, VecU8 given, VecU8 received) {
        const auto wide = [](VecU8 v) HWY_ATTR { return hn::BitCast(kU16, v); };
        return hn::BitCast(kU8, hn::Add(hn::Sub(wide(values), wide(given)), wide(received)));
    }
    static HWY_INLINE VecU8 beside_end(VecU8, VecU8 background) { return background; }

  private:
    VecU16 fractions_;
};

// A vector of bytes of a row, none of the first pixel.
template <class Channels>
HWY_INLINE VecU8 sheared_at(const Channels& channels, const std::uint8_t* from,
                            std::size_t pixel_bytes) {
    const VecU8 values = Channels::values(hn::LoadU(kU8, from));
    const VecU8 before = Channels::values(hn::LoadU(kU8, from - pixel_bytes));
    return Channels::bytes(
        Channels::sheared(values, channels.given(values), channels.given(before)));
}

// The pixels behind the first from the end; the vector next to the first is taken before any other
// is stored, and may overlap the one behind it.
template <class Channels>
HWY_INLINE void shear_row_of(const ShearFormat& format, std::uint8_t* row, std::size_t count,
                             std::size_t shift, std::uint8_t fraction) {
    const std::size_t lanes = hn::Lanes(kU8);
    const std::size_t pixel = format.pixel_bytes;
    const std::size_t bytes = count * pixel;
    if (bytes < pixel + lanes) return plain::shear_row(format, row, count, shift, fraction);
    const Channels channels(hn::Set(kU8, fraction));
    std::uint8_t* to = row + shift * pixel;
    const VecU8 foremost = sheared_at(channels, row + pixel, pixel);
    std::size_t end = bytes;
    for (; end >= pixel + lanes; end -= lanes) {
        const std::size_t at = end - lanes;
        hn::StoreU(sheared_at(channels, row + at, pixel), kU8, to + at);
    }
    hn::StoreU(foremost, kU8, to + pixel);
    plain::shear_row(format, row, 1, shift, fraction);
}

// Some columns of an image, as many as a vector has lanes, or fewer where kPartial.
template <class Channels, bool kPartial>
class Columns {
  public:
    HWY_INLINE Columns(const ColumnShear& image, const ColumnMoves& moves, std::size_t x)
        : first_(image.pixels + x),
          stride_(image.stride),
          height_(static_cast<std::int64_t>(image.height)),
          lanes_(std::min(hn::Lanes(kU8), image.row_bytes - x)),
          shifts_(load(moves.shifts + x)),
          background_(load(moves.background + x)),
          channels_(load(moves.fractions + x)) {
        const std::int64_t left = moves.block_shifts[x / ColumnMoves::kBlock];
        const std::int64_t right =
            left + static_cast<std::int8_t>(moves.shifts[x + lanes_ - 1] - moves.shifts[x]);
        least_ = std::min(left, right);
        most_ = std::max(left, right);
    }

    // Rows end - 1, ..., begin of the result.
    HWY_INLINE void shear(std::int64_t begin, std::int64_t end) const {
        // The rows in which no column begins or ends.
        const std::int64_t top = std::clamp(most_ + 1, begin, end);
        const std::int64_t bottom = std::clamp(least_ + height_, top, end);
        for (std::int64_t y = end; y-- > bottom;) store(y, ending(y));
        if (top < bottom) inner(top, bottom);
        for (std::int64_t y = top; y-- > begin;) store(y, ending(y));
    }

  private:
    HWY_INLINE VecU8 load(const std::uint8_t* from) const {
        if constexpr (!kPartial) return hn::LoadU(kU8, from);
        std::uint8_t bytes[64] = {};
        std::memcpy(bytes, from, lanes_);
        return hn::LoadU(kU8, bytes);
    }
    HWY_INLINE VecU8 values(std::int64_t y) const {
        return Channels::values(load(first_ + y * stride_));
    }
    HWY_INLINE void store(std::int64_t y, VecU8 bytes) const {
        std::uint8_t* to = first_ + y * stride_;
        if constexpr (kPartial) {
            std::uint8_t whole[64];
            hn::StoreU(bytes, kU8, whole);
            std::memcpy(to, whole, lanes_);
        } else {
            hn::StoreU(bytes, kU8, to);
        }
    }
    HWY_INLINE auto moving_by(std::int64_t shift) const {
        return hn::Eq(shifts_, hn::Set(kU8, static_cast<std::uint8_t>(shift)));
    }

    HWY_INLINE void inner(std::int64_t begin, std::int64_t end) const {
        if (least_ == most_) return inner_by<0>(begin, end);
        if (least_ + 1 == most_) return inner_by<1>(begin, end);
        inner_by<-1>(begin, end);
    }

    // kSteps: the difference between the shifts, or -1 for any.
    template <int kSteps>
    HWY_INLINE void inner_by(std::int64_t begin, std::int64_t end) const {
        const auto least = moving_by(least_);
        const auto arriving = [&](std::int64_t y) HWY_ATTR {
            const std::uint8_t* from = first_ + (y - least_) * stride_;
            if (kSteps == 0) return Channels::values(load(from));
            if (kSteps == 1)
                return Channels::values(hn::IfThenElse(least, load(from), load(from - stride_)));
            VecU8 bytes = load(from);
            for (std::int64_t shift = least_ + 1; shift <= most_; ++shift) {
                from -= stride_;
                bytes = hn::IfThenElse(moving_by(shift), load(from), bytes);
            }
            return Channels::values(bytes);
        };
        VecU8 values = arriving(end - 1);
        VecU8 given = channels_.given(values);
        for (std::int64_t y = end; y-- > begin;) {
            const VecU8 above = arriving(y - 1);
            const VecU8 received = channels_.given(above);
            store(y, Channels::bytes(Channels::sheared(values, given, received)));
            values = above;
            given = received;
        }
    }

    // A row in which some columns have begun and others have not, or have ended.
    HWY_NOINLINE VecU8 ending(std::int64_t y) const {
        VecU8 bytes = background_;
        if (y + 1 < least_ || y > most_ + height_) return bytes;
        for (std::int64_t shift = least_; shift <= most_; ++shift) {
            const std::int64_t k = y - shift;
            if (k < -1 || k > height_) continue;
            VecU8 arriving;
            if (k == -1 || k == height_) {
                const VecU8 end = load(first_ + (k == -1 ? 0 : height_ - 1) * stride_);
                arriving = Channels::beside_end(end, background_);
            } else if (k == 0) {
                arriving = Channels::bytes(values(0));
            } else {
                const VecU8 here = values(k);
                arriving = Channels::bytes(
                    Channels::sheared(here, channels_.given(here), channels_.given(values(k - 1))));
            }
            bytes = hn::IfThenElse(moving_by(shift), arriving, bytes);
        }
        return bytes;
    }

    std::uint8_t* first_;  // of the image
    std::ptrdiff_t stride_;
    std::int64_t height_;
    std::size_t lanes_;  // columns
    VecU8 shifts_;       // modulo 256
    VecU8 background_;
    Channels channels_;
    std::int64_t least_;  // shift
    std::int64_t most_;
};

template <class Channels>
HWY_INLINE void shear_columns_of(const ColumnShear& image, const ColumnMoves& moves) {
    constexpr std::int64_t kTileRows = 32;
    const std::size_t lanes = hn::Lanes(kU8);
    for (auto end = static_cast<std::int64_t>(image.out_height); end > 0; end -= kTileRows) {
        const std::int64_t begin = std::max<std::int64_t>(end - kTileRows, 0);
        std::size_t x = 0;
        for (; x + lanes <= image.row_bytes; x += lanes)
            Columns<Channels, false>(image, moves, x).shear(begin, end);
        if (x < image.row_bytes) Columns<Channels, true>(image, moves, x).shear(begin, end);
    }
}

void shear_row(const ShearFormat& format, std::uint8_t* row, std::size_t count, std::size_t shift,
               std::uint8_t fraction) {
    if (format.channels == ShearedChannels::kBytes) {
        shear_row_of<ByteChannels>(format, row, count, shift, fraction);
    } else {
        shear_row_of<FieldChannels>(format, row, count, shift, fraction);
    }
}

void shear_columns(ShearedChannels channels, const ColumnShear& image, const ColumnMoves& moves) {
    if (channels == ShearedChannels::kBytes) {
        shear_columns_of<ByteChannels>(image, moves);
    } else {
        shear_columns_of<FieldChannels>(image, moves);
    }
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(shear_row);
HWY_EXPORT(shear_columns);

void shear_row(const ShearFormat& format, std::uint8_t* row, std::size_t count, std::size_t shift,
               std::uint8_t fraction) {
    HWY_DYNAMIC_DISPATCH(shear_row)(format, row, count, shift, fraction);
}

void shear_columns(ShearedChannels channels, const ColumnShear& image, const ColumnMoves& moves) {
    HWY_DYNAMIC_DISPATCH(shear_columns)(channels, image, moves);
}

}  // namespace simd
#endif  // HWY_ONCE
