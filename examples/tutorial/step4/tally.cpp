// tally4 DIRECTORY [FILE]: as tally3; with FILE, writes the table there until it is killed.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <list>
#include <string>
#include <vector>

#include "../step2/Errors.hpp"
#include "../step2/Reading.hpp"
#include "../step3/Formats.hpp"
#include "QBLCore/Exceptions/QBLDeferredThrowable.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/FileManagement/QBLFmReplaceFile.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/ThreadPools/QBLTaskGroup.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"
#include "i18n/cpp/i18n_init.h"

namespace {

struct Text {
    std::string path, encoding, type;
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
        const std::string rest = name.substr(name.find('.') + 1);
        const std::size_t dot = std::min(rest.find('.'), rest.size());
        texts.push_back({path, rest.substr(0, dot), rest.substr(dot)});
    }
    return texts;
}

void count(Text& text, Formats& formats) try {
    const I18NString content = readText(text.path, text.encoding);
    text.characters = content.length();
    if (!text.type.empty())
        text.lines = formats.countLines(text.type.substr(1), content);
    else
        for (int at = content.find(L'\n'); at >= 0; at = content.find(L'\n', at + 1)) ++text.lines;
} catch (QBLThrowable& error) {
    text.error.set(error);
}

std::string row(int lines, int characters, const std::string& name) {
    char figures[32];
    std::snprintf(figures, sizeof figures, "%5d %5d  ", lines, characters);
    return figures + name + "\n";
}

/// @param status  becomes 1 if a text cannot be counted
std::string tally(const std::string& directory, Formats& formats, int& status) {
    std::vector<Text> texts = listTexts(directory);
    QBLThreadPoolQueued pool(4, 0);
    QBLTaskGroup group(pool);
    for (Text& text : texts) group.run([&] { count(text, formats); });
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

/// Readers of the file see the complete old table or the complete new one, also after a crash.
void replace(const char* path, const std::string& table) {
    QBLFmReplaceFile file;
    if (!file.open(path) || !file.write(table.data(), table.size()) || !file.commit())
        fail(message(TALLY_UNWRITABLE) << path << file.getLastErrorMessage());
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || qblCoreInitialize() != 0) return 2;
    I18NInitialize();
    // The library looks for the catalogue and plug-ins in the directory of the program.
    std::error_code unknown;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", unknown);
    QBLFmDir::setEffectiveWorkingDir(program.parent_path().c_str());
    int status = 0;
    try {
        Formats formats;
        if (argc > 2)
            for (;;) replace(argv[2], tally(argv[1], formats, status));
        std::fputs(tally(argv[1], formats, status).c_str(), stdout);
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
