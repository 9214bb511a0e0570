// The one place where an exception of this folder becomes a status: operations whose result is
// fixed as 0 or -1, with a record in the error log.
#pragma once

#include <cstdint>
#include <new>

#include "diag/logger.h"

namespace ink {

// Runs the operation and returns 0; -1 with a record of the code when it throws std::bad_alloc.
template <class Operation>
std::int32_t logged_status(diag::LoggerSlot logger, std::uint32_t code, Operation operation) {
    try {
        operation();
        return 0;
    } catch (const std::bad_alloc&) {
        diag::report(logger, diag::kOwner, diag::kErrorLevel, code, diag::kNoMemoryText);
        return -1;
    }
}

}  // namespace ink
