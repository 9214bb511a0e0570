// A copy of a bitonal page's pixels, and pages combined byte by byte.
//
// Only the bytes that hold pixels are touched; padding bits among them take part.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "common/views.h"
#include "frame/buffer.h"

namespace ink {

// Each byte of a page becomes combine(it, the byte of the other), of which the low eight bits
// count. Other: a page of the same size, or what else has a row(y) of as many bytes.
template <class Other, class Combine>
void combine_pages(common::MutableBitonalView page, const Other& other, Combine combine) {
    const auto bytes = static_cast<std::size_t>(common::bitonal_bytes(page.width));
    for (std::int32_t y = 0; y < page.height; ++y) {
        std::uint8_t* const a = page.row(y);
        const std::uint8_t* const b = other.row(y);
        for (std::size_t i = 0; i < bytes; ++i)
            a[i] = static_cast<std::uint8_t>(combine(a[i], b[i]));
    }
}

inline void or_page(common::MutableBitonalView page, common::BitonalView other) {
    combine_pages(page, other, [](int a, int b) { return a | b; });
}

inline void and_page(common::MutableBitonalView page, common::BitonalView other) {
    combine_pages(page, other, [](int a, int b) { return a & b; });
}

// The copy has rows of its own, as short as its pixels allow. Throws std::bad_alloc.
class PageCopy {
  public:
    explicit PageCopy(common::BitonalView page)
        : height_(page.height),
          width_(page.width),
          stride_(static_cast<std::size_t>(common::bitonal_bytes(page.width))),
          bytes_(static_cast<std::size_t>(page.height) * stride_) {
        for (std::int32_t y = 0; y < height_; ++y) {
            std::memcpy(view().row(y), page.row(y), stride_);
        }
    }

    common::MutableBitonalView view() {
        return {bytes_.data(), height_, width_, static_cast<std::ptrdiff_t>(stride_)};
    }

  private:
    std::int32_t height_;
    std::int32_t width_;
    std::size_t stride_;
    frame::Buffer<std::uint8_t> bytes_;
};

}  // namespace ink
