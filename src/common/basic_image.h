// The one concrete image: rows in one block, owned or wrapped.
//
// Use: BasicImage(height, width, kGrey, 300, 300) allocates and clears; BasicImage(data, width,
// height, stride, kGrey, 300, 300) wraps a buffer of somebody else's, mind the order of width and
// height.
//
// The aligned rotation makes its result in one; the other operations on image objects are here for
// steps to come, and nothing in the library calls them yet.
//
// Keep true: grey and colour rows are addressed by the width alone, so a wrapped grey or colour
// buffer has unpadded rows. A wrapped buffer outlives the object. Owned memory comes from
// frame::allocate().
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/image.h"

namespace common {

class BasicImage : public Image {
  public:
    BasicImage() = default;  // empty, 300 dots per inch
    // Cleared memory of its own: zero bytes. An unknown type holds no pixels. Throws std::string
    // when the memory cannot be had, or when its size does not fit 31 bits.
    BasicImage(int height, int width, int type, int x_resolution, int y_resolution);
    BasicImage(std::uint8_t* data, int width, int height, int stride, int type, int x_resolution,
               int y_resolution);
    // Throws const char* when the memory cannot be had.
    BasicImage(const BasicImage& other);
    // Memory of the same size is kept, wrapped memory too: its bytes are overwritten. Otherwise the
    // image gets memory of its own. Throws const char*; the image is then empty.
    BasicImage& operator=(const BasicImage& other);
    // The grey conversion of a bitonal image: black 0, white 255. Throws const char*.
    explicit BasicImage(const Image& bitonal);
    ~BasicImage() override;

    int getHeight() const override { return height_; }
    int getWidth() const override { return width_; }
    int getBytesPerLine() const override { return stride_; }
    int getXResolution() const override { return x_resolution_; }
    int getYResolution() const override { return y_resolution_; }
    int getType() const override { return type_; }
    std::uint8_t* getRow(int row) const override;
    int getBitOffset() const override { return 0; }
    bool getBytesPerPixel(int& out) const override;
    WhiteRectangle findLargestWhiteRectangle() const override;
    std::uint32_t getPixel(int x, int y) const override;
    void setPixel(int x, int y, std::uint32_t value) override;
    void swap(Image& other) override;
    void clampResolution(int low, int high) override;
    std::uint8_t* getData() const override { return data_; }

    // Replaces a bitonal image by its grey conversion; another type is left alone.
    void convertToGrey();
    // Replaces a grey image by a bitonal one: black where the value is at most `threshold`. Another
    // type is left alone.
    void convertToBitonal(int threshold);
    // White paper in every byte of a bitonal, grey or colour image.
    void fillWhite();
    // Takes the source's pixels where the mask is black; both have this image's type and geometry.
    // Bitonal and grey only.
    void copyWhereMaskIsBlack(const Image& source, const Image& mask);

  private:
    void take_copy(const BasicImage& other);
    void take_geometry(const BasicImage& other) noexcept;
    void drop() noexcept;

    std::uint8_t* data_ = nullptr;
    std::int32_t size_ = 0;  // bytes
    std::int32_t height_ = 0;
    std::int32_t width_ = 0;
    std::int32_t stride_ = 0;  // bytes
    std::int32_t x_resolution_ = 300;
    std::int32_t y_resolution_ = 300;
    std::int32_t type_ = kNoPixels;
    bool owns_data_ = true;
};

}  // namespace common
