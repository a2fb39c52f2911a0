// Uses the interfaces in today's C++ of every area. scripts/compiler_test compiles it together with
// all public headers.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <shared_mutex>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

#include "QBLCore/Exceptions/QBLAssertError.hpp"
#include "QBLCore/Exceptions/QBLRuntimeError.hpp"
#include "QBLCore/Exceptions/QBLStdBridge.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/QBLWhat.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/FileManagement/QBLFmEntries.hpp"
#include "QBLCore/FileManagement/QBLFmLines.hpp"
#include "QBLCore/FileManagement/QBLFmReplaceStream.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/Messages/QBLMessage.hpp"
#include "QBLCore/ThreadPools/QBLSubmit.hpp"
#include "QBLCore/ThreadPools/QBLTaskGroup.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolFixed.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"
#include "QBLCore/Threads/QBLCallableThread.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"
#include "QBLCore/Threads/QBLThreadRWLock.hpp"
#include "QBLCore/Types/QBLVariantValues.hpp"
#include "i18n/cpp/i18n_init.h"
#include "i18n/cpp/i18n_literals.hpp"
#include "i18n/cpp/i18n_pooledstring.hpp"

namespace {

struct OwnError : QBLRuntimeError {
    using QBLRuntimeError::QBLRuntimeError;
    QBL_EXCEPTION_METHODS(OwnError)
};

const char* g_failed = nullptr;
void expect(bool holds, const char* what) {
    if (!holds && g_failed == nullptr) g_failed = what;
}

void errors() {
    const std::string place = "(" + std::to_string(__LINE__ + 3) + "): ";
    try {
        try {
            QBL_THROW(OwnError{7,  // clang would report the line of the closing parenthesis
                               "seven"});
        } catch (...) {
            qblToStd();
        }
    } catch (const std::runtime_error& error) {
        expect(std::strstr(error.what(), "seven") != nullptr, "qblToStd");
        try {
            qblFromStd();
        } catch (const OwnError& back) {
            expect(qblWhat(back) == "seven", "qblFromStd");
            expect(qblXml(back).find(place) != std::string::npos, "line of QBL_THROW");
        }
    }
    try {
        QBL_ASSERT(std::max(1, 2) == 1);
    } catch (const QBLAssertError&) {
        expect(qblWhat().find("std::max(1, 2) == 1") != std::string::npos, "QBL_ASSERT");
    }
}

void threads() {
    using namespace std::chrono_literals;
    QBLThreadMutex first;
    QBLThreadRWLock second;
    std::mutex third;
    int counter = 0;
    const auto count = [&] {
        const std::scoped_lock all(first, second, third);
        return ++counter;
    };
    QBLThreadPoolFixed pool(2);
    auto result = qblSubmitFor(pool, QBLWaitForever, count);
    QBLThreadPoolQueued queued(2, 8);
    QBLTaskGroup group(queued);
    for (int i = 0; i < 4; ++i) group.run([&count] { count(); });
    group.wait();
    QBLCallableThread thread(count);
    thread.start();
    thread.join();
    expect(result.get() >= 1 && counter == 6, "counter");
    const std::shared_lock reader(second, 50ms);
    expect(reader.owns_lock(), "std::shared_lock");
}

void texts() {
    const I18NString text = "Grüße, Welt"_i18n;
    expect(text.starts_with("Grüße"_i18n) && text == std::string_view("Grüße, Welt"), "text");
    expect(std::count(text.begin(), text.end(), L'ü') == 1, "iterators");
    expect(text.toUtf16() == u"Grüße, Welt", "UTF-16");
    std::unordered_map<I18NString, int> by_text{{text, 1}};
    std::unordered_map<I18NPooledString, int> pooled{{I18NPooledString(text), 2}};
    expect(by_text.at("Grüße, Welt"_i18n) + pooled.at(I18NPooledString(text)) == 3, "std::hash");
    QBLMessage message("absent", 1);
    message << std::string("a") << std::string_view("b") << text << 4LL << 5UL << 6.5F;
    I18NString shown;
    message.toString("en", nullptr, shown, 0);
    expect(shown.contains("6.5"_i18n), "message");
}

void values() {
    QBLList<int> list{3, 1, 2};
    list.emplace_back(4);
    const QBLList<int>::const_iterator largest = std::max_element(list.begin(), list.end());
    expect(*largest == 4 && largest != list.begin(), "QBLList");
    QBLVariant variant;
    variant.setValue(2.5);
    expect(variant.get<double>() == 2.5 && !variant.get<long>(), "QBLVariant");
}

void files() {
    std::string root;
    if (!QBLFmDir::createTempDir(nullptr, "modern", root)) return expect(false, "createTempDir");
    {
        QBLFmReplaceStream out(std::filesystem::path(root) / "lines");
        out << "eins\nzwei\n";
        expect(out.commit(), "QBLFmReplaceStream");
    }
    for (const QBLFmEntry& entry : QBLFmEntries(root)) expect(entry.getSize() == 10, "size");
    std::vector<std::string> read;
    for (const std::string_view line : QBLFmLines(root + "/lines", "UTF-8"))
        read.emplace_back(line);
    expect(read == std::vector<std::string>{"eins", "zwei"}, "QBLFmLines");
    QBLFmDir::removeFile((root + "/lines").c_str());
    expect(QBLFmDir::removeDir(root.c_str()), "removeDir");
}

}  // namespace

int main() {
    qblCoreInitialize();
    I18NInitialize();
    try {
        errors();
        threads();
        texts();
        values();
        files();
    } catch (...) {
        std::puts(qblWhat().c_str());
        g_failed = "an exception";
    }
    std::printf("%ld: %s\n", __cplusplus, g_failed == nullptr ? "works" : g_failed);
    I18NTerminate();
    return qblCoreTerminate() != 0 || g_failed != nullptr;
}
