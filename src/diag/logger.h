// The error log: records of an owner, a level, a code and a text, sent to a Logger that an
// embedding supplies.
//
// Use: operations take a LoggerSlot and call report(slot, kOwner, kErrorLevel, code[, text]) where
// they fail. A null slot logs nothing; the exported functions pass null.
//
// Keep true: the slot outlives the operation; the library never frees a Logger. A Logger that
// several threads report to is safe for concurrent log() calls by itself.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace diag {

constexpr std::int32_t kTraceLevel = 120;
constexpr std::int32_t kInfoLevel = 160;
constexpr std::int32_t kWarningLevel = 180;
constexpr std::int32_t kErrorLevel = 192;

// Loggers at or below this level receive the text wrapped in a tag.
constexpr std::int32_t kTaggedUpToLevel = 140;

constexpr std::uint32_t kOwner = 0x1AA0;         // every record of this library
constexpr std::uint32_t kUnknownOwner = 0x1800;  // stands in for owner 0

// Codes of the records. Steps throw when they fail, so nothing reports the last two yet.
constexpr std::uint32_t kGaveUpCode = 16;       // a function gives up after a failed allocation
constexpr std::uint32_t kNoMemoryCode = 34;     // a working buffer could not be allocated
constexpr std::uint32_t kListGrowthCode = 145;  // a run or component list could not grow
constexpr std::uint32_t kStepFailedCode = 9;    // a step called by the function returned an error
constexpr std::uint32_t kSubstepFailedCode = 257;  // and so did a step of a step

constexpr char kDefaultText[] = "DEFAULT_ERROR_MSG";
constexpr char kNoMemoryText[] = "Cannot allocate memory.";

class Logger {
  public:
    std::int32_t level = kErrorLevel;  // records below it are dropped
    std::int32_t active = 1;           // records are sent only while this is above 0

    // log() is the fifth entry of the virtual table: the destructor takes two, these two the next.
    // The library calls none of the four.
    virtual ~Logger() = default;
    virtual std::int32_t start() { return 0; }
    virtual std::int32_t stop() { return 0; }

    // Takes one record and returns a status of the logger's own, which report() passes back. `text`
    // ends with a NUL and is valid during the call only.
    virtual std::int32_t log(std::uint32_t owner, std::int32_t level, std::uint32_t code,
                             const char* text) = 0;
};

// The holder of a Logger pointer, so that a logger can be installed or replaced later; null for
// none.
using LoggerSlot = Logger* const*;

// Sends one record. Returns the logger's status, 0 when nothing was sent, -1 when anything was
// thrown on the way: reporting never fails its caller.
std::int32_t report(LoggerSlot slot, std::uint32_t owner, std::int32_t level, std::uint32_t code,
                    const char* text = kDefaultText);

// The text inside the tag of its level; unchanged for a level that has none.
std::string format(std::int32_t level, std::uint32_t owner, std::uint32_t code,
                   std::string_view text);

}  // namespace diag
