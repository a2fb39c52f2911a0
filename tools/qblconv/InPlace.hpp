#ifndef TOOLS_QBLCONV_INPLACE_HPP
#define TOOLS_QBLCONV_INPLACE_HPP

#include <string>

#include "tools/qblconv/Input.hpp"
#include "tools/qblconv/Output.hpp"
#include "tools/qblconv/Report.hpp"

namespace conv {

/// The replacement of a file by its converted text. Whatever others do to the file meanwhile,
/// nothing that they have written is lost without a word.
///
/// Threads: one at a time for each object.
class InPlace {
public:
    /// @param input  the file, open
    /// @param suffix  of the name that the original keeps; empty if it is not kept
    InPlace(const Item& item, Input& input, const std::string& suffix, FileReport& report);

    /// @return false, with the reason in the report, if there can be no new version
    bool begin();
    Output& output() { return m_output; }
    /// Puts the output in the place of the file.
    /// @return false, with the reason in the report, if the file is as it was, or if somebody wrote
    ///     to it at the last moment
    bool finish();

private:
    // The steps of finish(), in this order.
    bool bringToDisk();
    bool isUnchanged();
    bool keepOriginal();
    bool replace();
    bool isUnchangedStill();

    bool isStuck() const;
    bool linkOriginal();
    bool reportFailure(qblconvmsgs id, Details details = {});

    const Item& m_item;
    const std::string m_name;  // as it is shown
    Input& m_input;
    FileReport& m_report;
    ReplacingOutput m_output;
    const std::string m_second;  // the name that the original keeps; empty if it is not kept
    bool m_bHasSecond = false;   // it has got that by us
};

}  // namespace conv

#endif
