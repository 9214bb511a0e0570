// The public headers compile as C++ too, and what a C file calls is what a C++ file calls.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "vemoprepro/prepro.h"

extern "C" const char* version_through_c(void);

TEST(Headers, VersionTexts) {
    EXPECT_STREQ(version_through_c(), "version of library: 16.5.1.12");
    EXPECT_EQ(prepro_get_version_number(),
              "version of library: " + std::to_string(VEMOPREPRO_VERSION_MAJOR) + '.' +
                  std::to_string(VEMOPREPRO_VERSION_MINOR) + '.' +
                  std::to_string(VEMOPREPRO_VERSION_PATCH) + '.' +
                  std::to_string(VEMOPREPRO_VERSION_TWEAK));
    EXPECT_STREQ(prepro_get_branch_name(), "git branch: 16.5.1.xx");
    ASSERT_EQ(std::strlen(prepro_get_sha()), 49U);
    EXPECT_EQ(std::strspn(prepro_get_sha() + 9, "0123456789abcdef"), 40U);
    EXPECT_EQ(std::strncmp(prepro_get_sha(), "git sha: ", 9), 0);
}
