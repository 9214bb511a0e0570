// Gradient binarization of small pages whose pixels are the input, with crafted settings, regions,
// types and threads, through all seven calls: what is refused stays unwritten, what is done has
// white padding, and the calls that promise the same page give the same bytes.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "vemoprepro/binarization.h"

namespace {

constexpr std::uint8_t kUntouched = 0x5C;

void require(bool holds) {
    if (!holds) std::abort();
}

// Repeats the pixels of the input over the page.
struct Source {
    const std::uint8_t* pixels;
    std::size_t count;
    std::size_t row_bytes;
    std::size_t row = 0;

    std::uint8_t at(std::size_t y, std::size_t i) const {
        return count == 0 ? 200 : pixels[(y * row_bytes + i) % count];
    }
    static int read(void* ctx, int mode, unsigned char* out) {
        auto* self = static_cast<Source*>(ctx);
        self->row = mode == 0 ? 0 : self->row + 1;
        for (std::size_t i = 0; i < self->row_bytes; ++i) out[i] = self->at(self->row, i);
        return 0;
    }
};

int drop_some(void*, const unsigned char* colour) {
    return colour[0] & 1;
}

struct Case {
    int type, width, x0, x1, y0, y1, threads, resolution;
    const std::uint8_t* settings;  // 10 bytes
    Source source;

    int columns() const { return x1 - x0; }
    int rows() const { return y1 - y0; }
    bool plausible() const {
        return type >= 1 && type <= 3 && x0 >= 0 && x1 > x0 && x1 <= width && y0 >= 0 && y1 > y0;
    }
    std::size_t stride() const { return (static_cast<std::size_t>(columns()) + 31) / 32 * 4; }
    std::vector<std::uint8_t> page() const {
        return std::vector<std::uint8_t>(
            plausible() ? stride() * static_cast<std::size_t>(rows()) : 4, kUntouched);
    }
};

bi_settings* settings_of(Case& c, const std::uint8_t* image) {
    const std::uint8_t* s = c.settings;
    bi_settings* handle = bi_setup(Source::read);
    bi_set_smooth(handle, s[0]);
    bi_set_delta1(handle, s[1]);
    bi_set_delta2(handle, s[2]);
    bi_set_black1(handle, s[3]);
    bi_set_black2(handle, s[4]);
    bi_set_normalize_magnitude(handle, s[5] % 4);
    bi_set_internal_gaussian_smoothing(handle, s[6] & 1);
    bi_set_fill_mean(handle, s[6] & 2);
    bi_set_undithering(handle, s[6] & 4);
    bi_set_sigma(handle, static_cast<signed char>(s[7]));
    bi_set_nb_threads(handle, c.threads);
    bi_set_image_pointer(handle, image);
    if ((s[6] & 8) != 0) bi_set_dropout(handle, drop_some, &c);
    return handle;
}

void check_page(const Case& c, int result, const std::vector<std::uint8_t>& page) {
    if (result != 0) {
        for (const std::uint8_t byte : page) require(byte == kUntouched);
        return;
    }
    require(c.plausible());
    const auto columns = static_cast<std::size_t>(c.columns());
    for (std::size_t y = 0; y < static_cast<std::size_t>(c.rows()); ++y) {
        for (std::size_t x = columns; x < 8 * c.stride(); ++x) {
            require((page[y * c.stride() + x / 8] >> (7 - x % 8) & 1) == 0);
        }
    }
}

template <class Call>
std::vector<std::uint8_t> run(Case& c, const std::uint8_t* image, Call call) {
    std::vector<std::uint8_t> page = c.page();
    bi_settings* handle = settings_of(c, image);
    check_page(c, call(handle, page.data()), page);
    bi_upset(handle);
    return page;
}

void compare_calls(Case& c, const std::uint8_t* image) {
    const auto plain = run(c, image, [&](bi_settings* handle, std::uint8_t* out) {
        return bi_gradl_do(handle, &c.source, c.type, c.width, c.x0, c.x1, c.y0, c.y1, out);
    });
    const auto traced = run(c, image, [&](bi_settings* handle, std::uint8_t* out) {
        return bi_gradl_do_debug(handle, &c.source, c.type, c.width, c.x0, c.x1, c.y0, c.y1, out,
                                 "/nowhere");
    });
    require(plain == traced);
    run(c, image, [&](bi_settings* handle, std::uint8_t* out) {
        return bi_gradl_do_with_resolution(handle, &c.source, c.type, c.width, c.resolution, c.x0,
                                           c.x1, c.y0, c.y1, out);
    });
    run(c, image, [&](bi_settings* handle, std::uint8_t* out) {
        return bi_gradl_do_sobel(handle, &c.source, c.type, c.width, c.x0, c.x1, c.y0, c.y1, out);
    });
    if (!c.plausible()) return;
    if (c.type == PREPRO_SOURCE_GREY && c.settings[0] == 0) {
        std::vector<std::uint8_t> grey;
        for (int y = c.y0; y < c.y1; ++y) {
            for (int x = c.x0; x < c.x1; ++x) {
                grey.push_back(
                    c.source.at(static_cast<std::size_t>(y), static_cast<std::size_t>(x)));
            }
        }
        const auto direct = run(c, image, [&](bi_settings* handle, std::uint8_t* out) {
            return bi_grey_gradl_do(handle, grey.data(), c.rows(), c.columns(), out);
        });
        require(direct == plain);
    }
}

void one_shots(Case& c) {
    std::vector<std::uint8_t> page = c.page();
    const int mode = c.settings[8] % 3;
    check_page(c,
               bi_gradl(mode, Source::read, &c.source, c.type, c.width, c.x0, c.x1, c.y0, c.y1,
                        page.data()),
               page);
    page = c.page();
    check_page(c,
               bi_gradl_dropout(mode, Source::read, &c.source, drop_some, &c, c.type, c.width, c.x0,
                                c.x1, c.y0, c.y1, page.data()),
               page);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 20) return 0;
    Case c{};
    c.type = data[0] % 5;
    c.width = data[1] % 90;
    c.x0 = data[2] % 8 == 7 ? data[3] % 90 - 5 : 0;
    c.x1 = data[2] % 8 == 6 ? data[3] : c.width;
    c.y0 = data[4] % 8 == 7 ? data[5] % 20 - 5 : 0;
    c.y1 = data[4] % 4 == 0 ? 90 + data[5] % 160 : data[5] % 60;
    c.threads = 1 + data[6] % 6;
    c.resolution = data[7] * 4;
    c.settings = data + 8;
    const std::size_t row_bytes =
        static_cast<std::size_t>(std::max(c.width, 1)) * (c.type == PREPRO_SOURCE_GREY ? 1 : 3);
    c.source = {data + 18, size - 18, row_bytes};
    std::vector<std::uint8_t> image;
    for (std::size_t y = 0; c.y1 > 0 && y < static_cast<std::size_t>(c.y1); ++y) {
        for (std::size_t i = 0; i < row_bytes; ++i) image.push_back(c.source.at(y, i));
    }
    compare_calls(c, (data[6] & 64) != 0 ? image.data() : nullptr);
    one_shots(c);
    return 0;
}
