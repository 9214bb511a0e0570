// The deskew that keeps characters in shape: the page's runs of ink are labelled by 8-connected
// component; a component whose box drifts by less than a pixel's worth of skew from end to end, in
// both directions, moves by the shift of its centre, and a larger one is sheared run by run, its
// byte columns moving down by the shift of the fourth pixel of the byte. Neighbouring components
// may move by shifts that differ by one; where they then overlap, ink is ink.
//
// Whether a component is small enough is known as many rows below each of its runs as it may be
// high. So the runs are kept for a window of rows, and the memory grows with the width of the page.
//
// The box's ends are exclusive here as everywhere, in the test of its size and for its centre.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "common/byte_order.h"
#include "deskew/bitonal_shears.h"
#include "deskew/page_shear.h"
#include "deskew/strip_shear.h"
#include "ink/run_windows.h"

namespace deskew {
namespace {

constexpr std::int64_t kReportInterval = 256;  // rows
constexpr std::int64_t kBytePixels = 8;
constexpr std::int64_t kByteMiddle = 3;  // the pixel whose shift a byte column takes

// How the runs of one component move.
struct Placement {
    std::ptrdiff_t down;  // bytes of the destination
    std::int32_t right;   // pixels
    bool rigid;           // as one; otherwise sheared, and the other members mean nothing
};

// No component of so many rows moves rigidly.
constexpr std::int32_t lowest_sheared(int yskew) {
    const int steepness = yskew < 0 ? -yskew : yskew;
    return (kSkewScale + steepness - 1) / steepness;
}

bool moves_rigidly(const ink::ComponentBox& box, int yskew) {
    const std::int64_t steepness = std::abs(yskew);
    return (box.y1 - box.y0) * steepness < kSkewScale && (box.x1 - box.x0) * steepness < kSkewScale;
}

// Sets pixels x0 .. x1 - 1; whole 32-bit words of the row are read and written.
void add_ink(std::uint8_t* row, std::int32_t x0, std::int32_t x1) {
    constexpr std::int32_t kLast = 31;
    const auto add = [row](std::int32_t word, std::uint32_t mask) {
        std::uint8_t* at = row + std::ptrdiff_t{word} * 4;
        std::uint32_t ink;
        std::memcpy(&ink, at, sizeof(ink));
        ink |= common::swap_bytes(mask);
        std::memcpy(at, &ink, sizeof(ink));
    };
    const std::int32_t first = x0 >> 5;
    const std::int32_t last = (x1 - 1) >> 5;
    const std::uint32_t head = ~std::uint32_t{0} >> (x0 & kLast);
    const std::uint32_t tail = ~std::uint32_t{0} << (kLast - ((x1 - 1) & kLast));
    if (first == last) return add(first, head & tail);
    add(first, head);
    if (last - first > 1) {
        std::memset(row + std::ptrdiff_t{first + 1} * 4, 0xFF,
                    static_cast<std::size_t>(last - first - 1) * 4);
    }
    add(last, tail);
}

class ComponentShear {
  public:
    ComponentShear(common::BitonalView source, int yskew, common::MutableBitonalView destination)
        : page_(yskew, source.height, source.width),
          destination_(destination),
          windows_(source, lowest_sheared(yskew)),
          steps_(
              column_steps(page_.size().width, kBytePixels,
                           [this](std::int64_t x) { return page_.column_shift(x + kByteMiddle); })),
          step_of_byte_(static_cast<std::size_t>(common::bitonal_bytes(page_.size().width))) {
        for (std::size_t i = 0; i < steps_.size(); ++i) {
            for (std::int64_t x = steps_[i].begin; x < steps_[i].end; x += kBytePixels) {
                step_of_byte_[static_cast<std::size_t>(x / kBytePixels)] = i;
            }
        }
    }

    // Calls before_row(y) in front of each row.
    template <class BeforeRow>
    void run(BeforeRow before_row) {
        while (windows_.next()) {
            place_components();
            for (std::int32_t y = windows_.begin(); y < windows_.end(); ++y) {
                before_row(y);
                place_row(y);
            }
        }
    }

  private:
    void place_components() {
        const auto count = static_cast<std::size_t>(windows_.label_count());
        if (count > placements_.size()) {
            placements_ = frame::Buffer<Placement>(count + count / 8);
        }
        for (std::int32_t label = 0; label < windows_.label_count(); ++label) {
            const std::int32_t root = windows_.root(label);
            placements_[static_cast<std::size_t>(label)] =
                root == label ? placement(windows_.component(root))
                              : placements_[static_cast<std::size_t>(root)];
        }
    }

    void place_row(std::int32_t y) {
        std::uint8_t* row = destination_.row(y);
        const auto row_right = static_cast<std::int32_t>(page_.row_shift(y));
        const ink::RowRuns found = windows_.row(y);
        for (std::size_t i = 0; i < found.count; ++i) {
            const auto [x0, x1] = found.runs[i];
            const Placement& placed = placements_[static_cast<std::size_t>(found.labels[i])];
            if (placed.rigid) {
                add_ink(row + placed.down, x0 + placed.right, x1 + placed.right);
            } else {
                shear_run(row, x0 + row_right, x1 + row_right);
            }
        }
    }

    Placement placement(const ink::ComponentBox& box) const {
        if (!moves_rigidly(box, page_.yskew())) return {};
        const std::int64_t right = page_.row_shift((box.y0 + box.y1) / 2);
        const std::int64_t down = page_.column_shift((box.x0 + box.x1) / 2 + right);
        return {static_cast<std::ptrdiff_t>(down) * destination_.stride,
                static_cast<std::int32_t>(right), true};
    }

    void shear_run(std::uint8_t* row, std::int32_t x0, std::int32_t x1) const {
        const ColumnStep* step = &steps_[step_of_byte_[static_cast<std::size_t>(x0 / kBytePixels)]];
        for (; x0 < x1; ++step) {
            const std::int32_t end = std::min(x1, static_cast<std::int32_t>(step->end));
            add_ink(row + step->down * destination_.stride, x0, end);
            x0 = end;
        }
    }

    PageShear page_;
    common::MutableBitonalView destination_;
    ink::RunWindows windows_;
    frame::Buffer<Placement> placements_;      // of each label of the window
    std::vector<ColumnStep> steps_;            // of the straight page, whole bytes
    frame::Buffer<std::size_t> step_of_byte_;  // the step that each byte column belongs to
};

}  // namespace

void component_shear(common::BitonalView source, int yskew, common::MutableBitonalView destination,
                     const Progress& progress) {
    const std::int64_t total = (source.height + kReportInterval - 1) / kReportInterval;
    ComponentShear(source, yskew, destination).run([&](std::int32_t y) {
        if (y % kReportInterval == 0) progress(y / kReportInterval, total);
    });
    progress(total, total);
}

}  // namespace deskew
