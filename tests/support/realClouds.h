#pragma once

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string_view>

namespace Zamt::Testing {

/// Whether nobody looks at which tests were skipped, as the variable CI says.
inline bool inContinuousIntegration() {
  const char* const value = std::getenv("CI");
  return value != nullptr && *value != '\0' && std::string_view(value) != "false";
}

/// Skips a test when the folder with the real clouds is absent. Where nobody would notice, that is a failure.
#define REQUIRE_REAL_CLOUDS()                                                                                \
  if (!std::filesystem::exists(QUINDLE_TEST_DATA)) {                                                         \
    if (Zamt::Testing::inContinuousIntegration())                                                            \
      FAIL() << "There are no real clouds at " << QUINDLE_TEST_DATA                                          \
             << ", and CI is set, so this test fails instead of being skipped. Put the folder there, or "    \
                "configure with -DQUINDLE_TEST_DATA=FOLDER.";                                                \
    GTEST_SKIP() << "There are no real clouds at " << QUINDLE_TEST_DATA << ".";                              \
  }                                                                                                          \
  static_assert(true)

} // namespace Zamt::Testing
