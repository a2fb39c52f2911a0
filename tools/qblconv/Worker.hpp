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

/// Works on files, one after the other: converts each into an output of its own, in place, or onto
/// the end of one for all; or checks it. What is wrong goes into the file's report.
///
/// Threads: one at a time for each object.
class Worker {
public:
    /// Requires: there are such encodings.
    /// @param root  for outputs in a directory; null without one
    Worker(const Options& options, Progress& progress, OutputRoot* root);

    /// Works on a file of those that have outputs of their own, or are checked.
    void work(const Item& item, FileReport& report);
    /// Converts a file onto the end of an output.
    /// @param isFirst  whether all those in front of it were empty
    /// @return whether this one is not
    bool join(const std::string& path, DirectOutput* direct, Output& output,
              const std::string& outputName, bool isFirst, FileReport& report);
    /// What an output begins with, if it is to have a mark.
    const std::string& mark() const { return m_mark; }

private:
    bool open(const Item& item, Input& input, FileReport& report);
    void check(const std::string& name, Input& input, FileReport& report);
    void convertInto(const Item& item, Input& input, FileReport& report);
    void convertInPlace(const Item& item, Input& input, FileReport& report);
    void sayPassedOver(const Item& item, const Input& input, FileReport& report) const;
    /// @return whether the output can be put in its place
    bool fill(Input& input, const std::string& name, Output& output, const std::string& outputName,
              FileReport& report);
    /// @return whether all of it came onto the output; sayDone() is for when it has its place
    bool convert(Input& input, const std::string& name, Output& output,
                 const std::string& outputName, bool stripMark, FileReport& report);
    void sayDone(const std::string& name, bool isKept, FileReport& report) const;
    bool isToBeKept(Input& input, const std::string& name, FileReport& report);
    /// Finds out what the input is in, if that is wanted. @return false if it is not clear
    bool choose(Input& input, const std::string& name, FileReport& report);
    Setup setup(I18NByteOrderMark mark);
    I18NByteOrderMark marks(bool strip) const;
    Findings findings(FileReport& report, const std::string& name) const;

    const Options& m_options;
    Progress& m_progress;
    std::unique_ptr<I18NConverter> m_pFrom, m_pTo;
    std::optional<Detector> m_detector;             // in place of m_pFrom
    const I18NConverter* m_pChosen = nullptr;       // for the input at hand
    std::unique_ptr<I18NConverter> m_pFromSwapped;  // if a mark may tell of that order of bytes
    std::string m_swappedMark;
    std::unique_ptr<I18NConverter> m_pValid;  // strictly what is to be kept
    std::string m_mark;                       // if outputs are to have one
    std::string m_validMark;
    std::string m_encoding;                               // that the last input turned out to be in
    std::unique_ptr<Transliteration> m_pTransliteration;  // null unless asked for
    std::vector<char> m_block;
    NewOutput m_new;
};

}  // namespace conv

#endif
