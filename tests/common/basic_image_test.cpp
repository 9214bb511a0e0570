// The internal images and the ring of rows against plain vectors.
#include "common/basic_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <deque>
#include <string>
#include <vector>

#include "common/circular_buffer.h"
#include "models/pixels.h"
#include "support/allocation_limit.h"
#include "support/random_page.h"

namespace {

using common::BasicImage;
using Bytes = std::vector<std::uint8_t>;

Bytes bytes_of(const BasicImage& image) {
    const auto size = static_cast<std::size_t>(image.getHeight()) *
                      static_cast<std::size_t>(image.getBytesPerLine());
    return {image.getData(), image.getData() + size};
}

BasicImage noise(int height, int width, int type, std::uint32_t seed) {
    BasicImage image(height, width, type, 200, 100);
    const auto bytes = support::random_bytes(bytes_of(image).size(), seed);
    std::copy(bytes.begin(), bytes.end(), image.getData());
    return image;
}

// An image whose rows begin inside a byte.
class OffsetImage : public BasicImage {
  public:
    OffsetImage(int height, int width, int bit_offset, std::uint32_t seed)
        : BasicImage(noise(height, width + bit_offset, common::kBitonal, seed)),
          width_(width),
          bit_offset_(bit_offset) {}
    int getWidth() const override { return width_; }
    int getBitOffset() const override { return bit_offset_; }
    std::uint32_t getPixel(int x, int y) const override {
        return BasicImage::getPixel(x + bit_offset_, y);
    }

  private:
    int width_;
    int bit_offset_;
};

// An image of another class altogether.
class ForeignImage : public common::Image {
  public:
    int getHeight() const override { return 0; }
    int getWidth() const override { return 0; }
    int getBytesPerLine() const override { return 0; }
    int getXResolution() const override { return 0; }
    int getYResolution() const override { return 0; }
    int getType() const override { return 0; }
    std::uint8_t* getRow(int) const override { return nullptr; }
    int getBitOffset() const override { return 0; }
    bool getBytesPerPixel(int&) const override { return false; }
    common::WhiteRectangle findLargestWhiteRectangle() const override { return {}; }
    std::uint32_t getPixel(int, int) const override { return 0; }
    void setPixel(int, int, std::uint32_t) override {}
    void swap(common::Image&) override {}
    void clampResolution(int, int) override {}
    std::uint8_t* getData() const override { return nullptr; }
};

TEST(BasicImage, RowsAndPixelsFollowTheType) {
    const int cases[][4] = {{1, 33, 8, -1}, {1, 32, 4, -1}, {2, 33, 33, 1}, {3, 33, 99, 3},
                            {4, 5, 20, 4},  {0, 5, 0, -1},  {9, 5, 0, -1}};
    for (const auto& [type, width, stride, bytes_per_pixel] : cases) {
        BasicImage image(7, width, type, 300, 200);
        EXPECT_EQ(image.getBytesPerLine(), stride);
        int bytes = -1;
        EXPECT_EQ(image.getBytesPerPixel(bytes), bytes_per_pixel > 0);
        EXPECT_EQ(bytes, bytes_per_pixel);
        if (stride == 0 || type == 4) {
            EXPECT_EQ(image.getRow(3), nullptr);
            EXPECT_EQ(image.getPixel(1, 1), 0U);
            image.setPixel(1, 1, 1);
            continue;
        }
        EXPECT_EQ(image.getRow(3) - image.getData(), 3 * stride);
        Bytes expected = bytes_of(image);
        support::Random random(1);
        for (int i = 0; i < 200; ++i) {
            const int x = random.between(0, width - 1);
            const int y = random.between(0, 6);
            const auto value = static_cast<std::uint32_t>(random.between(0, 0x1FFFFFF)) * 7;
            image.setPixel(x, y, value);
            if (type == common::kBitonal) {
                model::set_bit(expected.data(), stride, x, y, value != 0);
                ASSERT_EQ(image.getPixel(x, y), value != 0 ? 1U : 0U);
                continue;
            }
            for (int byte = 0; byte < bytes_per_pixel; ++byte) {
                expected[model::offset(y, stride, (x + 1) * bytes_per_pixel - 1 - byte)] =
                    static_cast<std::uint8_t>(value >> (8 * byte));
            }
            ASSERT_EQ(image.getPixel(x, y), value & (type == common::kGrey ? 0xFFU : 0xFFFFFFU));
        }
        EXPECT_EQ(bytes_of(image), expected);
    }
}

TEST(BasicImage, CopiesOwnAndAssignmentsKeepMemoryOfTheSameSize) {
    const BasicImage source = noise(5, 20, common::kGrey, 1);
    BasicImage copy(source);
    EXPECT_NE(copy.getData(), source.getData());
    EXPECT_EQ(bytes_of(copy), bytes_of(source));
    EXPECT_EQ(copy.getXResolution(), 200);

    Bytes wrapped(100, 3);
    {
        BasicImage wrapper(wrapped.data(), 10, 10, 10, common::kGrey, 1, 1);
        wrapper = source;  // same size: the caller's buffer is written, and stays the caller's
        EXPECT_EQ(wrapper.getData(), wrapped.data());
        EXPECT_EQ(wrapper.getWidth(), 20);
        EXPECT_EQ(wrapped, bytes_of(source));
        wrapper = noise(3, 3, common::kGrey, 2);
        EXPECT_NE(wrapper.getData(), wrapped.data());
        wrapper = BasicImage();
        EXPECT_EQ(wrapper.getData(), nullptr);
        EXPECT_EQ(wrapper.getXResolution(), 300);
    }
    BasicImage other = noise(2, 2, common::kColour, 3);
    auto* const data = other.getData();
    copy.swap(other);
    EXPECT_EQ(copy.getData(), data);
    EXPECT_EQ(other.getWidth(), 20);
    copy.clampResolution(150, 180);
    EXPECT_EQ(copy.getXResolution(), 180);
    EXPECT_EQ(copy.getYResolution(), 150);
}

Bytes grey_of(const BasicImage& bitonal) {
    Bytes grey;
    for (int y = 0; y < bitonal.getHeight(); ++y)
        for (int x = 0; x < bitonal.getWidth(); ++x)
            grey.push_back(model::get_bit(bitonal.getData(), bitonal.getBytesPerLine(),
                                          x + bitonal.getBitOffset(), y)
                               ? 0
                               : 255);
    return grey;
}

TEST(BasicImage, ConversionsMatchThePlainForm) {
    for (int width = 1; width < 70; width += 3) {
        for (const int offset : {0, 1, 7}) {
            const OffsetImage bitonal(5, width, offset, static_cast<std::uint32_t>(width));
            EXPECT_EQ(bytes_of(BasicImage(static_cast<const common::Image&>(bitonal))),
                      grey_of(bitonal));
        }
        for (const int threshold : {-1, 0, 128, 255}) {
            BasicImage image = noise(4, width, common::kGrey, 9);
            image.setPixel(0, 0, 128);
            const int stride = model::word_stride(width);
            Bytes expected(model::offset(4, stride, 0));  // clear padding
            for (int y = 0; y < 4; ++y)
                for (int x = 0; x < width; ++x)
                    model::set_bit(expected.data(), stride, x, y,
                                   static_cast<int>(image.getPixel(x, y)) <= threshold);
            image.convertToBitonal(threshold);
            EXPECT_EQ(bytes_of(image), expected);
            EXPECT_EQ(image.getType(), common::kBitonal);
            EXPECT_EQ(image.getYResolution(), 100);
            const Bytes grey = grey_of(image);
            image.convertToGrey();
            EXPECT_EQ(bytes_of(image), grey);
        }
    }
}

// Bitonal pages take the source where the mask is black, grey ones where it is not; colour stays.
TEST(BasicImage, MasksAndPaper) {
    for (const int type : {1, 2, 3}) {
        BasicImage image = noise(6, 41, type, 1);
        const BasicImage source = noise(6, 41, type, 2);
        const BasicImage mask = noise(6, 41, type, 3);
        Bytes expected = bytes_of(image);
        for (std::size_t i = 0; i < expected.size(); ++i) {
            const int taken = type == 1 ? mask.getData()[i] : type == 2 ? ~mask.getData()[i] : 0;
            expected[i] =
                static_cast<std::uint8_t>((expected[i] & ~taken) | (source.getData()[i] & taken));
        }
        image.copyWhereMaskIsBlack(source, mask);
        EXPECT_EQ(bytes_of(image), expected);
        image.fillWhite();
        EXPECT_EQ(bytes_of(image), Bytes(expected.size(), type == common::kBitonal ? 0 : 255));
    }
}

using Rectangle = std::array<double, 4>;  // right, bottom, left, top

Rectangle white_rectangle(const BasicImage& image) {
    const common::WhiteRectangle r = image.findLargestWhiteRectangle();
    return {r.right, r.bottom, r.left, r.top};
}

// Every white pixel proposes the rectangle that hangs from the top of its white column down to it,
// as wide as it goes; the first of the largest wins, in raster order of the proposing pixels.
Rectangle expected_white_rectangle(const BasicImage& image) {
    const int width = image.getWidth();
    std::vector<int> whites(static_cast<std::size_t>(width) + 2, 0);  // above, with a black margin
    Rectangle best{};
    int best_area = 0;
    for (int y = 0; y < image.getHeight(); ++y) {
        for (int x = 0; x < width; ++x) {
            int& count = whites[static_cast<std::size_t>(x + 1)];
            count = image.getPixel(x, y) != 0 ? 0 : count + 1;
        }
        for (auto column = whites.begin() + 1; column != whites.end() - 1; ++column) {
            const auto lower = [&](int count) { return count < std::max(*column, 1); };
            const auto right = std::find_if(column, whites.end(), lower);
            const auto left =
                std::find_if(std::reverse_iterator(column), whites.rend(), lower).base();
            const int area = static_cast<int>(right - left) * *column;
            if (area <= best_area) continue;
            best_area = area;
            best = {static_cast<double>(right - whites.begin() - 1), y + 1.0,
                    static_cast<double>(left - whites.begin() - 1), y + 1.0 - *column};
        }
    }
    return best;
}

TEST(BasicImage, LargestWhiteRectangleIsTheFirstOfTheLargest) {
    EXPECT_EQ(white_rectangle(BasicImage(5, 10, common::kBitonal, 300, 300)),
              (Rectangle{10, 5, 0, 0}));
    EXPECT_EQ(white_rectangle(BasicImage()), (Rectangle{}));
    for (std::uint32_t seed = 0; seed < 60; ++seed) {
        support::Random random(seed);
        BasicImage image(random.between(1, 30), random.between(1, 40), common::kBitonal, 300, 300);
        const Bytes bytes = support::random_bitonal(
            image.getHeight(), static_cast<std::size_t>(image.getBytesPerLine()),
            seed % 2 == 0 ? 0.05 : 0.5, seed);
        std::copy(bytes.begin(), bytes.end(), image.getData());
        ASSERT_EQ(white_rectangle(image), expected_white_rectangle(image)) << seed;
    }
}

// Where the next row goes and the oldest lies follows from the pushes since the ring was empty.
TEST(CircularBuffer2D, HoldsTheLastRows) {
    constexpr int kLength = 3;
    for (int capacity = 1; capacity <= 5; ++capacity) {
        common::CircularBuffer2D<int> ring(kLength, capacity);
        const int* const base = ring.oldest_row();
        std::deque<int> rows;
        int pushes = 0;
        support::Random random(static_cast<std::uint32_t>(capacity));
        for (int step = 0; step < 200; ++step) {
            if (random.chance(0.35)) {
                ring.pop();
                if (!rows.empty()) rows.pop_front();
            } else {
                std::fill_n(ring.write_row(), kLength, step);
                ring.push();
                rows.push_back(step);
                if (++pushes; static_cast<int>(rows.size()) > capacity) rows.pop_front();
            }
            const int count = static_cast<int>(rows.size());
            if (count == 0) pushes = 0;
            ASSERT_EQ(ring.count(), count);
            ASSERT_EQ(ring.write_row() - base, pushes % capacity * kLength);
            if (count == 0) continue;
            ASSERT_EQ(ring.oldest_row() - base, (pushes - count) % capacity * kLength);
            ASSERT_EQ(*ring.oldest_row(), rows.front());
            ASSERT_EQ(*ring.previous_row(), rows.back());
        }
    }
}

// Each constructor and the assignment under a hook that gives nothing, and a swap that cannot be:
// the documented text in the documented type, nothing kept.
TEST(BasicImage, SaysWhatWentWrong) {
    const BasicImage bitonal = noise(4, 9, common::kBitonal, 1);
    BasicImage target(2, 2, common::kGrey, 1, 1);
    const auto text_of = [](auto&& action) -> std::string {
        support::allocations_until_failure = 0;
        try {
            action();
        } catch (const std::string& text) {
            return "string: " + text;
        } catch (const char* text) {
            return text;
        }
        return "";
    };
    ForeignImage foreign;
    EXPECT_EQ(text_of([&] { target.swap(foreign); }),
              "The images you want to swap must be both of type BasicImage.");
    EXPECT_EQ(target.getWidth(), 2);
    prepro_redefine_malloc(support::failing_malloc);
    const std::string constructed = text_of([] { BasicImage(12, 34, common::kGrey, 300, 300); });
    const std::string copied = text_of([&] { BasicImage copy(bitonal); });
    const std::string assigned = text_of([&] { target = bitonal; });
    const std::string converted =
        text_of([&] { BasicImage grey(static_cast<const common::Image&>(bitonal)); });
    const std::string ring = text_of([] { common::CircularBuffer2D<int>(4, 4); });
    support::allocations_until_failure = -1;
    prepro_redefine_malloc(nullptr);
    EXPECT_EQ(ring, "error while constructing CircularBuffer2D, could not allocate enough memory");
    EXPECT_EQ(constructed,
              "string: error while constructing BasicImage 12 x 34 no data, could not allocate "
              "enough memory");
    EXPECT_EQ(copied, "error while copying image, could not allocate enough memory");
    EXPECT_EQ(assigned, copied);
    EXPECT_EQ(target.getData(), nullptr);
    EXPECT_EQ(converted, "error while copy-constructing image, could not allocate enough memory");
    EXPECT_THROW(BasicImage(32767, 32767, common::kColour, 1, 1), std::string);
    for (const int side : {INT32_MAX, INT32_MIN}) {
        for (const int type : {common::kColour, common::kFourBytes}) {
            EXPECT_THROW(BasicImage(side, side, type, 1, 1), std::string);
        }
    }
}

}  // namespace
