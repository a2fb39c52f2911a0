// tally2 DIRECTORY: as tally1, but reports the texts that it cannot read, in the user's language,
// and counts the others.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <list>
#include <string>
#include <vector>

#include "Errors.hpp"
#include "QBLCore/Exceptions/QBLDeferredThrowable.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/ThreadPools/QBLTaskGroup.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"
#include "Reading.hpp"
#include "i18n/cpp/i18n_init.h"

namespace {

struct Text {
    std::string path, encoding;
    int lines = 0;
    int characters = 0;
    QBLDeferredThrowable error{};
};

std::vector<Text> listTexts(const std::string& directory) {
    std::list<std::string> names;
    if (!QBLFmDir::readDir(directory.c_str(), &names, nullptr, nullptr, nullptr))
        fail(message(TALLY_UNREADABLE) << directory.c_str() << std::strerror(errno));
    std::vector<Text> texts;
    for (const std::string& name : names) {
        if (name[0] == '.') continue;
        std::string path = directory;
        QBLFmDir::joinPath(path, name.c_str());
        texts.push_back({path, name.substr(name.find('.') + 1)});
    }
    return texts;
}

void count(Text& text) try {
    const I18NString content = readText(text.path, text.encoding);
    text.characters = content.length();
    for (int at = content.find(L'\n'); at >= 0; at = content.find(L'\n', at + 1)) ++text.lines;
} catch (QBLThrowable& error) {
    text.error.set(error);
}

std::string row(int lines, int characters, const std::string& name) {
    char figures[32];
    std::snprintf(figures, sizeof figures, "%5d %5d  ", lines, characters);
    return figures + name + "\n";
}

/// @param status  becomes 1 if a text cannot be read
std::string tally(const std::string& directory, int& status) {
    std::vector<Text> texts = listTexts(directory);
    QBLThreadPoolQueued pool(4, 0);
    QBLTaskGroup group(pool);
    for (Text& text : texts) group.run([&text] { count(text); });
    group.wait();
    std::string table;
    int lines = 0, characters = 0;
    for (Text& text : texts) {
        try {
            text.error.check(QBL_HERE, "tally", "QBL_THROW");
            table += row(text.lines, text.characters, text.path);
            lines += text.lines;
            characters += text.characters;
        } catch (QBLException& error) {
            report(error);
            status = 1;
        }
    }
    return table + row(lines, characters, "total");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2 || qblCoreInitialize() != 0) return 2;
    I18NInitialize();
    // The library looks for the catalogue in the directory of the program.
    std::error_code unknown;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", unknown);
    QBLFmDir::setEffectiveWorkingDir(program.parent_path().c_str());
    int status = 0;
    try {
        std::fputs(tally(argv[1], status).c_str(), stdout);
    } catch (QBLException& error) {
        report(error);
        status = 1;
    } catch (QBLThrowable& error) {
        std::fprintf(stderr, "%s\n", error.toString());
        status = 1;
    }
    I18NTerminate();
    qblCoreTerminate();
    return status;
}
