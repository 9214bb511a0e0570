#include "common/basic_image.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "models/image_model.h"
#include "support/allocation_limit.h"
#include "support/random_page.h"

namespace {

using common::BasicImage;

std::vector<std::uint8_t> bytes_of(const BasicImage& image) {
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
    struct Case {
        int type, width, stride, bytes_per_pixel;
    };
    for (const Case& c : {Case{1, 33, 8, -1},
                          {1, 32, 4, -1},
                          {2, 33, 33, 1},
                          {3, 33, 99, 3},
                          {4, 5, 20, 4},
                          {0, 5, 0, -1},
                          {9, 5, 0, -1}}) {
        BasicImage image(7, c.width, c.type, 300, 200);
        EXPECT_EQ(image.getBytesPerLine(), c.stride);
        int bytes = -1;
        EXPECT_EQ(image.getBytesPerPixel(bytes), c.bytes_per_pixel > 0);
        EXPECT_EQ(bytes, c.bytes_per_pixel);
        if (c.stride == 0 || c.type == 4) {
            EXPECT_EQ(image.getRow(3), nullptr);
            EXPECT_EQ(image.getPixel(1, 1), 0U);
            image.setPixel(1, 1, 1);
            continue;
        }
        EXPECT_EQ(image.getRow(3) - image.getData(), 3 * c.stride);
        auto expected = bytes_of(image);
        support::Random random(1);
        for (int i = 0; i < 200; ++i) {
            const int x = random.between(0, c.width - 1);
            const int y = random.between(0, 6);
            const auto value = static_cast<std::uint32_t>(random.between(0, 0x1FFFFFF)) * 7;
            image.setPixel(x, y, value);
            model::set_pixel(c.type, expected, c.stride, c.width, x, y, value);
            ASSERT_EQ(image.getPixel(x, y),
                      model::get_pixel(c.type, expected, c.stride, c.width, x, y));
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

    std::vector<std::uint8_t> wrapped(100, 3);
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
        for (int offset : {0, 1, 7}) {
            const OffsetImage bitonal(5, width, offset, static_cast<std::uint32_t>(width));
            BasicImage grey(static_cast<const common::Image&>(bitonal));
            EXPECT_EQ(bytes_of(grey), model::grey_from_bitonal(bitonal.getData(), 5, width,
                                                               bitonal.getBytesPerLine(), offset));
        }
        for (int threshold : {-1, 0, 128, 255}) {
            BasicImage image = noise(4, width, common::kGrey, 9);
            image.setPixel(0, 0, 128);
            const auto expected = model::bitonal_from_grey(bytes_of(image), 4, width, threshold);
            image.convertToBitonal(threshold);
            EXPECT_EQ(bytes_of(image), expected);
            EXPECT_EQ(image.getType(), common::kBitonal);
            EXPECT_EQ(image.getYResolution(), 100);
            image.convertToGrey();
            EXPECT_EQ(bytes_of(image), model::grey_from_bitonal(expected.data(), 4, width,
                                                                model::word_stride(width)));
        }
    }
}

TEST(BasicImage, MasksAndPaper) {
    for (int type : {1, 2, 3}) {
        BasicImage image = noise(6, 41, type, 1);
        const BasicImage source = noise(6, 41, type, 2);
        const BasicImage mask = noise(6, 41, type, 3);
        const auto expected = model::copy_where_mask_is_black(type, bytes_of(image),
                                                              bytes_of(source), bytes_of(mask));
        image.copyWhereMaskIsBlack(source, mask);
        EXPECT_EQ(bytes_of(image), expected);
        image.fillWhite();
        EXPECT_EQ(bytes_of(image),
                  std::vector<std::uint8_t>(expected.size(), type == common::kBitonal ? 0 : 255));
    }
}

TEST(BasicImage, LargestWhiteRectangleIsTheFirstOfTheLargest) {
    const auto as_array = [](const common::WhiteRectangle& r) {
        return std::array<double, 4>{r.right, r.bottom, r.left, r.top};
    };
    EXPECT_EQ(as_array(BasicImage(5, 10, common::kBitonal, 300, 300).findLargestWhiteRectangle()),
              (std::array<double, 4>{10, 5, 0, 0}));
    EXPECT_EQ(as_array(BasicImage().findLargestWhiteRectangle()), (std::array<double, 4>{}));
    for (std::uint32_t seed = 0; seed < 60; ++seed) {
        support::Random random(seed);
        const int width = random.between(1, 40);
        const int height = random.between(1, 30);
        BasicImage image(height, width, common::kBitonal, 300, 300);
        const auto bytes =
            support::random_bitonal(height, static_cast<std::size_t>(image.getBytesPerLine()),
                                    seed % 2 == 0 ? 0.05 : 0.5, seed);
        std::copy(bytes.begin(), bytes.end(), image.getData());
        ASSERT_EQ(
            as_array(image.findLargestWhiteRectangle()),
            model::largest_white_rectangle(bytes.data(), height, width, image.getBytesPerLine()))
            << seed;
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
    support::allocations_until_failure = -1;
    prepro_redefine_malloc(nullptr);
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
