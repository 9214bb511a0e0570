// Counts the log records of failed allocations, without memory of its own.
#pragma once

#include <cstdint>
#include <cstring>

#include "diag/logger.h"

namespace support {

struct RecordCounter : diag::Logger {
    explicit RecordCounter(std::uint32_t code) : expected_code(code) {}

    std::int32_t log(std::uint32_t owner, std::int32_t at, std::uint32_t code,
                     const char* text) override {
        const bool expected = owner == 0x1AA0 && at == 192 && code == expected_code &&
                              std::strcmp(text, "Cannot allocate memory.") == 0;
        ++(expected ? matching : others);
        return 0;
    }

    std::uint32_t expected_code;
    int matching = 0;
    int others = 0;
};

}  // namespace support
