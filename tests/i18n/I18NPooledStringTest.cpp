#include "i18n/cpp/i18n_pooledstring.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <iomanip>
#include <random>
#include <sstream>
#include <vector>

#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/QBLCustodian/QBLCustodian.hpp"
#include "QBLCore/Threads/QBLThread.hpp"
#include "i18n/cpp/i18n_stringpool.hpp"
#include "tests/faults/Injector.hpp"
#include "tests/support/TempTree.hpp"
#include "tests/support/ThrowChecks.hpp"
#include "tests/support/Workers.hpp"

namespace {

using Pool = I18NPooledString::I18NPooledStringPool;

/// Purges the pool, expects it to be empty, and returns it.
Pool& emptyPool() {
    I18NPooledString::purge();
    EXPECT_EQ(0, I18NPooledString::getPool().count());
    return I18NPooledString::getPool();
}

std::string dumped() {
    std::ostringstream out;
    I18NPooledString::dump(out);
    return out.str();
}

std::string bucket(int number, int count, const std::string& entries) {
    std::ostringstream out;
    out << "====== begin bucket ======\n"
        << entries << "==========================\nbucket " << std::setw(4) << number
        << " contains " << count << " entries\n======= end bucket =======\n";
    return out.str();
}

/// A settings file of the pool, in the working directory.
struct Settings : WorkingTree {
    explicit Settings(const std::string& text) { change(text); }
    /// Makes the pool read the settings again.
    void change(const std::string& text) const {
        file("I18NPooledString.conf", text);
        I18NPooledString::initialize();
        I18NPooledString::terminate();
    }
    const std::string dump = "I18NPooledStringDump" + std::to_string(getpid()) + ".log";
};

std::time_t g_now = 1000;
std::time_t fakeTime(std::time_t*) { return g_now; }

}  // namespace

TEST(I18NPooledStringTest, HashesTheBytesSignExtended) {
    EXPECT_EQ(0U, Pool::hashOf(nullptr));
    EXPECT_EQ(0x2317dU, Pool::hashOf("e\xCC\x81"));
    EXPECT_EQ(0xffffffffU * 38 + 0xff - 1, Pool::hashOf("\xFF\xFF"));
}

TEST(I18NPooledStringTest, DumpsByBucketsAndPurgesUnheldTexts) {
    Pool& pool = emptyPool();
    const I18NPooledString a("a"), again("a"), empty("");
    const I18NString& unheld = pool.getString("0H");  // in the same bucket as "a"
    I18NPooledString third("1\"");                    // in the same bucket too
    EXPECT_EQ(97U, Pool::hashOf("1\"") % 257);
    EXPECT_EQ(4, pool.count());
    EXPECT_EQ(5, pool.getTotalRefCount());
    EXPECT_EQ(4 + 6 + 6, pool.size());
    for (int i = 0; i < 2; ++i) pool.releaseString(unheld);
    const std::string zero = "hashCode-> 0000000000 refCount->          1 data-> \n";
    const std::string first = "hashCode-> 0x00000061 refCount->          2 data-> a\n";
    const std::string second = "hashCode-> 0x00000768 refCount->          0 data-> 0H\n";
    const std::string last = "hashCode-> 0x00000768 refCount->          1 data-> 1\"\n";
    const std::string all = first + second + last;
    std::string expected;
    for (int i = 0; i < 257; ++i)
        expected += bucket(i, i == 0 ? 1 : i == 97 ? 3 : 0, i == 0 ? zero : i == 97 ? all : "");
    EXPECT_EQ(expected +
                  "======= begin summary =======\nTotal number of entries 4\nEntries to be deleted "
                  "1\nTotal reference count 4\n======= end summary =======\n",
              dumped());
    I18NPooledString::purge();
    EXPECT_NE(std::string::npos, dumped().find(bucket(97, 2, first + last)));
    EXPECT_EQ("1\"", third.getString());
    third = "a";
    EXPECT_EQ(&a.getString(), &third.getString());
    I18NPooledString::purge();
    EXPECT_NE(std::string::npos, dumped().find("refCount->          3 data-> a\n====="));
}

TEST(I18NPooledStringTest, FindsTextsInAnyFormAndRejectsForeignStrings) {
    Pool& pool = emptyPool();
    const std::string ascii(100, 'x');
    for (const char* text : {"e\xCC\x81", "\xC3\xA9", "\xFF", ascii.c_str()}) {
        const I18NPooledString one(text), same(text);
        EXPECT_EQ(&one.getString(), &same.getString()) << text;
        EXPECT_EQ(I18NString(text), one.getString());
    }
    EXPECT_EQ(4, pool.count());
    const I18NPooledString composed("\xC3\xA9"), decomposed("e\xCC\x81"), none;
    EXPECT_TRUE(composed == decomposed);
    EXPECT_NE(&composed.getString(), &decomposed.getString());
    EXPECT_EQ(&composed.getString(), &I18NPooledString(decomposed.getString()).getString());
    I18NString text;
    text = composed;
    text.append(none) += composed;
    EXPECT_EQ("\xC3\xA9\xC3\xA9", text);
    const char* const refused =
        "I18NPooledStringPool::releaseString: the string is not of the pool";
    QBL_EXPECT_THROW(pool.releaseString(text), QBLIllegalArgumentError, refused);
    QBL_EXPECT_THROW(pool.releaseString(none.getString()), QBLIllegalArgumentError, refused);

    I18NStringPool own(1, "ISO-8859-1");
    EXPECT_EQ(&own.getPooledString("one"), &own.getPooledString(I18NString("one")));
    EXPECT_NE(&own.getPooledString("one"), &own.getPooledString(static_cast<char*>(nullptr)));
    EXPECT_EQ(2, own.size());
}

TEST(I18NPooledStringTest, PurgesAtTheIntervalsOfTheSettingsFile) {
    const Settings tree(std::string(70, 'k') +
                        " 5\ninterval\t10 dumpToFile 9999999999 interval x interval");
    Pool& pool = emptyPool();
    I18NPooledStringCustodian task(fakeTime);
    const auto purges = [&](std::time_t time, int terminating = 0) {
        { const I18NPooledString unheld("unheld"); }
        g_now = time;
        EXPECT_EQ(0, task.doIt(terminating));
        return pool.count() == 0;
    };
    fault::strike(fault::Disaster::kDescriptors, 0);
    EXPECT_FALSE(purges(999)) << "the settings cannot be read";
    EXPECT_TRUE(fault::reset());
    EXPECT_FALSE(purges(1000)) << "the first pass only reads the settings";
    EXPECT_FALSE(purges(1010));
    EXPECT_FALSE(purges(1011, 1));
    EXPECT_TRUE(purges(1011));
    EXPECT_FALSE(purges(1021));
    EXPECT_FALSE(purges(500)) << "the clock was set back";
    EXPECT_TRUE(purges(511));
    struct stat about;
    ASSERT_EQ(0, stat(tree.dump.c_str(), &about));
    EXPECT_EQ(0600U, about.st_mode & 0777);
    const std::string both = tree.text(tree.dump);
    EXPECT_NE(both.find("begin summary"), both.rfind("begin summary"))
        << "the second dump is appended";
    ASSERT_EQ(0, unlink(tree.dump.c_str()));
    tree.change("interval -1");
    EXPECT_FALSE(purges(600));
    EXPECT_FALSE(purges(600 + 3600));
    EXPECT_TRUE(purges(600 + 3601));
}

TEST(I18NPooledStringTest, DumpsOnlyIntoAFileOfItsOwnUser) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can create files of other users";
    const Settings tree("");
    const std::string& dump = tree.dump;
    const auto dumps = [&](unsigned mode, uid_t user, const std::function<void()>& prepare) {
        tree.change("dumpToFile 1 interval 1");
        chmod("I18NPooledString.conf", mode);
        chown("I18NPooledString.conf", user, 0);
        EXPECT_EQ(0, std::system("touch -d 2040-01-01 I18NPooledString.conf"));
        prepare();
        I18NPooledStringCustodian task(fakeTime);
        testing::internal::CaptureStderr();
        task.doIt(0);
        g_now += 4000;
        task.doIt(0);
        const std::string failure = testing::internal::GetCapturedStderr();
        std::error_code none;
        const bool written = std::filesystem::file_size(dump, none) % 0x1000 > 0 && !none;
        EXPECT_TRUE(!written || failure.empty()) << failure;
        std::filesystem::remove(dump);
        return written;
    };
    const auto have = [&](unsigned mode, uid_t user) {
        return [&, mode, user] {
            chmod(tree.file(dump).c_str(), mode);
            chown(dump.c_str(), user, 0);
        };
    };
    EXPECT_TRUE(dumps(0664, 0, [] {}));
    EXPECT_FALSE(dumps(0666, 0, [] {})) << "any user could have written the settings";
    EXPECT_FALSE(dumps(0644, 1, [] {}));
    EXPECT_TRUE(dumps(0600, 0, have(0600, 0)));
    EXPECT_TRUE(dumps(0600, 0, [&] {
        have(0600, 0)();
        EXPECT_EQ(0, truncate64(dump.c_str(), 0x90000000));
    })) << "appends to a file over 2 GiB";
    EXPECT_FALSE(dumps(0600, 0, have(0644, 0)));
    EXPECT_FALSE(dumps(0600, 0, have(0600, 1)));
    EXPECT_FALSE(dumps(0600, 0, [&] {
        tree.file("other");
        chmod("other", 0600);
        EXPECT_EQ(0, link("other", dump.c_str()));
    }));
    EXPECT_FALSE(dumps(0600, 0, [&] { EXPECT_EQ(0, symlink("elsewhere", dump.c_str())); }));
    EXPECT_FALSE(std::filesystem::exists("elsewhere"));
    EXPECT_FALSE(dumps(0600, 0, [] { std::filesystem::remove("I18NPooledString.conf"); }));
}

TEST(I18NPooledStringTest, SurplusReleaseIsHarmless) {
    Pool& pool = emptyPool();
    for (const std::string& text : {std::string("x"), std::string(60, 'x')}) {
        {
            const I18NPooledString holder(text.c_str());
            pool.releaseString(holder.getString());
        }
        const I18NPooledString again(text.c_str());
        EXPECT_EQ(1, pool.count());
        EXPECT_EQ(1, pool.getTotalRefCount());
        I18NPooledString from(text.c_str()), to("held before");
        to = std::move(from);
        I18NPooledString::purge();
        EXPECT_EQ(1, pool.count()) << "a move releases the text held before";
        to = from = I18NPooledString();
        pool.releaseString(again.getString());
        pool.purge();
    }
}

TEST(I18NPooledStringTest, IsPurgedAfterTheCustodianRestarts) {
    const Settings tree("interval 0");
    Pool& pool = emptyPool();
    const unsigned long schedule = QBLCustodian::setSchedule(5);
    EXPECT_FALSE(I18NPooledString::initialize()) << "there is no custodian";
    ASSERT_EQ(0, qblCoreInitialize());
    ASSERT_EQ(0, qblCoreTerminate());
    ASSERT_EQ(0, qblCoreInitialize());
    { const I18NPooledString unheld("unheld"); }
    for (int i = 0; i < 1000 && pool.count() != 0; ++i) QBLThread::sleep(10);
    EXPECT_EQ(0, pool.count());
    QBLCustodian::setSchedule(schedule);
    ASSERT_EQ(0, qblCoreTerminate());
    I18NPooledString::terminate();
}

TEST(I18NPooledStringTest, HoldersOutliveTheLibrary) {
    Pool& pool = emptyPool();
    ASSERT_EQ(0, qblCoreInitialize());
    EXPECT_TRUE(I18NPooledString::initialize()) << "the custodian is running";
    I18NPooledString::terminate();
    I18NPooledString kept("kept"), copy;
    const I18NString& got = pool.getString("kept");
    { const I18NPooledString unheld("unheld"); }
    ASSERT_EQ(0, qblCoreTerminate());
    EXPECT_FALSE(I18NPooledString::initialize());
    I18NPooledString::terminate();
    EXPECT_EQ(0, pool.count());
    copy = kept;
    const I18NPooledString fresh("kept");
    EXPECT_NE(&fresh.getString(), &kept.getString());
    kept = nullptr;
    EXPECT_EQ("kept", copy.getString());
    copy = "";
    EXPECT_EQ("kept", got);
    pool.releaseString(got);
    EXPECT_EQ("kept", fresh.getString());
}

TEST(I18NPooledStringTest, FailedAllocationLeavesThePoolUnchanged) {
    Pool& pool = emptyPool();
    std::vector<I18NPooledString> held(5000);
    const long failures = fault::eachAllocation([&] {
        for (I18NPooledString& holder : held) holder = I18NPooledString();
        pool.purge();
        int i = 0;
        try {
            for (char text[8]; i < 5000; ++i) {
                std::snprintf(text, sizeof text, "%d", i);
                held[static_cast<std::size_t>(i)] = text;
            }
        } catch (QBLOutOfMemoryError&) {
        }
        EXPECT_EQ(i, pool.count());
        EXPECT_EQ(i, pool.getTotalRefCount());
    });
    EXPECT_LT(2, failures);
}

TEST(I18NPooledStringTest, ThreadsAcquireReleasePurgeDumpAndStop) {
    Pool& pool = emptyPool();
    std::vector<std::string> texts(300);
    for (std::size_t i = 0; i < 300; ++i)
        texts[i] = std::string(i % 7 == 0 ? 40 : 0, 'x') + (i % 5 == 0 ? "\xC3\xA9" : "") +
                   std::to_string(i);
    std::atomic<unsigned> seed{std::random_device{}()};
    Workers(8, [&] {
        std::minstd_rand random(seed++);
        std::vector<I18NPooledString> held(16);
        for (int i = 0; i < 125000; ++i) {
            const std::string& text = texts[random() % texts.size()];
            I18NPooledString& holder = held[random() % held.size()];
            holder = text.c_str();
            held[random() % held.size()] = holder;
            EXPECT_EQ(text, holder.getString().c_str());
            if (i % 16 == 0) pool.releaseString(pool.getString(text.c_str()));
            if (i % 500 == 0) pool.purge();
            if (i % 2500 == 0) dumped();
            if (i % 5000 == 0) I18NPooledString::initialize();
            if (i % 5000 == 2500) I18NPooledString::terminate();
        }
    }).join();
    EXPECT_EQ(0, pool.getTotalRefCount());
    emptyPool();
}
