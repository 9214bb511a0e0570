#include "diag/logger.h"

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>

#include "support/punctuating_locale.h"

namespace {

class RecordingLogger : public diag::Logger {
  public:
    std::int32_t log(std::uint32_t owner, std::int32_t record_level, std::uint32_t code,
                     const char* text) override {
        if (out_of_memory) throw std::bad_alloc();
        ++records;
        last_owner = owner;
        last_level = record_level;
        last_code = code;
        last_text = text;
        return 77;
    }

    bool out_of_memory = false;
    int records = 0;
    std::uint32_t last_owner = 0;
    std::int32_t last_level = 0;
    std::uint32_t last_code = 0;
    std::string last_text;
};

class Report : public ::testing::Test {
  protected:
    RecordingLogger recording;
    diag::Logger* installed = &recording;
    diag::LoggerSlot slot = &installed;
};

TEST_F(Report, SendsOnlyWhatTheLoggerWants) {
    EXPECT_EQ(diag::report(nullptr, diag::kOwner, diag::kErrorLevel, 16), 0);
    diag::Logger* none = nullptr;
    EXPECT_EQ(diag::report(&none, diag::kOwner, diag::kErrorLevel, 16), 0);
    recording.level = 193;
    EXPECT_EQ(diag::report(slot, diag::kOwner, diag::kErrorLevel, 16), 0);
    recording.level = 192;
    recording.active = 0;
    EXPECT_EQ(diag::report(slot, diag::kOwner, diag::kErrorLevel, 16), 0);
    EXPECT_EQ(recording.records, 0);
    recording.active = 1;
    EXPECT_EQ(diag::report(slot, diag::kOwner, diag::kErrorLevel, 16), 77);
    EXPECT_EQ(recording.records, 1);
    recording.out_of_memory = true;
    EXPECT_EQ(diag::report(slot, diag::kOwner, diag::kErrorLevel, 16), -1);
}

TEST_F(Report, TagsTheTextOfAVerboseLogger) {
    struct Case {
        std::int32_t logger_level, level;
        std::uint32_t owner, code;
        const char* text;
    };
    const Case cases[] = {
        {120, 192, 0x1AA0, 16, "<ERROR OWNER=\"0x1aa0\" CODE=\"0x10\">DEFAULT_ERROR_MSG</ERROR>\n"},
        {140, 192, 0, 0, "<ERROR OWNER=\"0x1800\" CODE=\"0\">DEFAULT_ERROR_MSG</ERROR>\n"},
        {120, 180, 1, 1, "<WARNING>DEFAULT_ERROR_MSG</WARNING>\n"},
        {120, 160, 1, 1, "<INFO>DEFAULT_ERROR_MSG</INFO>\n"},
        {120, 120, 1, 1, "<TRACE>DEFAULT_ERROR_MSG</TRACE>\n"},
        {120, 170, 1, 1, "DEFAULT_ERROR_MSG"},
        {141, 192, 0x1AA0, 16, "DEFAULT_ERROR_MSG"},
    };
    for (const Case& c : cases) {
        recording.level = c.logger_level;
        EXPECT_EQ(diag::report(slot, c.owner, c.level, c.code), 77);
        EXPECT_EQ(recording.last_text, c.text);
        EXPECT_EQ(recording.last_owner, c.owner == 0 ? 0x1800U : c.owner);
        EXPECT_EQ(recording.last_level, c.level);
    }
}

TEST_F(Report, TheHostsLocaleDoesNotPunctuateNumbers) {
    const support::PunctuatingLocale host;
    EXPECT_EQ(diag::format(192, 0x1AA0, 0x12345, "x"),
              "<ERROR OWNER=\"0x1aa0\" CODE=\"0x12345\">x</ERROR>\n");
}

// Embeddings build their loggers against this position.
TEST_F(Report, LogIsTheFifthVirtualOperation) {
    using LogSlot =
        std::int32_t (*)(diag::Logger*, std::uint32_t, std::int32_t, std::uint32_t, const char*);
    void** table = nullptr;
    std::memcpy(&table, static_cast<void*>(installed), sizeof(table));
    const auto log = reinterpret_cast<LogSlot>(table[4]);
    EXPECT_EQ(log(installed, 1, 2, 3, "direct"), 77);
    EXPECT_EQ(recording.last_text, "direct");
    std::int32_t fields[2];
    std::memcpy(fields, reinterpret_cast<const char*>(installed) + sizeof(void*), sizeof(fields));
    EXPECT_EQ(fields[0], recording.level);
    EXPECT_EQ(fields[1], recording.active);
}

}  // namespace
