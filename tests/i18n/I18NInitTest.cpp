#include "i18n/cpp/i18n_init.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <functional>

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_internal_resources.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/FaultInjection.hpp"
#include "tests/support/Workers.hpp"

namespace {

/// Runs a body in a process whose bin directory has the shipped files.
int withShippedFiles(const std::function<bool()>& body) {
    return inChild([&] {
        setenv("TAV_EXEC_PATH", QBL_RES_DIR, 1);
        return body() && !testing::Test::HasFailure() ? 0 : 1;
    });
}

bool isStarted() {
    const bool loaded =
        I18NInternalResources::getInternalResForTesting().getJaSubstitution(0x301C) == 0xFF5E;
    EXPECT_EQ(loaded, I18NConverter::isInitialized());
    return loaded;
}

}  // namespace

TEST(I18NInitTest, TheLastStopOfAsManyStopsIt) {
    EXPECT_EQ(0, withShippedFiles([] {
                  I18NTerminate();
                  for (int round = 0; round < 2; ++round) {
                      I18NInitialize();
                      I18NInitialize();
                      I18NTerminate();
                      EXPECT_TRUE(isStarted());
                      I18NTerminate();
                      EXPECT_FALSE(isStarted());
                      I18NTerminate();
                  }
                  return true;
              }));
}

TEST(I18NInitTest, AFailedStartIsAsGoodAsNone) {
    EXPECT_EQ(0, withShippedFiles([] {
                  const long failed = fault::eachAllocation([] {
                      try {
                          I18NInitialize();
                          EXPECT_TRUE(isStarted());
                          I18NTerminate();
                      } catch (const QBLThrowable& error) {
                          EXPECT_STREQ("QBLOutOfMemoryError", error.getThrowableName());
                          EXPECT_FALSE(isStarted());
                      }
                  });
                  EXPECT_FALSE(isStarted());
                  return failed > 10;
              }));
}

TEST(I18NInitTest, StartsAndStopsOfThreadsTakeTurnsWhileOthersConvert) {
    EXPECT_EQ(0, withShippedFiles([] {
                  std::atomic<bool> done{false};
                  Workers users(1, [&done] {
                      while (!done) {
                          I18NConverter ascii("US-ASCII");
                          ascii.setBuiltInUnconvertibleOutputSequenceCallback(I18N_LOOKUP);
                          EXPECT_STREQ("\u00E9", I18NString(L"e\u0301").c_str());
                          I18NString(L"\u20AC").c_str(ascii);
                      }
                  });
                  Workers(4, [] {
                      for (int i = 0; i < 20; ++i) {
                          I18NInitialize();
                          EXPECT_TRUE(isStarted());
                          I18NTerminate();
                      }
                  }).join();
                  done = true;
                  users.join();
                  return !isStarted();
              }));
}
