// The internal images and the ring of rows against plain vectors.
#include "common/basic_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <string>
#include <vector>

#include "common/circular_buffer.h"
#include "models/pixels.h"
#include "support/allocation_limit.h"
#include "support/random_page.h"

namespace {

using common::BasicImage;
using common::CircularBuffer2D;
using Bytes = std::vector<std::uint8_t>;

Bytes bytes_of(const BasicImage& image) {
    const auto size = model::offset(image.getHeight(), image.getBytesPerLine(), 0);
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

TEST(BasicImage, RowsAndPixelsFollowTheType) {
    const struct {
        int type, width, stride, pixel_bytes;
        std::uint32_t stored;  // of 0x1234567
        Bytes row;
    } cases[] = {
        {1, 33, 8, 0, 1, {0x20, 0, 0, 0, 0, 0, 0, 0}},
        {2, 5, 5, 1, 0x67, {0, 0, 0x67, 0, 0}},
        {3, 3, 9, 3, 0x234567, {0, 0, 0, 0, 0, 0, 0x23, 0x45, 0x67}},
        {4, 5, 20, 4, 0, {}},
        {0, 5, 0, 0, 0, {}},
        {9, 5, 0, 0, 0, {}},
    };
    for (const auto& c : cases) {
        BasicImage image(7, c.width, c.type, 300, 200);
        EXPECT_EQ(image.getBytesPerLine(), c.stride);
        int bytes = 0;
        EXPECT_EQ(image.getBytesPerPixel(bytes), c.pixel_bytes > 0);
        EXPECT_EQ(bytes, c.pixel_bytes);
        image.setPixel(2, 3, 0x1234567);
        EXPECT_EQ(image.getPixel(2, 3), c.stored);
        std::uint8_t* const row = image.getRow(3);
        ASSERT_EQ(row == nullptr, c.row.empty());
        if (row == nullptr) continue;
        EXPECT_EQ(row - image.getData(), 3 * c.stride);
        EXPECT_EQ(Bytes(row, row + c.stride), c.row);
        image.setPixel(2, 3, 0);
        EXPECT_EQ(bytes_of(image), Bytes(model::offset(7, c.stride, 0)));
    }
}

TEST(BasicImage, CopiesOwnAndAssignmentsKeepMemoryOfTheSameSize) {
    const BasicImage source = noise(5, 20, common::kGrey, 1);
    BasicImage copy(source);
    EXPECT_NE(copy.getData(), source.getData());
    EXPECT_EQ(bytes_of(copy), bytes_of(source));

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

TEST(BasicImage, ConversionsMatchThePlainForm) {
    for (int width = 1; width < 70; width += 3) {
        for (const int offset : {0, 1, 7}) {
            const OffsetImage bitonal(5, width, offset, static_cast<std::uint32_t>(width));
            const BasicImage grey(static_cast<const common::Image&>(bitonal));
            for (int y = 0; y < 5; ++y)
                for (int x = 0; x < width; ++x)
                    ASSERT_EQ(grey.getPixel(x, y), bitonal.getPixel(x, y) != 0 ? 0U : 255U);
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
            image.convertToGrey();
            EXPECT_EQ(image.getType(), common::kGrey);
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

// Of every rectangle by its last row, then by its first column, the first that is larger than all
// before it; a rectangle that could be wider or higher is none of the largest.
common::WhiteRectangle expected_white_rectangle(const BasicImage& image) {
    common::WhiteRectangle best;
    const auto white = [&](int left, int right, int top, int bottom) {
        for (int y = top; y < bottom; ++y)
            for (int x = left; x < right; ++x)
                if (image.getPixel(x, y) != 0) return false;
        return true;
    };
    double area = 0;
    for (int bottom = 1; bottom <= image.getHeight(); ++bottom)
        for (int left = 0; left < image.getWidth(); ++left)
            for (int right = left + 1; right <= image.getWidth(); ++right)
                for (int top = 0; top < bottom; ++top)
                    if ((right - left) * (bottom - top) > area && white(left, right, top, bottom)) {
                        best = {double(right), double(bottom), double(left), double(top)};
                        area = (right - left) * (bottom - top);
                    }
    return best;
}

TEST(BasicImage, LargestWhiteRectangleIsTheFirstOfTheLargest) {
    for (std::uint32_t seed = 0; seed < 60; ++seed) {
        support::Random random(seed);
        BasicImage image(random.between(1, 9), random.between(1, 12), common::kBitonal, 300, 300);
        const Bytes bytes = support::random_bitonal(
            image.getHeight(), static_cast<std::size_t>(image.getBytesPerLine()), 0.25 * (seed % 4),
            seed);
        std::copy(bytes.begin(), bytes.end(), image.getData());
        const common::WhiteRectangle found = image.findLargestWhiteRectangle();
        const common::WhiteRectangle expected = expected_white_rectangle(image);
        ASSERT_EQ(found.right, expected.right) << seed;
        ASSERT_EQ(found.bottom, expected.bottom) << seed;
        ASSERT_EQ(found.left, expected.left) << seed;
        ASSERT_EQ(found.top, expected.top) << seed;
    }
    EXPECT_EQ(BasicImage().findLargestWhiteRectangle().right, 0);
}

// Where the next row goes and the oldest lies follows from the pushes since the ring was empty.
TEST(CircularBuffer2D, HoldsTheLastRows) {
    constexpr int kLength = 3;
    for (int capacity = 1; capacity <= 5; ++capacity) {
        CircularBuffer2D<int> ring(kLength, capacity);
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

// What is thrown when the first allocation fails: the documented text in the documented type.
template <class Text, class Action>
std::string thrown(Action&& action) {
    std::string text = "nothing";
    prepro_redefine_malloc(support::failing_malloc);
    support::allocations_until_failure = 0;
    try {
        action();
    } catch (const Text& caught) {
        text = caught;
    }
    support::allocations_until_failure = -1;
    prepro_redefine_malloc(nullptr);
    return text;
}

TEST(BasicImage, SaysWhatWentWrong) {
    const BasicImage bitonal = noise(4, 9, common::kBitonal, 1);
    BasicImage target(2, 2, common::kGrey, 1, 1);
    const std::string no_memory = "could not allocate enough memory";
    EXPECT_EQ(thrown<std::string>([] { BasicImage(12, 34, common::kGrey, 300, 300); }),
              "error while constructing BasicImage 12 x 34 no data, " + no_memory);
    EXPECT_EQ(thrown<const char*>([&] { BasicImage copy(bitonal); }),
              "error while copying image, " + no_memory);
    EXPECT_EQ(thrown<const char*>([&] { target = bitonal; }),
              "error while copying image, " + no_memory);
    EXPECT_EQ(target.getData(), nullptr);
    EXPECT_EQ(
        thrown<const char*>([&] { BasicImage grey(static_cast<const common::Image&>(bitonal)); }),
        "error while copy-constructing image, " + no_memory);
    EXPECT_EQ(thrown<const char*>([] { CircularBuffer2D<int>(4, 4); }),
              "error while constructing CircularBuffer2D, " + no_memory);
    for (const int side : {32767, INT32_MAX, INT32_MIN})
        EXPECT_THROW(BasicImage(side, side, common::kFourBytes, 1, 1), std::string);
}

}  // namespace
