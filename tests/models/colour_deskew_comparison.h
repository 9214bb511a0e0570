// The skew and the deskew rotation of grey and colour pages beside their models, for tests and fuzz
// targets.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "colour_rotation_model.h"
#include "colour_skew_model.h"
#include "skew_comparison.h"
#include "support/row_reader.h"
#include "vemoprepro/deskew.h"

namespace model {

// A page of packed rows.
struct PackedPage {
    int pixel_bytes = 1;
    int height = 0;
    int width = 0;
    std::vector<std::uint8_t> bytes;

    std::size_t row_bytes() const {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(pixel_bytes);
    }
};

// What an estimate stored and how it called the reader.
struct ColourSkewOutcome {
    SkewOutputs outputs;
    std::vector<int> modes;

    friend bool operator==(const ColourSkewOutcome&, const ColourSkewOutcome&) = default;
    friend std::ostream& operator<<(std::ostream& out, const ColourSkewOutcome& o) {
        return out << o.outputs << " after " << o.modes.size() << " rows";
    }
};

inline ColourSkewOutcome estimated_colour_skew(const PackedPage& page, int format, int debug = 0,
                                               const char* folder = nullptr) {
    support::RecordingReader reader(page.bytes, page.row_bytes());
    SkewOutputs out;
    out.result =
        ::estimate_skew_of_color_image(debug, folder, reader.read, &reader, format, page.height,
                                       page.width, &out.yskew, &out.scale, &out.confidence);
    return {out, reader.modes};
}

inline ColourSkewOutcome modelled_colour_skew(const PackedPage& page, int format,
                                              std::ostream* trace = nullptr) {
    support::RecordingReader reader(page.bytes, page.row_bytes());
    SkewOutputs out;
    out.result =
        model::estimate_skew_of_color_image(trace, reader.read, &reader, format, page.height,
                                            page.width, &out.yskew, &out.scale, &out.confidence);
    return {out, reader.modes};
}

// A turn in place, with the room that the caller says that there is.
struct Turn {
    int skew = 0;
    int scale = 512;
    int out_height = 0;
    int out_width = 0;
    std::vector<std::uint8_t> background;  // a pixel; empty for the function without one
};

struct TurnOutcome {
    int status = 0;
    std::vector<std::uint8_t> bytes;  // as much as the page or the result needs
    std::vector<std::pair<unsigned, unsigned>> reports;

    friend bool operator==(const TurnOutcome&, const TurnOutcome&) = default;
};

template <class TurnWithBackground, class TurnOnWhite>
TurnOutcome turned(const PackedPage& page, const Turn& turn, TurnWithBackground with_background,
                   TurnOnWhite on_white) {
    static std::vector<std::pair<unsigned, unsigned>> reports;
    reports.clear();
    const auto report = [](unsigned done, unsigned total) { reports.emplace_back(done, total); };
    TurnOutcome outcome;
    outcome.bytes = page.bytes;
    if (turn.out_height > 0 && turn.out_width > 0) {
        const std::size_t needed = offset(turn.out_height, turn.out_width * page.pixel_bytes, 0);
        outcome.bytes.resize(std::max(needed, page.bytes.size()), 0x5C);
    }
    outcome.status =
        turn.background.empty()
            ? on_white(turn.skew, turn.scale, page.pixel_bytes, outcome.bytes.data(), page.height,
                       page.width, turn.out_height, turn.out_width, report)
            : with_background(turn.skew, turn.scale, page.pixel_bytes, outcome.bytes.data(),
                              page.height, page.width, turn.background.data(), turn.out_height,
                              turn.out_width, report);
    outcome.reports = reports;
    return outcome;
}

inline TurnOutcome turned(const PackedPage& page, const Turn& turn) {
    return turned(page, turn, ::skrotimg_bg_mem, ::skrotimg_mem);
}
inline TurnOutcome modelled_turn(const PackedPage& page, const Turn& turn) {
    return turned(page, turn, model::skrotimg_bg_mem, model::skrotimg_mem);
}

}  // namespace model
