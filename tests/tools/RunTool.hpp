#ifndef TESTS_TOOLS_RUNTOOL_HPP
#define TESTS_TOOLS_RUNTOOL_HPP

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>

#include "tests/support/TempTree.hpp"

inline std::string bytes(const char* text, std::size_t size) { return {text, size}; }

/// The exit status of a run, and its output to both streams.
struct Outcome {
    int status;
    std::string output;
};

/// Runs a shell command in a directory. $Q is qblconv, $M is qblmsgc, and $S is qblconv with input
/// in Shift_JIS.
/// @param environment  assignments such as "LC_ALL=de"
inline Outcome runTool(const TempTree& tree, const std::string& command,
                       const std::string& environment = "LC_ALL=C") {
    const std::string whole = "cd '" + std::string(tree.root()) +
                              "' && unset TAV_EXEC_PATH; Q='" QBL_CONV "' M='" QBL_MSGC
                              "'; S=\"$Q -f Shift_JIS\"; export " +
                              environment + "; { " + command + "\n} 2>&1";
    std::FILE* pipe = popen(whole.c_str(), "r");
    std::string output;
    char block[4096];
    while (const std::size_t got = std::fread(block, 1, sizeof block, pipe))
        output.append(block, got);
    const int status = pclose(pipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}

/// Runs a shell command as runTool() does, and compares its status and output.
inline void expectRun(const TempTree& tree, const std::string& command, int status,
                      const std::string& output, const std::string& environment = "LC_ALL=C") {
    const Outcome result = runTool(tree, command, environment);
    EXPECT_EQ(status, result.status) << command << "\n" << result.output;
    EXPECT_EQ(output, result.output) << command;
}

#endif
