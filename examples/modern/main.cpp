// sums FOLDER: adds up the amounts of all files NAME.ENCODING.csv in a tree, by key, with one
// thread per processor. A line is KEY;AMOUNT. Problems are reported in the user's language; all
// other lines count. Exit status: 0 if there was no problem, 1 if there was one.
#include <algorithm>
#include <charconv>
#include <filesystem>
#include <iostream>
#include <map>
#include <mutex>
#include <string>
#include <thread>

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Exceptions/QBLWhat.hpp"
#include "QBLCore/FileManagement/QBLFmEntries.hpp"
#include "QBLCore/FileManagement/QBLFmLines.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/Messages/QBLMessageText.hpp"
#include "QBLCore/Resources/QBLCatalogueSettings.hpp"
#include "QBLCore/ThreadPools/QBLTaskGroup.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"
#include "i18n/cpp/i18n_init.h"
#include "sumsmsgs.hpp"

namespace {

struct Totals {
    std::mutex lock;
    std::map<std::string, double> sums;
    int files = 0, problems = 0;

    void report(const QBLTypedMessage& problem) {
        const std::lock_guard guard(lock);
        ++problems;
        std::cerr << problem << '\n';
    }
};

void addFile(const std::filesystem::path& path, Totals& totals) {
    std::map<std::string, double> sums;
    try {
        const std::string encoding = path.stem().extension().string();
        QBLFmLines lines(path, encoding.empty() ? nullptr : encoding.c_str() + 1);
        for (const std::string_view line : lines) {
            const auto semicolon = line.find(';');
            const std::string_view text = line.substr(std::min(semicolon, line.size() - 1) + 1);
            double amount = 0;
            const auto [end, error] =
                std::from_chars(text.data(), text.data() + text.size(), amount);
            if (semicolon == line.npos || text.empty())
                totals.report(sumsmsgs::noAmount(path.native(), lines.getLineNumber(), line));
            else if (error != std::errc() || end != text.data() + text.size())
                totals.report(sumsmsgs::badAmount(path.native(), lines.getLineNumber(), text));
            else
                sums[std::string(line.substr(0, semicolon))] += amount;
        }
    } catch (const QBLThrowable& error) {
        totals.report(sumsmsgs::notRead(qblWhat(error)));
    }
    const std::lock_guard guard(totals.lock);
    ++totals.files;
    for (const auto& [key, sum] : sums) totals.sums[key] += sum;
}

int addTree(const char* folder) {
    QBLCatalogueSettings::useLocalesOfUser();
    Totals totals;
    QBLThreadPoolQueued pool(std::thread::hardware_concurrency(), 100, 1);
    QBLTaskGroup group(pool);
    for (const QBLFmEntry& entry : QBLFmEntries(folder, QBLFmEntries::kRecursive)) {
        const std::filesystem::path path = entry.getPath();
        if (entry.isFile() && path.extension() == ".csv")
            group.run([path, &totals] { addFile(path, totals); });
    }
    group.wait();
    for (const auto& [key, sum] : totals.sums) std::cout << key << ' ' << sum << '\n';
    std::cout << sumsmsgs::filesDone(totals.files, totals.problems) << '\n';
    return totals.problems == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    int status = 1;
    if (qblCoreInitialize() == 0) {
        I18NInitialize();
        try {
            status = addTree(argc == 2 ? argv[1] : ".");
        } catch (const QBLThrowable& error) {
            std::cerr << qblWhat(error) << '\n';
        }
        I18NTerminate();
    }
    qblCoreTerminate();
    return status;
}
