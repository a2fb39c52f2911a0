#include "i18n/cpp/i18n_init.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <functional>

#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_internal_resources.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "tests/faults/Injector.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/Workers.hpp"

namespace {

/// Runs a body in a child process whose bin directory contains the shipped files.
int withShippedFiles(const std::function<bool()>& body) {
    return inChild([&] {
        setenv("TAV_EXEC_PATH", QBL_RES_DIR, 1);
        return body() && !testing::Test::HasFailure() ? 0 : 1;
    });
}

bool isStarted() {
    const bool loaded =
        I18NInternalResources::getInternalResources().getJaSubstitution(0x301C) == 0xFF5E;
    EXPECT_EQ(loaded, I18NConverter::isInitialized());
    return loaded;
}

}  // namespace

TEST(I18NInitTest, StopsAtTheLastTerminate) {
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

TEST(I18NInitTest, FailedStartLeavesItStopped) {
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
                  return failed > 4;  // a failed start may leave data of ICU loaded
              }));
}

TEST(I18NInitTest, ThreadsStartAndStopWhileOthersConvert) {
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

TEST(I18NInitTest, FirstUseOfICUWithoutMemoryThrowsOutOfMemoryError) {
    void (*const bodies[])() = {
        [] { I18NLocale(); }, [] { I18NString(L"e\u0301"); },
        [] { I18NConverter::shouldUseBOM("UTF-16"); },
        [] { I18NConverter("KOI8-R").setBuiltInUnconvertibleInputSequenceCallback(I18N_LOOKUP); }};
    // Each child process has not used ICU before. It returns 0 if the allocation number n did not
    // take place.
    for (const auto body : bodies)
        for (long n = 0, outcome = 1; n < 500 && outcome != 0; ++n) {
            outcome = inChild([=] {
                alarm(20);
                fault::failAllocation(n);
                try {
                    body();
                } catch (const QBLOutOfMemoryError&) {
                } catch (...) {
                    return 2;
                }
                return fault::allocationFailed() ? 1 : 0;
            });
            ASSERT_TRUE(outcome == 0 || outcome == 1) << outcome << " at " << n;
        }
}
