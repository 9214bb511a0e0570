// Calls the library's estimator on a part of a page, which it takes as a page of its own.
#include "steps/skew_measure.h"

#include <vemoprepro/deskew.h>

#include <fstream>
#include <new>
#include <utility>

#include "files/temporary_file.h"

namespace tool::steps {
namespace {

constexpr int kMarginFraction = 12;

}  // namespace

std::optional<Box> part_within_margins(const Page& page) {
    const int margin_x = page.width / kMarginFraction / 8 * 8;
    const int margin_y = page.height / kMarginFraction;
    const Box inner{margin_x, margin_y, page.width - 2 * margin_x, page.height - 2 * margin_y};
    if (inner.width < kShortestSkewSide || inner.height < kShortestSkewSide) return std::nullopt;
    return inner;
}

MeasuredSkew measure_skew(const Page& page, const Box& part, bool with_fan) {
    std::optional<files::TemporaryFolder> folder;
    if (with_fan) folder.emplace();
    const bool traced = folder && !folder->path().empty();
    MeasuredSkew measured;
    int height = 0, width = 0;
    const unsigned char* corner =
        page.bytes.get() + static_cast<std::size_t>(part.y) * page.stride() + part.x / 8;
    if (estimate_skew_of_binary_image(
            traced ? 1 : 0, traced ? folder->path().c_str() : nullptr, corner, part.height,
            part.width, static_cast<int>(page.stride()), &measured.skew.numerator,
            &measured.skew.denominator, &measured.confidence, &height, &width) != 0) {
        throw std::bad_alloc();
    }
    if (traced) {
        std::ifstream trace(folder->path() + "/" + kSkewTraceName);
        SkewFan fan = read_fan(trace);
        if (!fan.empty()) measured.fan = std::move(fan);
    }
    return measured;
}

}  // namespace tool::steps
