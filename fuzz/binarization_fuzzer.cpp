// All binarizations of small pages whose pixels are the input, with crafted settings, regions,
// types and threads: what is refused stays unwritten, what is done stays inside its buffers and has
// white padding, and the calls that promise the same page give the same bytes.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "vemoprepro/binarization.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t kUntouched = 0x5C;

void require(bool holds) {
    if (!holds) std::abort();
}

// Mostly small, sometimes large enough for bands and for wide vectors, or far off.
int number(std::uint8_t value) {
    if (value == 255) return INT32_MAX;
    if (value == 254) return INT32_MIN;
    return value < 220 ? value % 55 - 5 : value;
}

int drop_some(void*, const unsigned char* colour) {
    return colour[0] & 1;
}

// A source that repeats the pixels of the input, a region of it, and settings.
struct Case {
    int type, width, x0, x1, y0, y1, threads, resolution;
    const std::uint8_t* settings;  // 11 bytes
    const std::uint8_t* pixels;
    std::size_t count;
    std::size_t row = 0;

    bool plausible() const {
        return type >= 1 && type <= 3 && x0 >= 0 && x1 > x0 && x1 <= width && y0 >= 0 && y1 > y0;
    }
    std::size_t row_bytes() const {
        return static_cast<std::size_t>(width) * (type == PREPRO_SOURCE_GREY ? 1 : 3);
    }
    std::size_t columns() const { return plausible() ? static_cast<std::size_t>(x1 - x0) : 1; }
    std::size_t rows() const { return plausible() ? static_cast<std::size_t>(y1 - y0) : 1; }
    std::size_t stride() const { return (columns() + 31) / 32 * 4; }

    // The search for screens takes long, on large pages too long.
    int undithering() const { return columns() * rows() <= 4000 ? settings[6] & 4 : 0; }

    std::uint8_t at(std::size_t y, std::size_t i) const {
        return count == 0 ? 200 : pixels[(y * row_bytes() + i) % count];
    }
    static int read(void* ctx, int mode, unsigned char* out) {
        auto* self = static_cast<Case*>(ctx);
        self->row = mode == 0 ? 0 : self->row + 1;
        for (std::size_t i = 0; i < self->row_bytes(); ++i) out[i] = self->at(self->row, i);
        return 0;
    }
};

// Calls call(page) and checks what it leaves in the page.
template <class Call>
Bytes checked(const Case& c, Call call) {
    Bytes page(c.stride() * c.rows(), kUntouched);
    if (call(page.data()) != 0) {
        for (const std::uint8_t byte : page) require(byte == kUntouched);
        return page;
    }
    require(c.plausible());
    for (std::size_t y = 0; y < c.rows(); ++y) {
        for (std::size_t x = c.columns(); x < 8 * c.stride(); ++x) {
            require((page[y * c.stride() + x / 8] >> (7 - x % 8) & 1) == 0);
        }
    }
    return page;
}

// The same with a settings object, which stands before the page.
template <class Call>
Bytes with_settings(Case& c, const void* image, Call call) {
    const std::uint8_t* s = c.settings;
    bi_settings* handle = bi_setup(Case::read);
    bi_set_smooth(handle, s[0]);
    bi_set_delta1(handle, s[1]);
    bi_set_delta2(handle, s[2]);
    bi_set_black1(handle, s[3]);
    bi_set_black2(handle, s[4]);
    bi_set_normalize_magnitude(handle, s[5] % 4);
    bi_set_internal_gaussian_smoothing(handle, s[6] & 1);
    bi_set_fill_mean(handle, s[6] & 2);
    bi_set_undithering(handle, static_cast<unsigned char>(c.undithering()));
    bi_set_sigma(handle, static_cast<signed char>(s[7]));
    bi_set_thresh(handle, s[8]);
    bi_set_nb_threads(handle, c.threads);
    bi_set_image_pointer(handle, image);
    if ((s[6] & 8) != 0) bi_set_dropout(handle, drop_some, &c);
    Bytes page = checked(c, [&](std::uint8_t* out) { return call(handle, out); });
    bi_upset(handle);
    return page;
}

void region_calls(Case& c, const void* image) {
    const auto run = [&](auto call, auto... more) {
        return with_settings(c, image, [&](bi_settings* handle, std::uint8_t* out) {
            return call(handle, &c, c.type, c.width, c.x0, c.x1, c.y0, c.y1, out, more...);
        });
    };
    run(bi_thresh_do);
    run(bi_gradl_do_sobel);
    const Bytes page = run(bi_gradl_do);
    require(page == run(bi_gradl_do_debug, "/nowhere"));
    with_settings(c, image, [&](bi_settings* handle, std::uint8_t* out) {
        return bi_gradl_do_with_resolution(handle, &c, c.type, c.width, c.resolution, c.x0, c.x1,
                                           c.y0, c.y1, out);
    });
    if (!c.plausible() || c.type != PREPRO_SOURCE_GREY || c.settings[0] != 0) return;
    Bytes grey;
    for (int y = c.y0; y < c.y1; ++y) {
        for (int x = c.x0; x < c.x1; ++x) {
            grey.push_back(c.at(static_cast<std::size_t>(y), static_cast<std::size_t>(x)));
        }
    }
    require(page == with_settings(c, image, [&](bi_settings* handle, std::uint8_t* out) {
                return bi_grey_gradl_do(handle, grey.data(), c.y1 - c.y0, c.x1 - c.x0, out);
            }));
}

void one_shots(Case& c) {
    const int mode = c.undithering() != 0 ? 2 : c.settings[9] % 2;
    checked(c, [&](std::uint8_t* out) {
        return bi_gradl(mode, Case::read, &c, c.type, c.width, c.x0, c.x1, c.y0, c.y1, out);
    });
    checked(c, [&](std::uint8_t* out) {
        return bi_thresh_dropout(mode, c.settings[8], Case::read, &c, drop_some, &c, c.type,
                                 c.width, c.x0, c.x1, c.y0, c.y1, out);
    });
}

void grey_image(Case& c, const void* image) {
    Bytes grey(c.columns() * c.rows(), kUntouched);
    const void* record[4] = {nullptr, nullptr, nullptr, image};
    const int size = static_cast<int>(grey.size()) - c.settings[10] % 2;
    if (bi_color2greybuf(c.settings[0], Case::read, &c, record, c.type, c.width, c.resolution, c.x0,
                         c.x1, c.y0, c.y1, grey.data(), size, c.threads,
                         static_cast<unsigned char>(c.undithering())) != 0) {
        for (const std::uint8_t byte : grey) require(byte == kUntouched);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kHeader = 19;
    if (size < kHeader) return 0;
    Case c{};
    c.type = data[0] % 5;
    c.width = number(data[1]);
    c.x0 = number(data[2]);
    c.x1 = data[2] % 2 == 0 ? c.width : number(data[3]);
    c.y0 = number(data[4]);
    c.y1 = std::min(number(data[5]), 250);
    c.threads = data[6] % 6;
    c.resolution = data[7] * 4;
    c.settings = data + 8;
    c.pixels = data + kHeader;
    c.count = size - kHeader;
    // These are allowed, and only slow: what is above a region is read too.
    if (c.width > 300 || c.y0 > 300) return 0;
    Bytes image;
    if ((data[6] & 64) != 0 && c.plausible()) {
        for (std::size_t y = 0; y < static_cast<std::size_t>(c.y1); ++y) {
            for (std::size_t i = 0; i < c.row_bytes(); ++i) image.push_back(c.at(y, i));
        }
    }
    const void* memory = image.empty() ? nullptr : image.data();
    region_calls(c, memory);
    one_shots(c);
    grey_image(c, memory);
    return 0;
}
