// Strings, converters, messages, errors, files and plug-ins.
#include <memory>
#include <string>

#include "QBLCore/Exceptions/QBLRuntimeError.hpp"
#include "QBLCore/FileLock/QBLFileLockRW.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/FileManagement/QBLFmEntries.hpp"
#include "QBLCore/FileManagement/QBLFmFile.hpp"
#include "QBLCore/FileManagement/QBLFmReplaceFile.hpp"
#include "QBLCore/Messages/QBLMessage.hpp"
#include "QBLCore/PlugIns/QBLPlugin.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"
#include "examples/plugin/Faults.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_pooledstring.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "tests/soak/Soak.hpp"
#include "tests/support/BmfFile.hpp"

namespace soak {
namespace {

const char* const kEncodings[] = {"UTF-8",       "UTF-16LE", "Shift_JIS", "EUC-JP",
                                  "ISO-2022-JP", "GB18030",  "UTF-7",     "UTF-32BE"};
const char kText[] = "Text \u65E5\u672C\u8A9E, \u3053\u3093\u306B\u3061\u306F";
const struct {
    const char *locale, *suffix, *pattern, *shown;
} kLanguages[] = {
    {"en", "_en", "{0} of {1,number} files", "x of 12,345 files"},
    {"de", "_de", "{0} von {1,number} Dateien", "x von 12.345 Dateien"},
    {"fr", "_fr", "{0} sur {1,number} fichiers", "x sur 12\u202F345 fichiers"},
    {"ja", "_ja", "{1,number} \u500B\u4E2D {0}", "12,345 \u500B\u4E2D x"},
};

struct Shared {
    I18NString text{std::string(kText)};
    std::string catalogue = directory() + "/texts";
    QBLThreadMutex pluginLock;
};
std::unique_ptr<Shared> g_all;

std::string numbered(Random& random) { return "text " + std::to_string(random.below(500)); }

/// Writes a file that other threads may be reading, so that they see all of it or the old one.
void put(const std::string& path, const std::string& bytes) {
    QBLFmReplaceFile file;
    need(file.open(path.c_str()) && file.write(bytes.data(), bytes.size()) && file.commit(),
         "a file cannot be replaced");
}

void strings(Random& random) {
    const char* const encoding = random.of(kEncodings);
    int length = 0;
    const char* const bytes = g_all->text.c_str(encoding, &length);
    I18NString copy;
    const I18NConverter converter(encoding);
    converter.toUnicode(copy, bytes, length - converter.sizeofLegacyNull());
    need(copy == g_all->text, "a shared string changes");
    copy = g_all->text;
    copy.append(kText);
    need(copy.length() == 2 * g_all->text.length(), "a copy changes");
}

void pooledStrings(Random& random) {
    const std::string text = numbered(random);
    const I18NPooledString one(text.c_str());
    I18NPooledString other(numbered(random).c_str());
    if (random.below(10) == 0) I18NPooledString::purge();
    other = one;
    need(other == one && one.getString().toUtf8() == text, "a pooled text changes");
    need(&one.getString() == &I18NPooledString(text.c_str()).getString(),
         "a pool has a text twice");
}

void messages(Random& random) {
    const auto& language = random.of(kLanguages);
    if (random.below(10) == 0)
        put(g_all->catalogue + language.suffix + ".bmf", bmfBytes({{1, language.pattern}}));
    QBLMessage message(g_all->catalogue.c_str(), 1);
    message << "x" << 12345;
    I18NString text;
    message.format(language.locale, nullptr, text);
    need(text.toUtf8() == language.shown, "a message has another text");
}

void files(Random& random) {
    std::string path, folder;
    need(QBLFmDir::createTempDir(directory().c_str(), "d", folder, nullptr) &&
             QBLFmDir::createTempFile(folder.c_str(), "f", path, ".x"),
         "no temporary file");
    const std::string text(random.below(10000), 'x');
    put(path, text);
    {
        QBLFmFile file;
        need(file.open(path.c_str(), QBLFmFile::existing, 0), "a file does not open");
        QBLFileLockRW lock(file);
        need(lock.boundedLock(1000), "a file is locked");
        std::string read(text.size() + 1, '\0');
        need(file.read(&read[0], read.size()) == static_cast<long>(text.size()), "a file is short");
        lock.unlock();
        need(random.below(2) == 0 || file.close(), "a file does not close");
    }
    int entries = 0;
    for (const QBLFmEntry& entry : QBLFmEntries(folder)) entries += entry.getErrorNumber() == 0;
    need(entries == 1, "a folder has other entries");
    need(QBLFmDir::removeDir(folder.c_str()), "a folder stays");
}

void plugIns(Random& /*random*/) {
    const QBLPlugin plugin(PLUGIN_FILE);
    const QBLThreadGuard guard(g_all->pluginLock);  // for the data of the plug-in
    plugin.entry<void()>("faultsInitialize")();
    try {
        plugin.entry<void(PluginFault)>("faultsThrow")(kQBLRuntimeError);
        need(false, "an error of a plug-in is lost");
    } catch (const QBLRuntimeError&) {
    }
}

}  // namespace

const std::vector<Job> kTextJobs{
    {"pooled strings", kAlone, pooledStrings},
    {"files", kAlone, files},
    {"strings", kShared, strings},
    {"messages", kShared, messages},
    {"plug-ins", kShared, plugIns},
};

void makeSharedTexts() {
    g_all = std::make_unique<Shared>();
    for (const auto& language : kLanguages)
        put(g_all->catalogue + language.suffix + ".bmf", bmfBytes({{1, language.pattern}}));
}
void dropSharedTexts() { g_all.reset(); }

}  // namespace soak
