// The bitonal deskew rotations beside their slow models, on small pages with crafted sizes, strides
// and skews; a refusal leaves no trace.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "models/deskew_comparison.h"

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
    int signed_byte() { return static_cast<std::int8_t>(byte()); }
    int size() {
        const int low = byte();
        return low + (byte() & 1) * 256 - 4;
    }
    // A skew or a scale: mostly small, sometimes far off.
    int number(int usual) {
        const std::uint8_t kind = byte();
        if (kind < 200) return usual;
        if (kind == 200) return INT32_MIN;
        if (kind == 201) return INT32_MAX;
        return signed_byte();
    }
    int stride(int width) { return (width + 31) / 32 * 4 + byte() % 8 - 1; }

  private:
    const std::uint8_t* data_;
    std::size_t size_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const model::RotationKind& kind = model::kRotationKinds[input.byte() % 4];
    const int usual_skew = input.signed_byte() % 98;
    const int skew = input.number(usual_skew);
    const int scale = input.number(512);
    support::BitonalPage page{input.size(), 0, 0, {}};
    page.width = input.size();
    page.stride = input.stride(page.width);
    model::RotationTarget target{page.height, page.width, 0};
    const auto measure = kind.aligned ? skrotdim : skrotbmp_dim;
    measure(skew, scale, page.height, page.width, &target.height, &target.width);
    target.height += input.signed_byte() / 4;
    target.width += input.signed_byte() / 4;
    if (target.height > 2000 || target.width > 2000) return 0;
    target.stride = input.stride(target.width);

    if (page.height > 0 && page.stride > 0) {
        page.bytes.resize(model::offset(page.height, page.stride, 0));
    }
    const std::uint8_t grain = input.byte();
    std::uint32_t value = grain;
    for (auto& byte : page.bytes) {
        value = value * 1664525U + 1013904223U;
        byte = static_cast<std::uint8_t>(grain % 2 == 0 ? value >> 24 : value >> 24 & value >> 16);
        byte ^= input.byte();
    }
    if (!model::rotations_agree(kind, skew, scale, page, target)) std::abort();
    return 0;
}
