#include "common/basic_image.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <string>
#include <utility>

#include "common/views.h"
#include "frame/memory.h"

namespace common {
namespace {

constexpr char kCopyFailed[] = "error while copying image, could not allocate enough memory";
constexpr char kConversionFailed[] =
    "error while copy-constructing image, could not allocate enough memory";
constexpr char kSwapFailed[] = "The images you want to swap must be both of type BasicImage.";

std::int64_t row_bytes(int width, int type) {
    switch (type) {
        case kBitonal:
            return bitonal_stride(width);
        case kGrey:
            return width;
        case kColour:
            return std::int64_t{3} * width;
        case kFourBytes:
            return std::int64_t{4} * width;
        default:
            return 0;
    }
}

// Null when there is no memory or the size is none that the image can hold.
std::uint8_t* allocate_pixels(std::int64_t size) {
    if (size < 0 || size > std::numeric_limits<std::int32_t>::max()) return nullptr;
    return static_cast<std::uint8_t*>(frame::allocate(static_cast<std::size_t>(size)));
}

// The eight grey pixels of every byte of a bitonal row.
constexpr auto kGreyOfByte = [] {
    std::array<std::array<std::uint8_t, 8>, 256> table{};
    for (unsigned value = 0; value < 256; ++value) {
        for (unsigned bit = 0; bit < 8; ++bit)
            table[value][bit] = (value >> (7 - bit) & 1) != 0 ? 0 : 255;
    }
    return table;
}();

void expand_row(const Image& source, int y, int width, std::uint8_t* out) {
    const std::uint8_t* bytes = source.getRow(y);
    const int offset = source.getBitOffset();
    int x = 0;
    const auto single = [&] { out[x] = source.getPixel(x, y) != 0 ? 0 : 255; };
    for (; x < width && (x + offset) % 8 != 0; ++x) single();
    for (; x + 8 <= width; x += 8)
        std::memcpy(out + x, kGreyOfByte[bytes[(x + offset) / 8]].data(), 8);
    for (; x < width; ++x) single();
}

}  // namespace

BasicImage::BasicImage(int height, int width, int type, int x_resolution, int y_resolution)
    : height_(height),
      width_(width),
      x_resolution_(x_resolution),
      y_resolution_(y_resolution),
      type_(type) {
    const std::int64_t stride = row_bytes(width, type);
    // A row beyond 31 bits is refused whatever its length: cut, so that no product overflows.
    constexpr std::int64_t kTooLong = std::int64_t{1} << 31;
    const std::int64_t size = height * std::clamp(stride, -kTooLong, kTooLong);
    if (size == 0) {
        stride_ = static_cast<std::int32_t>(stride);
        return;
    }
    data_ = allocate_pixels(size);
    if (data_ == nullptr) {
        throw "error while constructing BasicImage " + std::to_string(height) + " x " +
            std::to_string(width) + " no data, could not allocate enough memory";
    }
    std::memset(data_, 0, static_cast<std::size_t>(size));
    stride_ = static_cast<std::int32_t>(stride);
    size_ = static_cast<std::int32_t>(size);
}

BasicImage::BasicImage(std::uint8_t* data, int width, int height, int stride, int type,
                       int x_resolution, int y_resolution)
    : data_(data),
      size_(static_cast<std::int32_t>(std::int64_t{stride} * height)),
      height_(height),
      width_(width),
      stride_(stride),
      x_resolution_(x_resolution),
      y_resolution_(y_resolution),
      type_(type),
      owns_data_(false) {}

BasicImage::BasicImage(const BasicImage& other) : Image(other) {
    take_copy(other);
    take_geometry(other);
}

BasicImage& BasicImage::operator=(const BasicImage& other) {
    if (this == &other) return *this;
    if (size_ != other.size_) {
        drop();
        take_copy(other);
    } else if (data_ != nullptr && other.data_ != nullptr) {
        std::memcpy(data_, other.data_, static_cast<std::size_t>(size_));
    }
    take_geometry(other);
    return *this;
}

BasicImage::BasicImage(const Image& bitonal)
    : height_(bitonal.getHeight()),
      width_(bitonal.getWidth()),
      stride_(bitonal.getWidth()),
      x_resolution_(bitonal.getXResolution()),
      y_resolution_(bitonal.getYResolution()),
      type_(kGrey) {
    const std::int64_t size = std::int64_t{height_} * width_;
    if (size == 0) return;
    data_ = allocate_pixels(size);
    if (data_ == nullptr) throw kConversionFailed + 0;
    size_ = static_cast<std::int32_t>(size);
    for (int y = 0; y < height_; ++y) expand_row(bitonal, y, width_, getRow(y));
}

BasicImage::~BasicImage() {
    drop();
}

// Fresh memory with the other's bytes; called without memory of its own.
void BasicImage::take_copy(const BasicImage& other) {
    if (other.data_ == nullptr) return;
    data_ = allocate_pixels(other.size_);
    if (data_ == nullptr) throw kCopyFailed + 0;
    size_ = other.size_;
    owns_data_ = true;
    std::memcpy(data_, other.data_, static_cast<std::size_t>(size_));
}

// Everything but the memory.
void BasicImage::take_geometry(const BasicImage& other) noexcept {
    height_ = other.height_;
    width_ = other.width_;
    stride_ = other.stride_;
    x_resolution_ = other.x_resolution_;
    y_resolution_ = other.y_resolution_;
    type_ = other.type_;
}

void BasicImage::drop() noexcept {
    if (owns_data_) frame::release(data_);
    data_ = nullptr;
    size_ = 0;
    owns_data_ = true;
}

std::uint8_t* BasicImage::getRow(int row) const {
    switch (type_) {
        case kBitonal:
            return data_ + std::ptrdiff_t{row} * stride_;
        case kGrey:
            return data_ + std::ptrdiff_t{row} * width_;
        case kColour:
            return data_ + std::ptrdiff_t{row} * width_ * 3;
        default:
            return nullptr;
    }
}

bool BasicImage::getBytesPerPixel(int& out) const {
    switch (type_) {
        case kGrey:
            out = 1;
            return true;
        case kColour:
            out = 3;
            return true;
        case kFourBytes:
            out = 4;
            return true;
        default:
            return false;
    }
}

std::uint32_t BasicImage::getPixel(int x, int y) const {
    const std::uint8_t* row = getRow(y);
    switch (type_) {
        case kBitonal:
            return static_cast<std::uint32_t>(row[x / 8]) >> (7 - x % 8) & 1U;
        case kGrey:
            return row[x];
        case kColour: {
            const std::uint8_t* pixel = row + std::ptrdiff_t{x} * 3;
            return (std::uint32_t{pixel[0]} << 16) + (std::uint32_t{pixel[1]} << 8) + pixel[2];
        }
        default:
            return 0;
    }
}

void BasicImage::setPixel(int x, int y, std::uint32_t value) {
    std::uint8_t* row = getRow(y);
    switch (type_) {
        case kBitonal: {
            const auto bit = static_cast<std::uint8_t>(0x80 >> (x % 8));
            std::uint8_t& byte = row[x / 8];
            byte = static_cast<std::uint8_t>(value != 0 ? byte | bit : byte & ~bit);
            break;
        }
        case kGrey:
            row[x] = static_cast<std::uint8_t>(value);
            break;
        case kColour: {
            std::uint8_t* pixel = row + std::ptrdiff_t{x} * 3;
            pixel[0] = static_cast<std::uint8_t>(value >> 16);
            pixel[1] = static_cast<std::uint8_t>(value >> 8);
            pixel[2] = static_cast<std::uint8_t>(value);
            break;
        }
        default:
            break;
    }
}

void BasicImage::swap(Image& other) {
    auto* same = dynamic_cast<BasicImage*>(&other);
    if (same == nullptr) throw kSwapFailed + 0;
    std::swap(data_, same->data_);
    std::swap(size_, same->size_);
    std::swap(height_, same->height_);
    std::swap(width_, same->width_);
    std::swap(stride_, same->stride_);
    std::swap(x_resolution_, same->x_resolution_);
    std::swap(y_resolution_, same->y_resolution_);
    std::swap(type_, same->type_);
    std::swap(owns_data_, same->owns_data_);
}

void BasicImage::clampResolution(int low, int high) {
    x_resolution_ = std::min(high, std::max(x_resolution_, low));
    y_resolution_ = std::min(high, std::max(y_resolution_, low));
}

void BasicImage::convertToGrey() {
    if (type_ != kBitonal) return;
    BasicImage grey(static_cast<const Image&>(*this));
    swap(grey);
}

void BasicImage::convertToBitonal(int threshold) {
    if (type_ != kGrey) return;
    BasicImage bitonal(height_, width_, kBitonal, x_resolution_, y_resolution_);
    for (int y = 0; y < height_; ++y) {
        const std::uint8_t* grey = getRow(y);
        std::uint8_t* bits = bitonal.getRow(y);
        for (int x = 0; x < width_; ++x) {
            if (grey[x] <= threshold) bits[x / 8] |= static_cast<std::uint8_t>(0x80 >> (x % 8));
        }
    }
    swap(bitonal);
}

void BasicImage::fillWhite() {
    if (data_ == nullptr || type_ < kBitonal || type_ > kColour) return;
    std::memset(data_, type_ == kBitonal ? 0 : 255,
                static_cast<std::size_t>(height_) * static_cast<std::size_t>(stride_));
}

void BasicImage::copyWhereMaskIsBlack(const Image& source, const Image& mask) {
    if (type_ != kBitonal && type_ != kGrey) return;
    for (int y = 0; y < height_; ++y) {
        std::uint8_t* mine = getRow(y);
        const std::uint8_t* theirs = source.getRow(y);
        const std::uint8_t* chosen = mask.getRow(y);
        for (int i = 0; i < stride_; ++i) {
            // Black is 1 in a bitonal mask and 0 in a grey one.
            const unsigned take = type_ == kBitonal ? chosen[i] : ~unsigned{chosen[i]};
            mine[i] = static_cast<std::uint8_t>((take & theirs[i]) | (~take & mine[i]));
        }
    }
}

}  // namespace common
