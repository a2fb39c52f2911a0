#include "QBLCore/PlugIns/QBLPlugin.hpp"

#include <dlfcn.h>

#include <functional>

#include "examples/plugin/Faults.hpp"
#include "tests/support/TempTree.hpp"
#include "tests/support/ThrowChecks.hpp"

namespace {

using Throw = void(PluginFault);

/// A copy of the plug-in, so that no other test has it loaded.
struct PluginCopy {
    TempTree tree;
    const std::string path = tree("faults.so");

    PluginCopy() { std::filesystem::copy_file(PLUGIN_FILE, path); }
    bool isLoaded() const {
        void* handle = dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
        return handle != nullptr && dlclose(handle) == 0;
    }
};

}  // namespace

TEST(QBLPluginTest, UnloadsAfterTheLastOwner) {
    const PluginCopy copy;
    {
        auto start = QBLPlugin(copy.path).entry<void()>("faultsInitialize");
        start();
        std::shared_ptr<int> object = QBLPlugin(copy.path).own(std::make_unique<int>(5));
        std::function<void(int*)> deleter = std::default_delete<int>();
        std::unique_ptr<int, decltype(deleter)&> other(new int(6), deleter);
        object = QBLPlugin(copy.path).own(std::move(other));
        EXPECT_TRUE(deleter) << "own() does not take the deleter of the caller";
        start = QBLPlugin(copy.path).entry<void (*)() noexcept>("faultsTerminate");
        start();
        EXPECT_TRUE(copy.isLoaded());
    }
    EXPECT_FALSE(copy.isLoaded());
    { QBLPlugin plugin(copy.path, QBLPlugin::kResident); }
    EXPECT_TRUE(copy.isLoaded());
}

TEST(QBLPluginTest, StaysForAnErrorOfItsOwnClass) {
    const PluginCopy thrown, handling;
    std::exception_ptr kept;
    try {
        const QBLPlugin plugin(thrown.path);
        plugin.entry<void()>("faultsInitialize")();
        try {
            plugin.entry<Throw>("faultsThrow")(kDiskFault);
        } catch (...) {
            kept = std::current_exception();
        }
    } catch (...) {
        FAIL();
    }
    EXPECT_TRUE(thrown.isLoaded());
    QBL_EXPECT_THROW(std::rethrow_exception(kept), DiskFault, "", 16);
    try {
        const QBLPlugin plugin(handling.path);
        throw DiskFault(1);
    } catch (const DiskFault&) {
        EXPECT_TRUE(handling.isLoaded()) << "the plug-in could have thrown it from a callback";
    }
}

TEST(QBLPluginTest, NamesAMissingEntry) {
    const QBLPlugin plugin(PLUGIN_FILE);
    for (const char* name : {"absent", static_cast<const char*>(nullptr)}) {
        std::string reason;
        try {
            plugin.entry<void()>(name)();
        } catch (QBLPluginException& error) {
            EXPECT_EQ(QBLPluginEntryMissing, error.getErrorCode());
            EXPECT_EQ("QBLPluginException: QBL_THROW: QBLPlugin::entry\n", traceOf(error));
            reason = error.toString();
        }
        const char* const wanted = name == nullptr ? "no name" : "undefined symbol: absent";
        EXPECT_NE(std::string::npos, reason.find(wanted)) << reason;
    }
}
