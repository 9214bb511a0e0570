// Rows are converted while they are in the cache, fresh from the reader, and searched for contrast
// and smoothed in the same visit. The reader is run once for the conversion and, for colour, a
// second time to clamp strongly coloured pixels: a caller sees the same calls whatever the page
// shows.
//
// A page in memory needs no reader, so its rows can be converted by several threads, each on its
// own band.
#include "grey/grey_preparation.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "common/views.h"
#include "grey/smoothing.h"
#include "grey/undithering.h"
#include "simd/pixels/grey_rows.h"
#include "threads/worker_pool.h"

namespace grey {
namespace {

using common::MutableGreyView;

simd::ChannelOrder channel_order(const Source& source) {
    return source.type == SourceType::kRgb ? simd::ChannelOrder::kRedFirst
                                           : simd::ChannelOrder::kBlueFirst;
}

bool may_smooth(const Region& region, const GreyOptions& options) {
    return options.smooth != 0 && region.height() > 1 && region.width() > 1;
}

// What follows the conversion: looks for contrast in the rows of a grey page as they become final,
// and smooths the page where it has any. Undithering needs the whole page first; without it rows
// are smoothed at once.
//
// Use: (visit)* undither_and_smooth, with visit() for every row from the top.
class Finish {
  public:
    // Throws std::bad_alloc.
    Finish(const Region& region, const GreyOptions& options)
        : options_(options), contrast_(may_smooth(region, options)) {
        if (may_smooth(region, options)) smoothing_.emplace(options.smooth, region.width());
    }

    void visit(const MutableGreyView& grey, int y) {
        contrast_.visit(grey, y);
        if (contrast_.found() && !options_.undithering) smoothing_->advance(grey, y + 1);
    }

    void undither_and_smooth(const MutableGreyView& grey) {
        if (!contrast_.found() || !options_.undithering) return;
        undither(grey, undithering_parameter(options_.smooth), options_.resolution);
        smoothing_->advance(grey, grey.height);
    }

  private:
    GreyOptions options_;
    ContrastSearch contrast_;
    std::optional<Smoothing> smoothing_;
};

// A whole row goes straight to its place; a part of one has to be cut out of the row.
void read_grey(const Source& source, const Region& region, const MutableGreyView& grey,
               Finish& finish) {
    if (region.width() == source.width) {
        RowStream rows(source, region.y0);
        for (int y = 0; y < grey.height; ++y) {
            rows.next(grey.row(y));
            finish.visit(grey, y);
        }
        return;
    }
    RowBuffer buffer(source.row_bytes());
    visit_rows(source, region, buffer, [&](int y, const std::uint8_t* row) {
        std::memcpy(grey.row(y), row + region.x0, static_cast<std::size_t>(grey.width));
        finish.visit(grey, y);
    });
}

void read_colour(const Source& source, const Region& region, const MutableGreyView& grey,
                 Finish& finish) {
    const auto width = static_cast<std::size_t>(grey.width);
    const std::size_t skipped = static_cast<std::size_t>(region.x0) * 3;
    RowBuffer buffer(source.row_bytes());  // for both readings, so that the second cannot fail
    visit_rows(source, region, buffer, [&](int y, const std::uint8_t* row) {
        simd::luminance_row(row + skipped, width, channel_order(source), grey.row(y));
    });
    visit_rows(source, region, buffer, [&](int y, const std::uint8_t* row) {
        simd::clamp_saturated(row + skipped, width, grey.row(y));
        finish.visit(grey, y);
    });
}

void convert_in_bands(const Source& source, const Region& region, const MutableGreyView& grey,
                      int threads) {
    const auto convert = [&](const threads::Band& band) {
        const auto width = static_cast<std::size_t>(grey.width);
        for (std::int32_t y = band.first; y < band.last; ++y) {
            const std::size_t source_row = static_cast<std::size_t>(region.y0 + y);
            const std::uint8_t* colour = source.image + source_row * source.row_bytes() +
                                         static_cast<std::size_t>(region.x0) * 3;
            simd::luminance_row(colour, width, channel_order(source), grey.row(y));
            simd::clamp_saturated(colour, width, grey.row(y));
        }
    };
    threads::run_in_bands(threads::open_bands(grey.height, threads), threads, convert);
}

void read_rows(const Source& source, const Region& region, const MutableGreyView& grey,
               Finish& finish) {
    if (source.colour()) {
        read_colour(source, region, grey, finish);
    } else {
        read_grey(source, region, grey, finish);
    }
}

}  // namespace

bool reads_image(SourceType type, const Region& region, int threads) {
    return type == SourceType::kRgb && threads::effective_threads(threads, region.height()) > 1;
}

bool reachable(const Source& source, const Region& region, int threads) {
    return reads_image(source.type, region, threads) ? source.image != nullptr
                                                     : source.reader != nullptr;
}

frame::Buffer<std::uint8_t> prepare_grey(const Source& source, const Region& region,
                                         const GreyOptions& options) {
    const auto width = static_cast<std::size_t>(region.width());
    frame::Buffer<std::uint8_t> pixels(width * static_cast<std::size_t>(region.height()));
    const MutableGreyView grey{pixels.data(), region.height(), region.width(), region.width()};
    Finish finish(region, options);

    if (reads_image(source.type, region, options.threads)) {
        const int threads = threads::effective_threads(options.threads, grey.height);
        convert_in_bands(source, region, grey, threads);
        for (int y = 0; y < grey.height; ++y) finish.visit(grey, y);
    } else {
        read_rows(source, region, grey, finish);
    }

    finish.undither_and_smooth(grey);
    return pixels;
}

void write_grey(const Source& source, const Region& region, const GreyOptions& options,
                std::uint8_t* out, std::size_t size) {
    // Once the first byte is written nothing may fail any more.
    const bool may_fail_late = reads_image(source.type, region, options.threads) ||
                               (options.undithering && may_smooth(region, options));
    const auto width = static_cast<std::size_t>(region.width());
    if (may_fail_late || size != width * static_cast<std::size_t>(region.height())) {
        const auto pixels = prepare_grey(source, region, options);
        std::copy_n(pixels.data(), size, out);
        return;
    }
    const MutableGreyView grey{out, region.height(), region.width(), region.width()};
    Finish finish(region, options);
    read_rows(source, region, grey, finish);
    finish.undither_and_smooth(grey);
}

}  // namespace grey
