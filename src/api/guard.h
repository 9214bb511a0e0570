// The one place where exceptions end: nothing that is thrown inside the library crosses the C
// boundary.
#pragma once

#include <exception>

#include "api/callbacks.h"

namespace api {

constexpr int kSuccess = 0;
constexpr int kFailure = -1;
constexpr int kBadStride = -2;  // the bitonal deskew rotations only

// Runs `call` and returns its result, or kFailure for anything thrown.
template <class Call>
int guarded(Call&& call) noexcept {
    try {
        return call();
    } catch (...) {
        return kFailure;
    }
}

}  // namespace api
