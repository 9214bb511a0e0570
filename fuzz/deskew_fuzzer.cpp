// The bitonal deskew rotations on small pages with crafted sizes, strides and skews: the source
// comes back as it was, a refusal writes nothing, and no ink is made or lost beyond what the method
// allows.
#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "vemoprepro/deskew.h"

namespace {

using Rotation = int (*)(int, int, unsigned char*, int, int, int, unsigned char*, int, int, int,
                         prepro_progress);

int own(int skew, int scale, unsigned char* src, int h, int w, int stride, unsigned char* dst,
        int oh, int ow, int ostride, prepro_progress progress) {
    return skrotbmp_mem(skew, scale, src, h, w, stride, dst, oh, ow, ostride, progress);
}

int aligned(int skew, int scale, unsigned char* src, int h, int w, int stride, unsigned char* dst,
            int oh, int ow, int ostride, prepro_progress progress) {
    return skew_binary_image_aligned_with_skrotimg_mem(skew, scale, src, h, w, stride, dst, oh, ow,
                                                       ostride, progress);
}

constexpr Rotation kRotations[] = {own, aligned, skrotbmp_b_mem,
                                   skew_binary_image_aligned_with_skrotimg_mem_black_background};

// Values from the front of the input; 0 when it is used up.
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    std::uint8_t byte() {
        if (size_ == 0) return 0;
        --size_;
        return *data_++;
    }
    int size() { return byte() + (byte() & 1) * 256 - 4; }
    // A skew or a scale: mostly small, sometimes far off.
    int number(int usual) {
        const std::uint8_t kind = byte();
        if (kind < 200) return usual;
        if (kind == 200) return INT32_MIN;
        if (kind == 201) return INT32_MAX;
        return static_cast<std::int8_t>(byte());
    }

  private:
    const std::uint8_t* data_;
    std::size_t size_;
};

struct Page {
    int height, width, stride;

    std::size_t bytes() const {
        return height > 0 && stride > 0
                   ? static_cast<std::size_t>(height) * static_cast<std::size_t>(stride)
                   : 0;
    }
};

void require(bool holds) {
    if (!holds) std::abort();
}

long count_ink(const std::vector<std::uint8_t>& page) {
    long ink = 0;
    for (const std::uint8_t byte : page) ink += std::popcount(byte);
    return ink;
}

long count_page_ink(const std::vector<std::uint8_t>& bytes, const Page& page, bool complement) {
    long ink = 0;
    for (int y = 0; y < page.height; ++y) {
        for (int x = 0; x < page.width; ++x) {
            const auto at = static_cast<std::size_t>(y) * static_cast<std::size_t>(page.stride) +
                            static_cast<std::size_t>(x / 8);
            ink += ((bytes[at] >> (7 - x % 8) & 1) != 0) != complement;
        }
    }
    return ink;
}

unsigned last_done, last_total;

void watch(unsigned done, unsigned total) {
    require(done <= total && (last_total == 0 || (total == last_total && done >= last_done)));
    last_done = done;
    last_total = total;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::uint8_t which = input.byte() % 4;
    const int skew = input.number(static_cast<std::int8_t>(input.byte()) % 98);
    const int scale = input.number(512);
    Page from{input.size(), input.size(), 0};
    from.stride = (from.width + 31) / 32 * 4 + input.byte() % 8 - 1;
    Page to{from.height, from.width, 0};
    const auto measure = which % 2 == 0 ? skrotbmp_dim : skrotdim;
    const bool sized = measure(skew, scale, from.height, from.width, &to.height, &to.width) == 0;
    to.height += static_cast<std::int8_t>(input.byte()) / 4;
    to.width += static_cast<std::int8_t>(input.byte()) / 4;
    if (to.height > 2000 || to.width > 2000) return 0;
    to.stride = (to.width + 31) / 32 * 4 + input.byte() % 8 - 1;

    std::vector<std::uint8_t> source(from.bytes());
    const std::uint8_t grain = input.byte();
    std::uint32_t value = grain;
    for (auto& byte : source) {
        value = value * 1664525U + 1013904223U;
        byte = static_cast<std::uint8_t>(grain % 2 == 0 ? value >> 24 : value >> 24 & value >> 16);
        byte ^= input.byte();
    }
    std::vector<std::uint8_t> result(to.bytes(), 0x5C);
    const std::vector<std::uint8_t> before = source;
    last_done = last_total = 0;
    const int status =
        kRotations[which](skew, scale, source.data(), from.height, from.width, from.stride,
                          result.data(), to.height, to.width, to.stride, watch);
    require(source == before);
    require(status == 0 || status == -1 || status == -2);
    if (status != 0) {
        require(std::all_of(result.begin(), result.end(), [](auto byte) { return byte == 0x5C; }));
        return 0;
    }
    require(sized && last_done == last_total);
    const bool complement = which >= 2;
    const long ink = count_page_ink(source, from, complement);
    const bool turned = std::int64_t{skew} * 512 / (scale == 0 ? 1 : scale) != 0;
    if (which % 2 == 1 && turned) {
        // Behind the block the first pattern is left, which looks like any other byte.
        long after = 0;
        for (const std::uint8_t byte : result) after += byte == 0x5C ? 4 : 0;
        require(count_ink(result) >= ink && count_ink(result) - after <= ink);
    } else if (which % 2 == 0 && turned) {
        const bool whole_bytes = from.width % 8 == 0;
        if (whole_bytes) require(count_ink(result) <= ink);
        require((count_ink(result) > 0) == (ink > 0) || !whole_bytes);
    }
    return 0;
}
