#include "QBLCore/PlugIns/QBLPluginLibraryLoader.hpp"

#include <dlfcn.h>
#include <sys/stat.h>

#include <stdexcept>

#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/Messages/QBLMessageBase.hpp"
#include "QBLCore/PlugIns/QBLPluginException.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "tests/support/TempTree.hpp"
#include "tests/support/ThrowChecks.hpp"

namespace {

/// Returns code, severity, back-trace and reason of the error that an operation throws.
template <class Operation>
std::string failureOf(Operation&& operation) {
    try {
        operation();
    } catch (const QBLPluginException& error) {
        EXPECT_EQ(2U, error.getMessageCount());
        EXPECT_STREQ("QBLMessage", error.getMessageN(0)->getClassName());
        I18NString reason;
        error.getMessageN(1)->format("en", nullptr, reason);
        return std::to_string(error.getErrorCode()) + " " +
               QBLThrowable::getSeverityName(error.getSeverity()) + " " + traceOf(error) +
               reason.toUtf8();
    }
    return "nothing";
}

void throwUnchanged() { throw std::runtime_error("unchanged"); }

}  // namespace

TEST(QBLPluginLibraryLoaderTest, LoadsFromTheEffectiveWorkingDirectoryAndUnloads) {
    std::string directory, name;
    ASSERT_TRUE(QBLFmDir::splitPath(PLUGIN_FILE, &directory, &name));
    QBLFmDir::setEffectiveWorkingDir(directory.c_str());
    void* plugin = QBLPluginLibraryLoader::load(name);
    QBLFmDir::setEffectiveWorkingDir(static_cast<const char*>(nullptr));
    EXPECT_NE(nullptr, dlsym(plugin, "faultsInitialize"));
    QBLPluginLibraryLoader::initialize(plugin, nullptr);
    EXPECT_THROW(QBLPluginLibraryLoader::initialize(plugin, &throwUnchanged), std::runtime_error);
    EXPECT_THROW(QBLPluginLibraryLoader::terminate(plugin, &throwUnchanged), std::runtime_error);
    QBLPluginLibraryLoader::unload(plugin);
    EXPECT_EQ(nullptr, dlopen(PLUGIN_FILE, RTLD_LAZY | RTLD_NOLOAD));
}

TEST(QBLPluginLibraryLoaderTest, ReportsWhyItFails) {
    const TempTree tree;
    const std::string pipe = tree("pipe.so");
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
    EXPECT_EQ(0, std::system(("touch -d 2040-01-01 " + pipe).c_str()))
        << "32-bit stat(2) fails for this date";
    const struct {
        std::string path, reason;
    } table[] = {
        {"/absent/x.so", "/absent/x.so: cannot open shared object file: No such file or directory"},
        {std::string(8000000, 'a'), "The path is too long."},
        {pipe, "It is not a regular file."},
        {"", "The path is empty or has a zero in it."},
        {std::string("x\0y", 3), "The path is empty or has a zero in it."}};
    for (const auto& row : table)
        EXPECT_EQ(
            "1 Error QBLPluginException: QBL_THROW: QBLPluginLibraryLoader::load\n" + row.reason,
            failureOf([&] { static_cast<void>(QBLPluginLibraryLoader::load(row.path)); }));
    EXPECT_EQ(
        "2 Error QBLPluginException: QBL_THROW: QBLPluginLibraryLoader::unload\n"
        "There is no handle.",
        failureOf([] { QBLPluginLibraryLoader::unload(nullptr); }));
}
