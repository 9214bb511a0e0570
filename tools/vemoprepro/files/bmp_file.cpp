// A BMP file is a file header of 14 bytes, a second header, which starts with its own size, perhaps
// masks and a palette, and rows of whole 32-bit words, from the lowest one up unless the height is
// negative.
#include "files/bmp_file.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "files/file_error.h"
#include "files/file_view.h"
#include "files/word_rows.h"

namespace tool::files {
namespace {

constexpr std::size_t kFileHeader = 14;
constexpr std::size_t kOldHeader = 12;  // of the second header, with sides of 16 bits
constexpr std::size_t kUsualHeader = 40;
constexpr int kUncompressed = 0, kMasks = 3, kMasksWithAlpha = 6;

// The numbers of the headers, little endian; 0 behind the end of the file.
class Header {
  public:
    explicit Header(const SeekableFile& file) { FileView(file).read(bytes_.data(), bytes_.size()); }

    std::uint32_t number(std::size_t at, std::size_t size) const {
        std::uint32_t value = 0;
        for (std::size_t i = size; i-- > 0;) value = value << 8 | bytes_[at + i];
        return value;
    }
    std::uint32_t word(std::size_t at) const { return number(at, 4); }

  private:
    std::array<std::uint8_t, kFileHeader + 124> bytes_{};
};

struct BmpShape {
    std::int64_t width = 0;
    std::int64_t height = 0;
    bool downwards = false;
    int bits = 0;
    int compression = kUncompressed;
    Resolution dpi;
    std::array<std::uint32_t, 4> masks{};  // red, green, blue, alpha
    std::size_t palette_at = 0;
    std::size_t palette_entry = 4;
    std::size_t colours = 0;
    std::size_t rows_at = 0;

    std::size_t row_size() const {
        return (static_cast<std::size_t>(width) * static_cast<std::size_t>(bits) + 31) / 32 * 4;
    }
};

int dots_per_inch(std::uint32_t per_metre) {
    return per_metre < 1'000'000 ? static_cast<int>(std::lround(per_metre * 0.0254)) : 0;
}

void read_masks(const Header& header, std::size_t size, BmpShape& shape) {
    if (shape.bits == 16) shape.masks = {0x7C00, 0x03E0, 0x001F, 0};
    if (shape.bits == 32) shape.masks = {0xFF0000, 0xFF00, 0xFF, 0};
    if (shape.compression == kUncompressed) return;
    const std::size_t masks = kFileHeader + kUsualHeader;
    const bool alpha = size >= 56 || shape.compression == kMasksWithAlpha;
    for (std::size_t i = 0; i < (alpha ? 4U : 3U); ++i) shape.masks[i] = header.word(masks + 4 * i);
}

BmpShape old_shape(const Header& header) {
    BmpShape shape;
    shape.width = header.number(18, 2);
    shape.height = header.number(20, 2);
    shape.bits = static_cast<int>(header.number(24, 2));
    shape.palette_entry = 3;
    shape.palette_at = kFileHeader + kOldHeader;
    return shape;
}

BmpShape usual_shape(const Header& header, std::size_t size) {
    BmpShape shape;
    shape.width = static_cast<std::int32_t>(header.word(18));
    shape.height = static_cast<std::int32_t>(header.word(22));
    shape.downwards = shape.height < 0;
    if (shape.downwards) shape.height = -shape.height;
    shape.bits = static_cast<int>(header.number(28, 2));
    shape.compression = static_cast<int>(header.word(30));
    shape.dpi = {dots_per_inch(header.word(38)), dots_per_inch(header.word(42))};
    shape.colours = header.word(46);
    shape.palette_at = kFileHeader + size;
    read_masks(header, size, shape);
    return shape;
}

BmpShape shape_of(const SeekableFile& file) {
    const Header header(file);
    const std::size_t size = header.word(kFileHeader);
    BmpShape shape = size == kOldHeader ? old_shape(header) : usual_shape(header, size);
    const std::size_t most = shape.bits <= 8 ? std::size_t{1} << shape.bits : 0;
    if (shape.colours == 0 || shape.colours > most) shape.colours = most;
    shape.rows_at = header.word(10);
    return shape;
}

bool is_known(const BmpShape& shape) {
    switch (shape.bits) {
        case 1:
        case 4:
        case 8:
        case 24:
            return shape.compression == kUncompressed;
        case 16:
        case 32:
            return shape.compression == kUncompressed || shape.compression == kMasks ||
                   shape.compression == kMasksWithAlpha;
        default:
            return false;
    }
}

// The pixels of a row as words.
class RowReader {
  public:
    RowReader(const SeekableFile& file, const BmpShape& shape) : shape_(shape) {
        std::vector<std::uint8_t> entries(shape.colours * shape.palette_entry);
        FileView view(file);
        view.seek(static_cast<ssize_t>(shape.palette_at), SEEK_SET);
        view.read(entries.data(), entries.size());
        palette_.fill(kBlack);
        for (std::size_t i = 0; i < shape.colours; ++i) {
            palette_[i] = opaque(entries.data() + i * shape.palette_entry);
        }
    }

    std::uint32_t pixel(const std::uint8_t* row, std::size_t x) const {
        switch (shape_.bits) {
            case 1:
                return palette_[row[x / 8] >> (7 - x % 8) & 1];
            case 4:
                return palette_[row[x / 2] >> (x % 2 == 0 ? 4 : 0) & 15];
            case 8:
                return palette_[row[x]];
            case 16:
                return masked(std::uint32_t{row[2 * x]} | std::uint32_t{row[2 * x + 1]} << 8);
            case 24:
                return opaque(row + 3 * x);
            default:
                std::uint32_t value = 0;
                for (std::size_t i = 4; i-- > 0;) value = value << 8 | row[4 * x + i];
                return masked(value);
        }
    }

  private:
    // Blue, green, red.
    static std::uint32_t opaque(const std::uint8_t* colour) {
        return std::uint32_t{colour[2]} << 24 | std::uint32_t{colour[1]} << 16 |
               std::uint32_t{colour[0]} << 8 | 255;
    }

    std::uint32_t masked(std::uint32_t value) const {
        std::uint32_t word = 0;
        for (std::size_t i = 0; i < 4; ++i) word = word << 8 | part(value, shape_.masks[i], i == 3);
        return word;
    }

    static std::uint32_t part(std::uint32_t value, std::uint32_t mask, bool is_alpha) {
        if (mask == 0) return is_alpha ? 255 : 0;
        const int shift = std::countr_zero(mask);
        const std::uint64_t largest = mask >> shift;
        const std::uint64_t part = (value & mask) >> shift;
        return static_cast<std::uint32_t>((part * 255 + largest / 2) / largest);
    }

    static constexpr std::uint32_t kBlack = 255;  // and opaque

    const BmpShape& shape_;
    std::array<std::uint32_t, 256> palette_;
};

}  // namespace

std::optional<PagePlace> bmp_page(const SeekableFile& file) {
    const BmpShape shape = shape_of(file);
    if (!is_known(shape)) {
        throw FileError(file.name(),
                        "a compressed or unusual BMP file; make a PNG file of it first");
    }
    const auto width = static_cast<int>(shape.width), height = static_cast<int>(shape.height);
    if (width < 1 || height < 1 || width > kLongestSide || height > kLongestSide) {
        return PagePlace{0, width, height};  // for the caller to refuse
    }
    const std::size_t size = shape.row_size() * static_cast<std::size_t>(height);
    if (shape.rows_at + size > file.size()) return std::nullopt;
    return PagePlace{0, width, height};
}

std::optional<Page> read_bmp(const SeekableFile& file) {
    const BmpShape shape = shape_of(file);
    const auto width = static_cast<std::size_t>(shape.width);
    const auto height = static_cast<std::size_t>(shape.height);
    Page page;
    page.width = static_cast<int>(width);
    page.height = static_cast<int>(height);
    page.dpi = shape.dpi;
    page.bytes = allocate_pixels(width * height * 4);
    const RowReader reader(file, shape);
    FileView view(file);
    std::vector<std::uint8_t> row(shape.row_size());
    view.seek(static_cast<ssize_t>(shape.rows_at), SEEK_SET);
    std::uint32_t alphas = 0;
    for (std::size_t i = 0; i < height; ++i) {
        if (view.read(row.data(), row.size()) != static_cast<ssize_t>(row.size())) return {};
        const std::size_t y = shape.downwards ? i : height - 1 - i;
        unsigned char* words = page.bytes.get() + y * width * 4;
        for (std::size_t x = 0; x < width; ++x) {
            const std::uint32_t word = reader.pixel(row.data(), x);
            std::memcpy(words + 4 * x, &word, 4);
            alphas |= word & 255;
        }
    }
    // Many programs state a mask for alpha and leave it empty.
    pack_colour(page, alphas != 0, false);
    return page;
}

}  // namespace tool::files
