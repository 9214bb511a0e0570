// Row by row, the runs of ink are joined with the runs of the row above that they touch. Labels are
// indices of components; a component that was joined into another points at it.
#include "reading/components.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

namespace tool::reading {
namespace {

// 64 pixels from the 32-bit word `index` of a row on, the leftmost in the highest bit; behind the
// row there is paper.
std::uint64_t pixels_of_two(const unsigned char* row, std::size_t index, std::size_t words) {
    const std::uint64_t first = pixels_at(row, index);
    return first << 32 | (index + 1 < words ? pixels_at(row, index + 1) : 0);
}

// The runs of a row, from the left to the right, and one behind them that lies beyond every row.
class RowRuns {
  public:
    explicit RowRuns(int width)
        : ends_(static_cast<std::size_t>(width) + 4),
          labels_(static_cast<std::size_t>(width) / 2 + 2) {
        close(0);
    }

    void find(const Page& bits, int y) {
        const unsigned char* row = bits.row(y);
        const std::size_t words = bits.stride() / 4;
        int* to = ends_.data();
        std::uint64_t last = 0;  // the pixel before the word
        for (std::size_t i = 0; i < words; i += 2) {
            const std::uint64_t pixels = pixels_of_two(row, i, words);
            std::uint64_t changes = pixels ^ (pixels >> 1 | last << 63);
            last = pixels & 1;
            while (changes != 0) {
                const int place = std::countl_zero(changes);
                changes ^= std::uint64_t{1} << 63 >> place;
                *to++ = static_cast<int>(32 * i) + place;
            }
        }
        if (last != 0) *to++ = bits.width;
        close(static_cast<std::size_t>(to - ends_.data()));
    }

    std::size_t count() const { return count_; }
    // A run has the columns begin .. end - 1.
    int begin(std::size_t run) const { return ends_[2 * run]; }
    int end(std::size_t run) const { return ends_[2 * run + 1]; }
    int& label(std::size_t run) { return labels_[run]; }

  private:
    void close(std::size_t size) {
        count_ = size / 2;
        ends_[size] = ends_[size + 1] = std::numeric_limits<int>::max();
    }

    std::vector<int> ends_;  // begin and end by turns
    std::vector<int> labels_;
    std::size_t count_ = 0;
};

class Labelling {
  public:
    // Labels the runs of row y; `above` has those of the row above.
    void add_row(int y, RowRuns& runs, RowRuns& above) {
        std::size_t i = 0;
        for (std::size_t run = 0; run < runs.count(); ++run) {
            const int begin = runs.begin(run), end = runs.end(run);
            while (above.end(i) < begin) ++i;
            if (above.begin(i) > end) {
                runs.label(run) = begin_component(begin, end, y);
                continue;
            }
            int label = root_of(above.label(i));
            int shared = overlap(begin, end, above, i);  // pixels above that are black, too
            // The last run above may touch the next run as well.
            while (above.begin(i + 1) <= end) {
                ++i;
                label = join(label, root_of(above.label(i)));
                shared += overlap(begin, end, above, i);
            }
            runs.label(run) = label;
            add(component(label), begin, end, y, shared);
        }
    }

    // From here on parents are the numbers of the components. A parent comes before its parts.
    std::vector<Component> take() {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < found_.size(); ++i) {
            const auto parent = static_cast<std::size_t>(parents_[i]);
            parents_[i] = parent == i ? static_cast<int>(kept) : parents_[parent];
            if (parent == i) found_[kept++] = found_[i];
        }
        found_.resize(kept);
        return std::move(found_);
    }
    int number_of(int label) const { return parents_[static_cast<std::size_t>(label)]; }

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

    static int overlap(int begin, int end, const RowRuns& above, std::size_t run) {
        return std::max(0, std::min(end, above.end(run)) - std::max(begin, above.begin(run)));
    }

    int join(int one, int other) {
        if (one == other) return one;
        const int from = std::max(one, other), to = std::min(one, other);
        parent(from) = to;
        Component& whole = component(to);
        const Component& part = component(from);
        whole = {std::min(whole.x0, part.x0),
                 std::min(whole.y0, part.y0),
                 std::max(whole.x1, part.x1),
                 std::max(whole.y1, part.y1),
                 whole.area + part.area,
                 whole.perimeter + part.perimeter,
                 whole.first_x};
        return to;
    }

    int begin_component(int begin, int end, int y) {
        const int label = static_cast<int>(found_.size());
        parents_.push_back(label);
        found_.push_back({begin, y, end, y + 1, end - begin, 2 + 2 * (end - begin), begin});
        return label;
    }

    static void add(Component& whole, int begin, int end, int y, int shared) {
        const int length = end - begin;
        whole.x0 = std::min(whole.x0, begin);
        whole.x1 = std::max(whole.x1, end);
        whole.y1 = y + 1;
        whole.area += length;
        whole.perimeter += 2 + 2 * length - 2 * shared;
    }

    std::vector<Component> found_;
    std::vector<int> parents_;
};

// Calls use(y, runs) for each row with its labelled runs.
template <class Use>
void label_rows(const Page& bits, Labelling& labelling, Use use) {
    RowRuns runs(bits.width), above(bits.width);
    for (int y = 0; y < bits.height; ++y) {
        runs.find(bits, y);
        labelling.add_row(y, runs, above);
        use(y, runs);
        std::swap(runs, above);
    }
}

}  // namespace

std::vector<Component> components_of(const Page& bits) {
    Labelling labelling;
    label_rows(bits, labelling, [](int, RowRuns&) {});
    return labelling.take();
}

std::vector<Component> components_of(const Page& bits, std::vector<ComponentRun>& runs) {
    runs.clear();
    Labelling labelling;
    label_rows(bits, labelling, [&](int y, RowRuns& row) {
        for (std::size_t i = 0; i < row.count(); ++i)
            runs.push_back({{y, row.begin(i), row.end(i)}, row.label(i)});
    });
    std::vector<Component> components = labelling.take();
    for (ComponentRun& run : runs) run.component = labelling.number_of(run.component);
    return components;
}

}  // namespace tool::reading
