#ifndef TOOLS_QBLCONV_WORKER_HPP
#define TOOLS_QBLCONV_WORKER_HPP

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "i18n/cpp/i18n_converter.hpp"
#include "tools/qblconv/Convert.hpp"
#include "tools/qblconv/Detect.hpp"
#include "tools/qblconv/Operands.hpp"
#include "tools/qblconv/Options.hpp"

namespace conv {

/// Processes files one after the other. Converts each file into its own output or in place, appends
/// it to a common output, or only checks it. Adds problems to the file's report.
///
/// Threads: one at a time for each object.
class Worker {
public:
    /// Requires: the encodings in options exist.
    /// @param root  the output directory; null without -d
    Worker(const Options& options, Progress& progress, OutputRoot* root);

    /// Processes a file that has its own output, or that is checked.
    void work(const Item& item, FileReport& report);
    /// Converts a file and appends the result to an output.
    /// @param isFirst  whether no earlier input contained any bytes
    /// @return true if bytes were read from this input
    bool join(const std::string& path, DirectOutput* direct, Output& output,
              const std::string& outputName, bool isFirst, FileReport& report);
    /// The byte-order mark for outputs; empty if outputs get no mark.
    const std::string& mark() const { return m_mark; }

private:
    bool open(const Item& item, Input& input, FileReport& report);
    void check(const std::string& name, Input& input, FileReport& report);
    void convertInto(const Item& item, Input& input, FileReport& report);
    void convertInPlace(const Item& item, Input& input, FileReport& report);
    void sayPassedOver(const Item& item, const Input& input, FileReport& report) const;
    /// @return true if the output can be put in its place
    bool fill(Input& input, const std::string& name, Output& output, const std::string& outputName,
              FileReport& report);
    /// @return true if the whole input was written. The caller calls sayDone() when the output is
    ///     in its place.
    bool convert(Input& input, const std::string& name, Output& output,
                 const std::string& outputName, bool stripMark, FileReport& report);
    void sayDone(const std::string& name, bool isKept, FileReport& report) const;
    bool isToBeKept(Input& input, const std::string& name, FileReport& report);
    /// Detects the encoding of the input, if requested.
    /// @return false if the encoding is not clear
    bool choose(Input& input, const std::string& name, FileReport& report);
    Setup setup(I18NByteOrderMark mark);
    I18NByteOrderMark marks(bool strip) const;
    Findings findings(FileReport& report, const std::string& name) const;

    const Options& m_options;
    Progress& m_progress;
    std::unique_ptr<I18NConverter> m_pFrom, m_pTo;
    std::optional<Detector> m_detector;             // replaces m_pFrom
    const I18NConverter* m_pChosen = nullptr;       // for the current input
    std::unique_ptr<I18NConverter> m_pFromSwapped;  // set if a mark may tell this byte order
    std::string m_swappedMark;
    std::unique_ptr<I18NConverter> m_pValid;  // strict, for files that are already valid
    std::string m_mark;                       // empty if outputs get no mark
    std::string m_validMark;
    std::string m_encoding;                               // detected encoding of the last input
    std::unique_ptr<Transliteration> m_pTransliteration;  // null unless requested
    std::vector<char> m_block;
    NewOutput m_new;
};

}  // namespace conv

#endif
