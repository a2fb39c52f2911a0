// load_test LIBRARY: loads and unloads the library repeatedly without being linked to it. A thread
// that has used the library stays alive until after the last unloading.
#include <dlfcn.h>

#include <cstdio>
#include <future>
#include <thread>

namespace {

typedef int (*Call)();

int run(const char* library) {
    std::promise<void> unloaded;
    std::thread user;
    for (int round = 0; round < 5; ++round) {
        void* handle = dlopen(library, RTLD_LAZY | RTLD_LOCAL);
        if (handle == nullptr) {
            std::fprintf(stderr, "%s\n", dlerror());
            return 1;
        }
        const auto start = reinterpret_cast<Call>(dlsym(handle, "qblCoreInitialize"));
        const auto stop = reinterpret_cast<Call>(dlsym(handle, "qblCoreTerminate"));
        const auto adopt = reinterpret_cast<Call>(dlsym(handle, "tavXThreadInitialize"));
        if (start == nullptr || stop == nullptr || adopt == nullptr || start() != 0) return 1;
        if (round == 0) {
            std::promise<int> adopted;
            std::future<int> result = adopted.get_future();
            user = std::thread([&unloaded, adopt, promise = std::move(adopted)]() mutable {
                promise.set_value(adopt());
                unloaded.get_future().wait();
            });
            if (result.get() != 0) return 1;
        }
        if (round != 3 && stop() != 0) return 1;  // round 3 leaves the library initialized
        if (dlclose(handle) != 0) return 1;
    }
    unloaded.set_value();
    user.join();  // destroys the thread's record after the last unloading
    return 0;
}

}  // namespace

int main(int argc, char** argv) { return argc == 2 ? run(argv[1]) : 2; }
