// The direction of the lines that are looked for, and the runs of ink along and across it.
#pragma once

#include "ink/run_morphology.h"

namespace cleaning {

enum class LineDirection { kHorizontal, kVertical };

constexpr ink::Along along(LineDirection lines) {
    return lines == LineDirection::kHorizontal ? ink::Along::kRows : ink::Along::kColumns;
}

constexpr ink::Along across(LineDirection lines) {
    return lines == LineDirection::kHorizontal ? ink::Along::kColumns : ink::Along::kRows;
}

}  // namespace cleaning
