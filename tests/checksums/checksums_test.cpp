// Every call of tests/calls/ on sample pages, on every instruction set of the machine: its status,
// its numbers and every byte of its result are pinned by the checksums of checksums.txt, whatever
// compiler and processor built and runs it.
//
// A line of the list is a checksum in hexadecimal and the name of a call. A result that is not in
// the list fails the test, which prints the line that it would have there.
#include <gtest/gtest.h>
#include <leptonica/allheaders.h>

#include <bit>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <memory>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>

#include "calls/calls.h"
#include "support/every_target.h"

namespace {

using calls::Bytes;
using calls::Desk;

using Pix = std::unique_ptr<PIX, void (*)(PIX*)>;

// Of one page of the file; PNG and Group 4 TIFF are read without loss, by every reader alike.
Pix read(const std::string& name, int page) {
    const std::string path = VEMOPREPRO_PAGES "/" + name;
    PIX* pix = page == 0 ? pixRead(path.c_str()) : pixReadTiff(path.c_str(), page);
    if (pix == nullptr) throw std::runtime_error("cannot read " + path);
    return {pix, [](PIX* held) { pixDestroy(&held); }};
}

// The samples of a page in rows of `row_bytes` bytes; Leptonica keeps words of the machine.
Bytes samples(const Pix& pix, std::size_t row_bytes) {
    const auto words = static_cast<std::size_t>(pixGetWpl(pix.get()));
    const auto height = static_cast<std::size_t>(pixGetHeight(pix.get()));
    Bytes bytes(height * row_bytes);
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t i = 0; i < row_bytes; ++i) {
            const l_uint32 word = pixGetData(pix.get())[y * words + i / 4];
            bytes[y * row_bytes + i] = static_cast<std::uint8_t>(word >> (24 - 8 * (i % 4)));
        }
    }
    return bytes;
}

// A grey page on yellowish paper, under what a bitonal page has in ink, in blue.
Bytes coloured(const Bytes& grey, const Bytes& ink, std::size_t width, std::size_t stride) {
    Bytes colour;
    colour.reserve(3 * grey.size());
    for (std::size_t i = 0; i < grey.size(); ++i) {
        const std::size_t x = i % width;
        const bool inked = (ink[i / width * stride + x / 8] >> (7 - x % 8) & 1) != 0;
        const unsigned level = grey[i];
        const unsigned red = inked ? level / 4 : level;
        const unsigned green = inked ? level / 3 : level * 15 / 16;
        const unsigned blue = inked ? level : level * 3 / 4;
        for (const unsigned value : {red, green, blue})
            colour.push_back(static_cast<std::uint8_t>(value));
    }
    return colour;
}

// The third page of the fax, with its dithered picture, and the ledger; both of the same size.
Desk sample_desk() {
    const Pix fax = read("fax.tif", 2);
    const Pix ledger = read("ledger.png", 0);
    const int height = pixGetHeight(fax.get());
    const int width = pixGetWidth(fax.get());
    if (pixGetHeight(ledger.get()) != height || pixGetWidth(ledger.get()) != width ||
        pixGetDepth(ledger.get()) != 8 || pixGetDepth(fax.get()) != 1)
        throw std::runtime_error("these are not the pages that the checksums are of");
    const int stride = (width + 31) / 32 * 4;
    const auto row_bytes = static_cast<std::size_t>(stride);
    const auto pixels = static_cast<std::size_t>(width);
    const Bytes bitonal = samples(fax, row_bytes);
    const Bytes grey = samples(ledger, pixels);
    return {height, width, stride, bitonal, grey, coloured(grey, bitonal, pixels, row_bytes)};
}

// FNV-1a with the numbers and bytes in words of eight.
class Checksum {
  public:
    void add(std::uint64_t word) {
        sum_ = (sum_ ^ word) * 0x100000001b3U;
        sum_ ^= sum_ >> 32;  // the upper bits of a product would never reach the lower ones
    }
    void add(const std::uint8_t* bytes, std::size_t count) {
        for (std::size_t i = 0; i < count; i += 8) {
            std::uint64_t word = 0;
            std::memcpy(&word, bytes + i, std::min<std::size_t>(8, count - i));
            add(word);
        }
    }
    std::uint64_t sum() const { return sum_; }

  private:
    std::uint64_t sum_ = 0xcbf29ce484222325U;
};

std::uint64_t checksum_of(const calls::Call& call, Desk& desk) {
    std::fill(std::begin(desk.numbers), std::end(desk.numbers), 0);
    desk.result_stride = 0;
    desk.confidence = 0;
    std::fill(desk.out.begin(), desk.out.end(), std::uint8_t{0x5C});
    Checksum checksum;
    checksum.add(static_cast<std::uint32_t>(call.run(desk)));
    for (const int number : desk.numbers) checksum.add(static_cast<std::uint32_t>(number));
    checksum.add(desk.result_stride);
    checksum.add(std::bit_cast<std::uint64_t>(desk.confidence));
    checksum.add(desk.result, desk.result_size);
    return checksum.sum();
}

std::set<std::string> pinned_lines() {
    std::set<std::string> lines;
    std::ifstream file(VEMOPREPRO_CHECKSUMS);
    for (std::string line; std::getline(file, line);) lines.insert(line);
    return lines;
}

TEST(Checksums, OfEveryFunctionOnEveryInstructionSet) {
    Desk desk = sample_desk();
    const std::set<std::string> pinned = pinned_lines();
    std::set<std::string> found;
    support::on_every_target([&] {
        for (const calls::Call& call : calls::all_calls()) {
            std::ostringstream line;
            line << std::hex << std::setw(16) << std::setfill('0') << checksum_of(call, desk) << ' '
                 << call.name;
            EXPECT_TRUE(pinned.contains(line.str())) << line.str();
            found.insert(line.str());
        }
    });
    EXPECT_EQ(found, pinned);
}

}  // namespace
