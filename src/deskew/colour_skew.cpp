// Skew of a grey or colour page from the edges of its grey values.
//
// Grey values are summed in cells of 2 rows x 16 pixels and of 16 rows x 2 pixels, the cells in
// which ink is counted on bitonal pages. A sum is at most 32 * 255 = 8160, and so is an edge; the
// sum of four edges is at most 32640 and fits in 16 bits. The search adds in wider numbers.
#include "deskew/colour_skew.h"

#include <algorithm>
#include <memory>
#include <ostream>

#include "diag/debug_file.h"
#include "frame/buffer.h"
#include "simd/pixels/cell_sums.h"
#include "simd/pixels/grey_rows.h"

namespace deskew {

namespace {

constexpr char kTraceFile[] = "estimate_skew_of_color_image.log";
constexpr int kCellThickness = 2;  // pixels across the direction that a cell follows
constexpr int kCellLength = 16;    // pixels along it
constexpr std::uint32_t kLargestEdge = kCellThickness * kCellLength * 255;

using Edges = EdgeLines<std::uint16_t>;
using Sums = frame::Buffer<std::uint16_t>;

// The rows of a page from the top, as grey values.
class GreyRows {
  public:
    explicit GreyRows(const grey::Source& source)
        : source_(source),
          order_(source.type == grey::SourceType::kRgb ? simd::ChannelOrder::kRedFirst
                                                       : simd::ChannelOrder::kBlueFirst),
          stream_(source, 0),
          buffer_(source.row_bytes()) {}

    // The row stays until the next call. The grey values of a colour row take the place of its
    // first bytes.
    const std::uint8_t* next() {
        std::uint8_t* row = buffer_.data();
        stream_.next(row);
        if (source_.colour())
            simd::luminance_in_place(row, static_cast<std::size_t>(source_.width), order_);
        return row;
    }

  private:
    const grey::Source& source_;
    simd::ChannelOrder order_;
    grey::RowStream stream_;
    grey::RowBuffer buffer_;
};

// The sums of the cells that the next `rows` rows make up. `add` is the kernel for their width.
template <class Add>
void sum_rows(GreyRows& page, int rows, Add add, Sums& sums) {
    std::fill(sums.begin(), sums.end(), std::uint16_t{0});
    for (int i = 0; i < rows; ++i) add(page.next(), sums.size(), sums.data());
}

// Edges between cells above each other: text lines begin and end there.
void fill_text_edges(const grey::Source& source, Edges& edges) {
    GreyRows page(source);
    Sums above(edges.lines());
    Sums sums(edges.lines());
    for (std::size_t y = 0; y < edges.length(); ++y) {
        sum_rows(page, kCellThickness, simd::add_sixteens, sums);
        if (y == 0) std::copy(sums.begin(), sums.end(), above.begin());
        simd::absolute_differences(sums.data(), above.data(), sums.size(), above.data());
        for (std::size_t cell = 0; cell < edges.lines(); ++cell) edges.line(cell)[y] = above[cell];
        std::swap(sums, above);
    }
    edges.close_margins();
}

// Edges between neighbouring cells: stems and margins of columns.
void fill_stem_edges(const grey::Source& source, Edges& edges) {
    GreyRows page(source);
    Sums sums(edges.length());
    for (std::size_t y = 0; y < edges.lines(); ++y) {
        sum_rows(page, kCellLength, simd::add_pairs, sums);
        std::uint16_t* line = edges.line(y);
        line[0] = 0;
        simd::absolute_differences(sums.data() + 1, sums.data(), sums.size() - 1, line + 1);
    }
    edges.close_margins();
}

// trace: null for none.
SkewEstimate estimate(const SourcePage& page, SkewTrace* trace) {
    const int width = page.source.width;
    const LineShape wide = {width / kCellLength, page.height / kCellThickness};
    const LineShape tall = {page.height / kCellLength, width / kCellThickness};
    Edges text(wide, wide, kLargestEdge);
    Edges stems(tall, tall, kLargestEdge);
    // One block for all images, one direction after the other.
    const std::size_t size = std::max(text.storage(), stems.storage());
    const std::size_t half_size =
        std::max(text.half_shape().storage(), stems.half_shape().storage());
    frame::Buffer<std::uint16_t> block(size + half_size);
    std::uint16_t* half_block = block.data() + size;

    text.place(block.data());
    fill_text_edges(page.source, text);
    const LineEstimate rows = estimate_along(text, half_block, Direction::kRows, trace);
    stems.place(block.data());
    fill_stem_edges(page.source, stems);
    const LineEstimate columns = estimate_along(stems, half_block, Direction::kColumns, trace);
    return choose_skew(rows, columns, trace);
}

}  // namespace

SkewEstimate estimate_colour_skew(const SourcePage& page) {
    return estimate(page, nullptr);
}

SkewEstimate trace_colour_skew(const SourcePage& page, const char* folder) {
    const std::shared_ptr<std::ostream> file = diag::open_debug_file(folder, kTraceFile);
    SkewTrace trace(*file);
    return estimate(page, &trace);
}

}  // namespace deskew
