// Row by row, the runs of ink are joined with the runs of the row above that they touch. Labels are
// indices of components; a component that was joined into another points at it.
#include "reading/components.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

namespace tool::reading {
namespace {

struct Run {
    int x0, x1;  // end excluded
    int label;
};

std::uint64_t pixels_at(const unsigned char* bytes) {
    std::uint64_t pixels;
    std::memcpy(&pixels, bytes, sizeof pixels);
    return std::endian::native == std::endian::little ? __builtin_bswap64(pixels) : pixels;
}

// Up to 64 pixels from the 32-bit word `index` of a row on, the leftmost in the highest bit.
std::uint64_t pixels_at(const unsigned char* row, std::size_t index, std::size_t words) {
    const unsigned char* bytes = row + 4 * index;
    if (index + 1 < words) return pixels_at(bytes);
    const unsigned char last[8] = {bytes[0], bytes[1], bytes[2], bytes[3]};
    return pixels_at(last);
}

void find_runs(const Page& bits, int y, std::vector<Run>& runs) {
    runs.clear();
    const unsigned char* row = bits.row(y);
    const std::size_t words = bits.stride() / 4;
    std::uint64_t last = 0;  // the pixel before the word
    int begin = 0;           // of the run that is open
    for (std::size_t i = 0; i < words; i += 2) {
        const std::uint64_t pixels = pixels_at(row, i, words);
        std::uint64_t changes = pixels ^ (pixels >> 1 | last << 63);
        while (changes != 0) {
            const int place = std::countl_zero(changes);
            changes ^= std::uint64_t{1} << 63 >> place;
            const int x = static_cast<int>(32 * i) + place;
            if (last == 0) {
                begin = x;
            } else {
                runs.push_back({begin, x, -1});
            }
            last ^= 1;
        }
    }
    if (last != 0) runs.push_back({begin, bits.width, -1});
}

class Labelling {
  public:
    void add_row(int y, std::vector<Run>& runs) {
        std::size_t above = 0;
        for (Run& run : runs) {
            while (above < above_.size() && above_[above].x1 < run.x0) ++above;
            int shared = 0;  // pixels above that are black, too
            std::size_t i = above;
            for (; i < above_.size() && above_[i].x0 <= run.x1; ++i) {
                shared +=
                    std::max(0, std::min(run.x1, above_[i].x1) - std::max(run.x0, above_[i].x0));
                join(run, root_of(above_[i].label));
            }
            // The last run above may touch the next run as well.
            above = i > above ? i - 1 : above;
            add(run, y, shared);
        }
        above_.swap(runs);
    }

    std::vector<Component> take() {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < found_.size(); ++i) {
            if (parents_[i] == static_cast<int>(i)) found_[kept++] = found_[i];
        }
        found_.resize(kept);
        return std::move(found_);
    }

  private:
    Component& component(int label) { return found_[static_cast<std::size_t>(label)]; }
    int& parent(int label) { return parents_[static_cast<std::size_t>(label)]; }

    int root_of(int label) {
        while (parent(label) != label) {
            parent(label) = parent(parent(label));
            label = parent(label);
        }
        return label;
    }

    void join(Run& run, int other) {
        if (run.label < 0) {
            run.label = other;
            return;
        }
        const int from = std::max(run.label, other);
        run.label = std::min(run.label, other);
        if (from == run.label) return;
        parent(from) = run.label;
        Component& whole = component(run.label);
        const Component& part = component(from);
        whole = {std::min(whole.x0, part.x0),
                 std::min(whole.y0, part.y0),
                 std::max(whole.x1, part.x1),
                 std::max(whole.y1, part.y1),
                 whole.area + part.area,
                 whole.perimeter + part.perimeter,
                 whole.first_x};
    }

    void add(Run& run, int y, int shared) {
        const int length = run.x1 - run.x0;
        const int sides = 2 + 2 * length - 2 * shared;
        if (run.label < 0) {
            run.label = static_cast<int>(found_.size());
            parents_.push_back(run.label);
            found_.push_back({run.x0, y, run.x1, y + 1, length, sides, run.x0});
            return;
        }
        Component& whole = component(run.label);
        whole.x0 = std::min(whole.x0, run.x0);
        whole.x1 = std::max(whole.x1, run.x1);
        whole.y1 = y + 1;
        whole.area += length;
        whole.perimeter += sides;
    }

    std::vector<Run> above_;
    std::vector<Component> found_;
    std::vector<int> parents_;
};

}  // namespace

std::vector<Component> components_of(const Page& bits) {
    Labelling labelling;
    std::vector<Run> runs;
    for (int y = 0; y < bits.height; ++y) {
        find_runs(bits, y, runs);
        labelling.add_row(y, runs);
    }
    return labelling.take();
}

}  // namespace tool::reading
