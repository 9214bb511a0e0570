// Most of a page is white: the search for black pixels goes through the rows a word at a time.
#include "binarization/dropout.h"

#include <bit>
#include <cstring>

#include "common/byte_order.h"

namespace binarization {
namespace {

// Rows are whole 32-bit words and their padding is white.
void drop_in_row(const Dropout& dropout, const std::uint8_t* colours, std::uint8_t* bits,
                 int width) {
    for (int x = 0; x < width; x += 32, bits += 4) {
        std::uint32_t word;
        std::memcpy(&word, bits, 4);
        if (word == 0) continue;
        word = common::swap_bytes(word);
        std::uint32_t kept = word;
        while (word != 0) {
            const int bit = std::countl_zero(word);
            const std::uint32_t mask = 0x80000000U >> bit;
            word ^= mask;
            const std::uint8_t* colour = colours + 3 * static_cast<std::size_t>(x + bit);
            if (dropout.function(dropout.context, colour) == 1) kept ^= mask;
        }
        kept = common::swap_bytes(kept);
        std::memcpy(bits, &kept, 4);
    }
}

}  // namespace

void drop_colours(const Dropout& dropout, const grey::Source& source, const grey::Region& region,
                  const common::MutableBitonalView& page) {
    grey::RowBuffer buffer(source.row_bytes());
    grey::visit_rows(source, region, buffer, [&](int y, const std::uint8_t* row) {
        drop_in_row(dropout, row + static_cast<std::size_t>(region.x0) * 3, page.row(y),
                    page.width);
    });
}

}  // namespace binarization
