// Thresholds and the grey preparation on small pages with crafted regions, types and settings: what
// is refused stays unwritten, what is done stays inside its buffers and has white padding.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "vemoprepro/binarization.h"

namespace {

// Values from the front of the input; 0 when it is used up.
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    std::uint8_t byte() {
        if (size_ == 0) return 0;
        --size_;
        return *data_++;
    }
    // Mostly small, sometimes far off.
    int number() {
        const std::uint8_t value = byte();
        if (value == 255) return INT32_MAX;
        if (value == 254) return INT32_MIN;
        return value - 10;
    }

  private:
    const std::uint8_t* data_;
    std::size_t size_;
};

// Delivers rows that follow from their number, in blocks of exactly one row.
struct Source {
    std::size_t row_bytes;
    std::uint8_t seed;
    std::uint32_t row = 0;

    static int read(void* ctx, int mode, unsigned char* out) {
        auto* self = static_cast<Source*>(ctx);
        self->row = mode == 0 ? 0 : self->row + 1;
        std::uint32_t value = self->seed * 2654435761U + self->row * 40503U;
        for (std::size_t i = 0; i < self->row_bytes; ++i) {
            value = value * 1664525U + 1013904223U;
            out[i] = static_cast<unsigned char>(value >> (self->seed % 2 == 0 ? 24 : 25));
        }
        return 0;
    }
};

int drop_some(void*, const unsigned char* colour) {
    return colour[0] & 1;
}

void require(bool holds) {
    if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const int type = input.byte() % 5;
    const int width = input.number();
    const int x0 = input.number();
    const int x1 = input.number();
    const int y0 = input.number();
    // A far-off bottom would be read all the way down.
    const int y1 = std::min(input.number(), 400);
    const std::uint8_t smooth = input.byte();
    const std::uint8_t thresh = input.byte();
    const int threads = input.byte() % 6;
    const std::uint8_t flags = input.byte();
    const int resolution = input.number();

    // These are allowed, and only slow.
    if (width > 300 || y0 > 300) return 0;
    const bool plausible = width >= 1 && x0 >= 0 && x1 > x0 && x1 <= width && y0 >= 0 && y1 > y0;
    const std::size_t row_bytes =
        plausible ? static_cast<std::size_t>(width) * (type == 1 ? 1 : 3) : 1;
    const std::size_t columns = plausible ? static_cast<std::size_t>(x1 - x0) : 1;
    const std::size_t rows = plausible ? static_cast<std::size_t>(y1 - y0) : 1;
    const std::size_t stride = (columns + 31) / 32 * 4;
    Source source{row_bytes, input.byte()};
    std::vector<std::uint8_t> image;
    if ((flags & 1) != 0 && plausible) {
        image.assign(row_bytes * static_cast<std::size_t>(y1), smooth);
    }

    std::vector<std::uint8_t> bits(stride * rows, 0x5C);
    bi_settings* handle = bi_setup(Source::read);
    bi_set_smooth(handle, smooth);
    bi_set_thresh(handle, thresh);
    bi_set_nb_threads(handle, threads);
    bi_set_undithering(handle, flags & 2);
    bi_set_image_pointer(handle, image.empty() ? nullptr : image.data());
    if ((flags & 4) != 0) bi_set_dropout(handle, drop_some, &source);
    if (bi_thresh_do(handle, &source, type, width, x0, x1, y0, y1, bits.data()) == 0) {
        require(plausible);
        for (std::size_t y = 0; y < rows; ++y) {
            for (std::size_t x = columns; x < 8 * stride; ++x) {
                require((bits[y * stride + x / 8] >> (7 - x % 8) & 1) == 0);
            }
        }
    } else {
        for (const std::uint8_t byte : bits) require(byte == 0x5C);
    }
    bi_upset(handle);

    std::vector<std::uint8_t> grey(columns * rows, 0x5C);
    const void* record[4] = {nullptr, nullptr, nullptr, image.empty() ? nullptr : image.data()};
    if (bi_color2greybuf(smooth, Source::read, &source, record, type, width, resolution, x0, x1, y0,
                         y1, grey.data(), static_cast<int>(grey.size()), threads, flags & 2) != 0) {
        for (const std::uint8_t byte : grey) require(byte == 0x5C);
    }
    return 0;
}
