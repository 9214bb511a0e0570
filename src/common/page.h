// An owned page: the pixels of one image in a block from the memory hooks, one type per pixel
// layout.
//
// Use: GreyPage grey(height, width) has packed rows, BitonalPage page(height, width) rows of whole
// 32-bit words; a stride of one's own comes third. The bytes are uninitialised, or zero with
// zeroed(). page.view() is what operations work on; of a const page it is a const view.
//
// Keep true: sizes are at least 0, and the stride holds the width. Views do not outlive the page.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include "common/views.h"
#include "frame/buffer.h"

namespace common {

// The stride of a page that nobody chose one for, in bytes.
template <PixelKind kKind>
constexpr std::ptrdiff_t packed_stride(std::int32_t width) {
    if constexpr (kKind == PixelKind::kBitonal)
        return static_cast<std::ptrdiff_t>(bitonal_stride(width));
    if constexpr (kKind == PixelKind::kGrey) return width;
    return std::ptrdiff_t{3} * width;
}

template <PixelKind kKind>
class Page {
  public:
    using ConstView = View<const std::uint8_t, kKind>;
    using MutableView = View<std::uint8_t, kKind>;

    Page() = default;

    // Throws std::bad_alloc.
    Page(std::int32_t height, std::int32_t width)
        : Page(height, width, packed_stride<kKind>(width)) {}
    Page(std::int32_t height, std::int32_t width, std::ptrdiff_t stride)
        : height_(height),
          width_(width),
          stride_(stride),
          bytes_(static_cast<std::size_t>(height) * static_cast<std::size_t>(stride)) {}

    static Page zeroed(std::int32_t height, std::int32_t width) {
        Page page;
        page.height_ = height;
        page.width_ = width;
        page.stride_ = packed_stride<kKind>(width);
        page.bytes_ = frame::Buffer<std::uint8_t>::zeroed(static_cast<std::size_t>(height) *
                                                          static_cast<std::size_t>(page.stride_));
        return page;
    }

    MutableView view() { return {bytes_.data(), height_, width_, stride_}; }
    ConstView view() const { return {bytes_.data(), height_, width_, stride_}; }

    std::uint8_t* data() { return bytes_.data(); }
    const std::uint8_t* data() const { return bytes_.data(); }
    std::size_t size() const { return bytes_.size(); }  // bytes

  private:
    std::int32_t height_ = 0;
    std::int32_t width_ = 0;
    std::ptrdiff_t stride_ = 0;
    frame::Buffer<std::uint8_t> bytes_;
};

using BitonalPage = Page<PixelKind::kBitonal>;
using GreyPage = Page<PixelKind::kGrey>;

}  // namespace common
