// A PNM image is a header of words (magic, width, height and, but for bitmaps, the largest value),
// one white-space character, and rows. Raw ones have rows of known length, and the next image
// follows at once; plain ones have numbers as text, bits with or without white space between them.
// PAM is raw, too, with a header of named numbers, up to four samples per pixel, and 0 for black in
// bitmaps as elsewhere.
#include "files/pnm_pages.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

#include "files/bit_rows.h"
#include "files/file_view.h"
#include "files/word_rows.h"

namespace tool::files {
namespace {

// Skips white space and comments, which run from # to the end of the line. Returns the next byte.
int skip_space(std::FILE* file) {
    int byte = getc_unlocked(file);
    while (byte == '#' || (byte >= 0 && (std::isspace(byte) != 0))) {
        if (byte == '#') {
            while (byte >= 0 && byte != '\n') byte = getc_unlocked(file);
        }
        if (byte >= 0) byte = getc_unlocked(file);
    }
    return byte;
}

// A number and the one character behind it; -1 when there is none.
int read_number(std::FILE* file) {
    constexpr int kLargest = 100'000'000;
    int byte = skip_space(file);
    if (byte < '0' || byte > '9') return -1;
    int value = 0;
    for (; byte >= '0' && byte <= '9'; byte = getc_unlocked(file)) {
        if (value <= kLargest) value = value * 10 + (byte - '0');
    }
    return value > kLargest ? -1 : value;
}

// The header of an image; the file is then at its first row.
struct Header {
    int type = 0;  // '4' bitmap, '5' grey, '6' colour, as those of raw ones; 0: damaged
    bool plain = false;
    int channels = 1;  // with alpha 2 or 4
    int width = 0;
    int height = 0;
    int largest_value = 1;

    bool alpha() const { return channels % 2 == 0; }
    std::size_t samples() const {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(channels);
    }
    std::size_t sample_size() const { return largest_value > 255 ? 2 : 1; }
    std::size_t row_size() const {
        return type == '4' ? bytes_of_bits(width) : samples() * sample_size();
    }
};

// The word of capitals that comes next, and the one character behind it.
std::string read_word(std::FILE* file) {
    constexpr std::size_t kLongest = 100;
    std::string word;
    for (int byte = skip_space(file);
         byte >= 0 && std::isspace(byte) == 0 && word.size() < kLongest;
         byte = getc_unlocked(file)) {
        word += static_cast<char>(byte);
    }
    return word;
}

// Returns the type; 0 for what is none of greys and colours, with or without alpha.
int read_pam_header(std::FILE* file, Header& header) {
    std::string kind;
    for (std::string word = read_word(file); word != "ENDHDR"; word = read_word(file)) {
        if (word == "TUPLTYPE") {
            kind = read_word(file);
            continue;
        }
        const int number = read_number(file);
        if (number < 0) return 0;
        if (word == "WIDTH") header.width = number;
        if (word == "HEIGHT") header.height = number;
        if (word == "DEPTH") header.channels = number;
        if (word == "MAXVAL") header.largest_value = number;
    }
    if (header.channels < 1 || header.channels > 4) return 0;
    if (header.alpha() && kind.find("ALPHA") == std::string::npos) return 0;
    return header.channels < 3 ? '5' : '6';
}

// Reads what follows the P.
Header read_header(std::FILE* file) {
    Header header;
    int type = getc_unlocked(file);
    header.plain = type >= '1' && type <= '3';
    if (header.plain) type += '4' - '1';
    if (type == '7') {
        type = read_pam_header(file, header);
    } else {
        header.width = read_number(file);
        header.height = read_number(file);
        if (type != '4') header.largest_value = read_number(file);
        if (type == '6') header.channels = 3;
    }
    if (type < '4' || type > '6') return header;
    if (header.width > 0 && header.height > 0 && header.largest_value > 0 &&
        header.largest_value <= 65535) {
        header.type = type;
    }
    return header;
}

// Moves from the first row of an image behind its last one, if the file is that long.
bool skip_rows(std::FILE* file, const Header& header, std::size_t file_size) {
    const std::size_t start = static_cast<std::size_t>(std::ftell(file));
    const std::size_t size = header.row_size() * static_cast<std::size_t>(header.height);
    if (start > file_size || size > file_size - start) return false;
    return std::fseek(file, static_cast<long>(start + size), SEEK_SET) == 0;
}

// A row of a plain image as a raw one has it; false when there is something else.
bool read_plain_row(std::FILE* file, const Header& header, unsigned char* row) {
    const auto set = [row](std::size_t at, int bits) {
        row[at] = static_cast<unsigned char>(row[at] | bits);
    };
    std::memset(row, 0, header.row_size());
    for (std::size_t i = 0; i < header.samples(); ++i) {
        if (header.type == '4') {
            const int digit = skip_space(file);
            if (digit != '0' && digit != '1') return false;
            if (digit == '1') set(i / 8, 0x80 >> i % 8);
            continue;
        }
        const int value = std::min(read_number(file), header.largest_value);
        if (value < 0) return false;
        const std::size_t last = header.sample_size() * (i + 1) - 1;
        set(last, value & 255);
        if (value > 255) set(last - 1, value >> 8);
    }
    return true;
}

bool read_row(std::FILE* file, const Header& header, unsigned char* row) {
    if (header.plain) return read_plain_row(file, header, row);
    return std::fread(row, 1, header.row_size(), file) == header.row_size();
}

// Bytes of 0 .. 255 from samples of one or two bytes; of 16 bits the upper 8 count.
void scale_samples(const unsigned char* samples, std::size_t count, int largest,
                   unsigned char* out) {
    for (std::size_t i = 0; i < count; ++i) {
        int value = largest > 255 ? samples[2 * i] << 8 | samples[2 * i + 1] : samples[i];
        value = std::min(value, largest);
        out[i] = static_cast<unsigned char>(
            largest == 65535 ? value >> 8 : (value * 255 + largest / 2) / largest);
    }
}

// A row of samples as words, red, green, blue and alpha from the top.
void to_words(const unsigned char* samples, const Header& header, unsigned char* words) {
    for (int x = 0; x < header.width; ++x, samples += header.channels, words += 4) {
        const unsigned char pair[] = {samples[0], samples[0], samples[0], samples[1]};
        const std::uint32_t word = colour_word(header.channels == 2 ? pair : samples, 4);
        std::memcpy(words, &word, 4);
    }
}

// The rows, of which one is at hand at a time.
std::optional<Page> read_transparent(std::FILE* file, const Header& header, Page page) {
    const std::size_t stride = static_cast<std::size_t>(header.width) * 4;
    page.bytes = allocate_pixels(stride * static_cast<std::size_t>(header.height));
    std::vector<unsigned char> row(header.row_size()), samples(header.samples());
    for (int y = 0; y < header.height; ++y) {
        if (!read_row(file, header, row.data())) return std::nullopt;
        scale_samples(row.data(), samples.size(), header.largest_value, samples.data());
        to_words(samples.data(), header, page.bytes.get() + stride * static_cast<std::size_t>(y));
    }
    pack_colour(page, true, false);
    return page;
}

}  // namespace

std::vector<PagePlace> list_pnm_pages(std::FILE* file) {
    const std::size_t file_size = size_of(file);
    std::vector<PagePlace> places;
    for (int byte = skip_space(file); byte == 'P'; byte = skip_space(file)) {
        PagePlace place;
        place.offset = static_cast<std::size_t>(std::ftell(file)) - 1;
        const Header header = read_header(file);
        place.width = header.width;
        place.height = header.height;
        if (header.type == 0) return {};
        if (header.plain) return places.empty() ? std::vector{place} : std::vector<PagePlace>();
        if (!skip_rows(file, header, file_size)) return {};
        places.push_back(place);
    }
    return places;
}

std::optional<Page> read_pnm(std::FILE* file, const PagePlace& place) {
    std::fseek(file, static_cast<long>(place.offset) + 1, SEEK_SET);
    const Header header = read_header(file);
    if (header.type == 0) return std::nullopt;
    Page page;
    page.kind = header.type == '4'   ? PageKind::kBitonal
                : header.type == '5' ? PageKind::kGrey
                                     : PageKind::kColour;
    page.width = header.width;
    page.height = header.height;
    if (header.alpha()) return read_transparent(file, header, std::move(page));
    page.bytes = allocate_pixels(page.size());
    std::vector<unsigned char> row(std::max(header.row_size(), page.stride()));
    for (int y = 0; y < page.height; ++y) {
        if (!read_row(file, header, row.data())) return std::nullopt;
        if (header.type == '4') {
            std::memcpy(page.row(y), row.data(), page.stride());
            clear_padding(page.row(y), page.width);
        } else if (header.largest_value == 255) {
            std::memcpy(page.row(y), row.data(), page.stride());
        } else {
            scale_samples(row.data(), page.stride(), header.largest_value, page.row(y));
        }
    }
    return page;
}

}  // namespace tool::files
