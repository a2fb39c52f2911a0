// Starts the programs that are compiled from bench/tools/Start.cpp. The time of a benchmark is the
// time from just before the start of the program to its main().
#include <fcntl.h>
#include <link.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <map>
#include <string>

#include "bench/support/Bench.hpp"

extern char** environ;

namespace {

/// Returns the absolute path of a file.
/// @param relative  relative to the folder of this program
std::string pathOf(const std::string& relative) {
    char self[4096];
    const ssize_t length = readlink("/proc/self/exe", self, sizeof self);
    const std::string path(self, length > 0 ? static_cast<std::size_t>(length) : 0);
    return path.substr(0, path.rfind('/') + 1) + relative;
}

using Figures = std::map<std::string, double>;

/// Runs a program and returns the figures that it prints; no figures if the program fails.
Figures start(const std::string& program) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return {};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    std::string time =
        std::to_string(static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec));
    std::string name = program;
    char* const arguments[] = {name.data(), time.data(), nullptr};
    pid_t child = 0;
    const int error = posix_spawn(&child, name.c_str(), &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    Figures figures;
    std::FILE* const output = fdopen(ends[0], "r");
    char key[64];
    double value = 0;
    while (std::fscanf(output, "%63s %lf", key, &value) == 2) figures[key] = value;
    std::fclose(output);
    int status = 0;
    if (error != 0 || waitpid(child, &status, 0) != child || status != 0) return {};
    return figures;
}

void BM_StartUp(benchmark::State& state, const char* library) {
    const std::string program = pathOf(std::string("tools/start_") + library);
    if (access(program.c_str(), X_OK) != 0) {
        state.SkipWithError("the program is not built");
        return;
    }
    Figures sums;
    for (auto _ : state) {
        const Figures figures = start(program);
        if (figures.empty()) {
            state.SkipWithError("the program failed");
            return;
        }
        for (const auto& [key, value] : figures) sums[key] += value;
        state.SetIterationTime(figures.at("main_ns") * 1e-9);
    }
    for (const auto& [key, sum] : sums)
        state.counters[key] = sum / static_cast<double>(state.iterations());
}
BENCHMARK_CAPTURE(BM_StartUp, empty, "empty")->UseManualTime();
BENCHMARK_CAPTURE(BM_StartUp, icu, "icu")->UseManualTime();
BENCHMARK_CAPTURE(BM_StartUp, qt, "qt")->UseManualTime();
BENCHMARK_CAPTURE(BM_StartUp, qblcore, "qblcore")->UseManualTime();

/// The size and the number of relocations of a shared object that this process has loaded.
struct SharedObject {
    const char* name;
    double bytes, relocations;
};

int look(dl_phdr_info* info, std::size_t, void* wanted) {
    auto& object = *static_cast<SharedObject*>(wanted);
    if (std::strstr(info->dlpi_name, object.name) == nullptr) return 0;
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const ElfW(Phdr)& header = info->dlpi_phdr[i];
        if (header.p_type == PT_LOAD) object.bytes += static_cast<double>(header.p_memsz);
        if (header.p_type != PT_DYNAMIC) continue;
        const auto* entry = reinterpret_cast<const ElfW(Dyn)*>(info->dlpi_addr + header.p_vaddr);
        for (; entry->d_tag != DT_NULL; ++entry) {
            const auto value = static_cast<double>(entry->d_un.d_val);
            constexpr std::size_t kSize =
                sizeof(void*) == 4 ? sizeof(ElfW(Rel)) : sizeof(ElfW(Rela));
            if (entry->d_tag == DT_RELSZ || entry->d_tag == DT_RELASZ ||
                entry->d_tag == DT_PLTRELSZ)
                object.relocations += value / kSize;
        }
    }
    return 1;
}

void BM_SharedObject(benchmark::State& state, const char* name) {
    SharedObject object = {name, 0, 0};
    for (auto _ : state) {
        object = {name, 0, 0};
        if (dl_iterate_phdr(look, &object) == 0) {
            state.SkipWithError("this program is not linked with the library");
            return;
        }
    }
    state.counters["kB"] = object.bytes / 1024;
    state.counters["relocations"] = object.relocations;
}
BENCHMARK_CAPTURE(BM_SharedObject, icu, "/libicuuc.so")->Iterations(1);
BENCHMARK_CAPTURE(BM_SharedObject, qt, "/libQt5Core.so")->Iterations(1);
BENCHMARK_CAPTURE(BM_SharedObject, qblcore, "/libQBLCore.so")->Iterations(1);

}  // namespace
