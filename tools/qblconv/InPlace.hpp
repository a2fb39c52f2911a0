#ifndef TOOLS_QBLCONV_INPLACE_HPP
#define TOOLS_QBLCONV_INPLACE_HPP

#include <string>

#include "tools/qblconv/Input.hpp"
#include "tools/qblconv/Output.hpp"
#include "tools/qblconv/Report.hpp"

namespace conv {

/// Replaces a file by its converted text. If another program writes to the file before the
/// replacement is complete, the class keeps or at least reports the change.
///
/// Threads: one at a time for each object.
class InPlace {
public:
    /// @param input  the opened file
    /// @param suffix  suffix for the name that keeps the original; empty to keep none
    InPlace(const Item& item, Input& input, const std::string& suffix, FileReport& report);

    /// @return false, with the reason in the report, if the new version cannot be created
    bool begin();
    Output& output() { return m_output; }
    /// Replaces the file by the output.
    /// @return false, with the reason in the report, if the file was not replaced or if another
    ///     program wrote to it at the last moment
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
    bool reportFailure(const QBLTypedMessage& message);

    const Item& m_item;
    const std::string m_name;  // as shown() returns it
    Input& m_input;
    FileReport& m_report;
    ReplacingOutput m_output;
    const std::string m_second;  // name that keeps the original; empty to keep none
    bool m_bHasSecond = false;   // this object created m_second
};

}  // namespace conv

#endif
