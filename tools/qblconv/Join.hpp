#ifndef TOOLS_QBLCONV_JOIN_HPP
#define TOOLS_QBLCONV_JOIN_HPP

#include <functional>
#include <string>

#include "tools/qblconv/Output.hpp"
#include "tools/qblconv/Report.hpp"

namespace conv {

/// The common output of several inputs: the standard output, a file that is replaced as a whole, or
/// a device or pipe. An output that is also an input is replaced only if no other program has
/// written to it.
///
/// Threads: one at a time for each object.
class JoinedOutput {
public:
    /// @param path  empty for the standard output
    /// @param name  the output's name, as shown() returns it
    JoinedOutput(const std::string& path, std::string name)
        : m_path(path), m_name(std::move(name)) {}
    ~JoinedOutput();
    JoinedOutput(const JoinedOutput&) = delete;
    JoinedOutput& operator=(const JoinedOutput&) = delete;

    /// @param inputs  the paths of the inputs
    /// @return false if the output cannot be written; finish() then reports why
    bool open(const std::vector<std::string>& inputs);
    Output& output() { return *m_pOutput; }
    /// The direct output; null for a file that is replaced.
    DirectOutput* direct() { return m_bDirect ? &m_direct : nullptr; }
    const std::string& name() const { return m_name; }
    /// Puts the output in its place unless an input or a write failed. Reports any new failure.
    /// @param hasFailed  whether an input failed
    void finish(bool hasFailed, FileReport& report);

private:
    bool isAnInput(const std::vector<std::string>& inputs) const;
    bool openOld();
    // The steps of finish() for a file that is replaced.
    bool isUnchanged() const;
    bool replace();
    bool isUnchangedStill(FileReport& report);

    const std::string& m_path;
    const std::string m_name;
    bool m_bDirect = false;
    bool m_bOpen = false;
    DirectOutput m_direct;
    ReplacingOutput m_replacing;
    Output* m_pOutput = nullptr;
    int m_iOld = -1;  // the old version of the output if it is also an input, else -1
    FileStatus m_old = {};
};

}  // namespace conv

#endif
