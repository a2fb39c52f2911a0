// tally1 DIRECTORY: counts the lines and characters of the texts in a directory. A text's file is
// called NAME.ENCODING.
#include <cerrno>
#include <cstdio>
#include <list>
#include <string>
#include <vector>

#include "QBLCore/Exceptions/QBLSystemError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/FileManagement/QBLFmFile.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/ThreadPools/QBLTaskGroup.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"
#include "i18n/cpp/i18n_init.h"
#include "i18n/cpp/i18n_string.hpp"

namespace {

struct Text {
    std::string path, encoding;
    int lines = 0;
    int characters = 0;
};

std::vector<Text> listTexts(const std::string& directory) {
    std::list<std::string> names;
    if (!QBLFmDir::readDir(directory.c_str(), &names, nullptr, nullptr, nullptr))
        QBL_THROW(QBLSystemError(errno, directory.c_str()));
    std::vector<Text> texts;
    for (const std::string& name : names) {
        if (name[0] == '.') continue;
        std::string path = directory;
        QBLFmDir::joinPath(path, name.c_str());
        texts.push_back({path, name.substr(name.find('.') + 1)});
    }
    return texts;
}

I18NString readText(const std::string& path, const std::string& encoding) {
    QBLFmFile file;
    std::string bytes;
    char block[4096];
    long size = -1;
    if (file.open(path.c_str(), QBLFmFile::existing, 1))
        while ((size = file.read(block, sizeof block)) > 0)
            bytes.append(block, static_cast<std::size_t>(size));
    if (size < 0) QBL_THROW(QBLSystemError(file.getLastErrorNumber(), path.c_str()));
    return I18NString(bytes.data(), encoding.c_str(), static_cast<int>(bytes.size()));
}

void count(Text& text) {
    const I18NString content = readText(text.path, text.encoding);
    text.characters = content.length();
    for (int at = content.find(L'\n'); at >= 0; at = content.find(L'\n', at + 1)) ++text.lines;
}

std::string row(int lines, int characters, const std::string& name) {
    char figures[32];
    std::snprintf(figures, sizeof figures, "%5d %5d  ", lines, characters);
    return figures + name + "\n";
}

std::string tally(const std::string& directory) {
    std::vector<Text> texts = listTexts(directory);
    QBLThreadPoolQueued pool(4, 0);
    QBLTaskGroup group(pool);
    for (Text& text : texts) group.run([&text] { count(text); });
    group.wait();
    std::string table;
    int lines = 0, characters = 0;
    for (const Text& text : texts) {
        table += row(text.lines, text.characters, text.path);
        lines += text.lines;
        characters += text.characters;
    }
    return table + row(lines, characters, "total");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2 || qblCoreInitialize() != 0) return 2;
    I18NInitialize();
    int status = 0;
    try {
        std::fputs(tally(argv[1]).c_str(), stdout);
    } catch (QBLThrowable& error) {
        std::fprintf(stderr, "%s\n", error.toString());
        status = 1;
    }
    I18NTerminate();
    qblCoreTerminate();
    return status;
}
