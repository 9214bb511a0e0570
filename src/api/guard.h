// The one place where exceptions end: nothing that is thrown inside the library crosses the C
// boundary.
#pragma once

#include <exception>

#include "api/callbacks.h"

namespace api {

constexpr int kSuccess = 0;
constexpr int kFailure = -1;
constexpr int kBadStride = -2;  // the bitonal deskew rotations only

// Runs `call` and returns its result, or `on_exception` for anything thrown.
template <class Call, class Result = int>
Result guarded(Call&& call, Result on_exception = kFailure) noexcept {
    try {
        return call();
    } catch (...) {
        return on_exception;
    }
}

}  // namespace api
