// Skew of a bitonal page from the edges of its ink.
//
// Ink is counted in cells of 2 rows x 16 pixels and of 16 rows x 2 pixels. The differences between
// cells above each other are strong where text lines begin and end, those between neighbours at
// stems and at the margins of columns. A cell is 8 times as long as it is thick, so that a slope of
// s 64ths of a cell per cell is s pixels in 512. The page is read once for both. Counts are at most
// 32, and so are edges; 16-bit cells hold even the sums of four.
#include "deskew/bitonal_skew.h"

#include <algorithm>
#include <memory>
#include <ostream>

#include "diag/debug_file.h"
#include "frame/buffer.h"
#include "simd/bits/cell_counts.h"

namespace deskew {

namespace {

constexpr char kTraceFile[] = "estimate_skew_of_binary_image.log";
constexpr std::uint32_t kLargestEdge = 32;
constexpr std::size_t kBlock = simd::kCountBlock;

constexpr std::size_t round_up(std::size_t value, std::size_t unit) {
    return (value + unit - 1) / unit * unit;
}

// Edges of both directions: text lines from columns of wide cells, stems from rows of tall cells.
struct PageEdges {
    EdgeLines<std::uint8_t> rows;
    EdgeLines<std::uint8_t> columns;
};

// Stored are the cells that the counted bytes touch, made even for halving, and of the stems also
// the edge behind the last counted byte.
PageEdges shape_edges(const common::BitonalView& page) {
    const std::int64_t bytes = page.width / 8;
    const LineShape wide = {page.stride / 2, page.height / 2};
    const LineShape tall = {page.height / 16, page.stride * 4};
    const std::int64_t wide_columns = std::min<std::int64_t>((bytes + 3) / 4 * 2, wide.lines);
    const std::int64_t tall_columns = std::min<std::int64_t>(bytes * 4 + 2, tall.length);
    return {EdgeLines<std::uint8_t>(wide, {wide_columns, wide.length}, kLargestEdge),
            EdgeLines<std::uint8_t>(tall, {tall.lines, tall_columns}, kLargestEdge)};
}

void fill_edges(const common::BitonalView& page, PageEdges& edges) {
    const auto bytes = static_cast<std::size_t>(page.width / 8);
    const std::size_t room = round_up(bytes, kBlock);
    frame::Buffer<std::uint16_t> above(room / 2);
    // One value before the first, equal to it so that it has no edge, and zeros behind the last.
    auto tall_cells = frame::Buffer<std::uint8_t>::zeroed(1 + 4 * room + 2);
    const auto white = frame::Buffer<std::uint8_t>::zeroed(bytes);

    simd::CountBand band{};
    band.bytes = bytes;
    band.pitch = edges.rows.pitch();
    band.columns = edges.rows.lines();
    band.above = above.data();
    band.tall_cells = tall_cells.data() + 1;
    // A last odd row takes part in nothing.
    const std::size_t height = static_cast<std::size_t>(page.height) / 2 * 2;
    for (std::size_t y = 0; y < height; y += simd::kBandRows) {
        const std::size_t present = std::min(height - y, simd::kBandRows);
        for (std::size_t i = 0; i < simd::kBandRows; ++i)
            band.rows[i] =
                i < present ? page.row(static_cast<std::ptrdiff_t>(y + i)) : white.data();
        band.row_edges = edges.rows.line(0) + y / 2;
        band.first = y == 0;
        simd::count_band(band);
        if (present < simd::kBandRows) break;
        tall_cells[0] = tall_cells[1];
        simd::adjacent_differences(band.tall_cells, edges.columns.length(),
                                   edges.columns.line(y / simd::kBandRows));
    }
    // This also clears the edges that a last band of fewer rows left behind the page.
    edges.rows.close_margins();
    edges.columns.close_margins();
}

// trace: null for none.
SkewEstimate estimate(const common::BitonalView& page, SkewTrace* trace) {
    PageEdges edges = shape_edges(page);
    // One block for all images: the C library keeps a single block of this size for the next call
    // where it would return several to the system and fault their pages in again.
    const std::size_t rows_size = edges.rows.storage();
    const std::size_t columns_size = edges.columns.storage();
    const std::size_t half_size =
        std::max(edges.rows.half_shape().storage(), edges.columns.half_shape().storage());
    frame::Buffer<std::uint8_t> block(rows_size + columns_size + half_size);
    edges.rows.place(block.data());
    edges.columns.place(block.data() + rows_size);
    std::uint8_t* half_block = block.data() + rows_size + columns_size;

    fill_edges(page, edges);
    const LineEstimate rows = estimate_along(edges.rows, half_block, Direction::kRows, trace);
    const LineEstimate columns =
        estimate_along(edges.columns, half_block, Direction::kColumns, trace);
    return choose_skew(rows, columns, trace);
}

}  // namespace

SkewEstimate estimate_bitonal_skew(const common::BitonalView& page) {
    return estimate(page, nullptr);
}

SkewEstimate trace_bitonal_skew(const common::BitonalView& page, const char* folder) {
    const std::shared_ptr<std::ostream> file = diag::open_debug_file(folder, kTraceFile);
    SkewTrace trace(*file);
    return estimate(page, &trace);
}

}  // namespace deskew
