// Progress reports of the deskew rotations.
//
// Use: Progress progress{callback}; progress(done, total) before and after each step that the
// exported function documents. A null callback is silent.
//
// Keep true: reports are made on the thread of the call.
#pragma once

#include <cstdint>

#include "common/callbacks.h"

namespace deskew {

struct Progress {
    common::ProgressCallback callback = nullptr;

    // Both counts in the steps of the reporting function; they fit 32 bits for every page that can
    // be addressed.
    void operator()(std::int64_t done, std::int64_t total) const {
        if (callback != nullptr) {
            callback(static_cast<unsigned>(done), static_cast<unsigned>(total));
        }
    }
};

}  // namespace deskew
