// The abstract image that passes between operations as an object.
//
// Keep true: pixel coordinates are inside the image; nothing is range-checked. An object is used by
// one thread at a time.
#pragma once

#include <cstdint>

namespace common {

// Pixel type codes, as getType() returns them.
enum PixelType : std::int32_t {
    kNoPixels = 0,
    kBitonal = 1,    // 1 bit, leftmost pixel in the most significant bit, 1 = black
    kGrey = 2,       // 1 byte, 0 = black
    kColour = 3,     // 3 bytes
    kFourBytes = 4,  // can be held, copied and swapped; no operation reads or writes its pixels
};

// Ends are exclusive; all four are 0 for no rectangle.
struct WhiteRectangle {
    double right = 0;
    double bottom = 0;
    double left = 0;
    double top = 0;
};

class Image {
  public:
    virtual ~Image() = default;
    virtual int getHeight() const = 0;
    virtual int getWidth() const = 0;
    virtual int getBytesPerLine() const = 0;
    virtual int getXResolution() const = 0;  // dots per inch
    virtual int getYResolution() const = 0;
    virtual int getType() const = 0;
    // First byte of a row; null for a type without row access.
    virtual std::uint8_t* getRow(int row) const = 0;
    // Bit position of pixel 0 in the first byte of a row.
    virtual int getBitOffset() const = 0;
    // Stores the bytes of a pixel and answers true, or answers false for types below a byte.
    virtual bool getBytesPerPixel(int& out) const = 0;
    // The largest all-white upright rectangle of a bitonal image; of equal ones the one whose last
    // row comes first, then the leftmost.
    virtual WhiteRectangle findLargestWhiteRectangle() const = 0;
    // Grey: the byte; colour: the three bytes, first one highest; bitonal: 1 for black; else 0.
    virtual std::uint32_t getPixel(int x, int y) const = 0;
    virtual void setPixel(int x, int y, std::uint32_t value) = 0;
    // Exchanges everything, ownership included. Throws const char* when `other` is of another
    // class.
    virtual void swap(Image& other) = 0;
    virtual void clampResolution(int low, int high) = 0;
    virtual std::uint8_t* getData() const = 0;

  protected:
    Image() = default;
    Image(const Image&) = default;
    Image& operator=(const Image&) = default;
};

}  // namespace common
