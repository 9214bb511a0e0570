// The order in which components are decided about: a list of open components that is led down the
// page row by row.
//
// A component enters the list at its end with its first run. A run that touches several components
// of the row above joins them into the one of the leftmost touching run; the others leave the list.
// The row below a component's last row decides about it, after that row's own runs are in the list.
#pragma once

#include <algorithm>
#include <functional>
#include <list>
#include <utility>
#include <vector>

#include "components_model.h"

namespace model {

// False ends the decisions of this row; the component and those after it in the list wait for the
// next row, where its turn comes again.
using Decide = std::function<bool(const Component&)>;

class ComponentList {
  public:
    explicit ComponentList(Decide decide) : decide_(std::move(decide)) {}

    // The runs of row y, the row after those added before, from left to right.
    void add_row(int y, const std::vector<Run>& runs) {
        above_ = std::exchange(here_, {});
        for (const Run& run : runs) {
            Component* home = nullptr;
            for (std::size_t i = 0; i < above_.size(); ++i) {
                const Label& label = above_[i];
                if (label.run.x1 < run.x0 || label.run.x0 > run.x1) continue;
                if (home == nullptr)
                    home = label.component;
                else if (label.component != home)
                    join(*home, label.component);
            }
            if (home == nullptr) home = &open_.emplace_back(Component{run.x0, y, run.x1, y, 0, {}});
            grow(*home, {run.x0, y, run.x1, y + 1, run.x1 - run.x0, {run}});
            here_.push_back({run, home});
        }
    }

    // Decides about the components that ended above row y.
    void finish(int y) {
        for (auto c = open_.begin(); c != open_.end();) {
            if (c->y1 > y) {
                ++c;
                continue;
            }
            if (!decide_(*c)) return;
            c = open_.erase(c);
        }
    }

  private:
    struct Label {
        Run run;
        Component* component;
    };

    static void grow(Component& c, const Component& by) {
        c.x0 = std::min(c.x0, by.x0);
        c.y0 = std::min(c.y0, by.y0);
        c.x1 = std::max(c.x1, by.x1);
        c.y1 = std::max(c.y1, by.y1);
        c.area += by.area;
        c.runs.insert(c.runs.end(), by.runs.begin(), by.runs.end());
    }

    void join(Component& home, Component* other) {
        grow(home, *other);
        for (auto* labels : {&above_, &here_})
            for (Label& label : *labels)
                if (label.component == other) label.component = &home;
        open_.remove_if([&](const Component& c) { return &c == other; });
    }

    Decide decide_;
    std::list<Component> open_;
    std::vector<Label> above_;
    std::vector<Label> here_;
};

// Leads the ink of the columns [x0, x1) of all rows through the list. Zero as `ink_value` makes
// 1-bits the ink, anything else 0-bits.
inline void visit_components(int ink_value, const unsigned char* image, int height, int stride,
                             int x0, int x1, const Decide& decide) {
    ComponentList list(decide);
    for (int y = 0; y < height; ++y) {
        std::vector<Run> runs;
        for (int x = x0; x < x1; ++x) {
            if (get_bit(image, stride, x, y) != (ink_value == 0)) continue;
            if (runs.empty() || runs.back().x1 != x) runs.push_back({x, x, y});
            ++runs.back().x1;
        }
        list.add_row(y, runs);
        list.finish(y);
    }
    list.finish(height);
}

inline void paint_component(const Component& c, unsigned char* image, int stride, bool value) {
    for (const Run& run : c.runs)
        for (int x = run.x0; x < run.x1; ++x) set_bit(image, stride, x, run.y, value);
}

}  // namespace model
