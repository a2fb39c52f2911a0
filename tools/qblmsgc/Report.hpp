#ifndef TOOLS_QBLMSGC_REPORT_HPP
#define TOOLS_QBLMSGC_REPORT_HPP

#include <cstdio>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "QBLCore/Exceptions/QBLSeverity.hpp"
#include "tools/common/MessageText.hpp"
#include "tools/common/Shown.hpp"
#include "tools/qblmsgc/Source.hpp"
#include "tools/qblmsgc/qblmsgcmsgs.hpp"

namespace msgc {

/// Formats a message of the tool's catalogue in the user's language.
std::string formatMessage(const QBLTypedMessage& message);
/// Makes the message from texts that are not shown() yet.
template <class Make, class... Texts>
std::string formatMessage(Make make, const Texts&... texts) {
    return formatMessage(tools::withShown(make, texts...));
}

/// A place in a source, as messages show it: texts after shown().
struct PlaceText {
    std::string file, line, column;
    const char* severity;  // a word for the catalogue: "error" or "warning"
};

/// Makes a message for a place.
using PlacedMessage = std::function<QBLTypedMessage(const PlaceText&)>;

/// @param make  a function of the catalogue whose first arguments are file, line and column
/// @param texts  its other arguments, not shown() yet
template <class Make, class... Texts>
PlacedMessage placed(Make make, Texts... texts) {
    return [=](const PlaceText& at) {
        return make(at.file, at.line, at.column, tools::shown(texts)...);
    };
}
/// Does the same for a warning. Its fourth argument is the severity.
template <class Make, class... Texts>
PlacedMessage placedWarning(Make make, Texts... texts) {
    return [=](const PlaceText& at) {
        return make(at.file, at.line, at.column, at.severity, tools::shown(texts)...);
    };
}

/// Collects the findings in the sources of a run. Prints them in the order of the files, and by
/// place within each file.
///
/// Threads: one at a time.
class Report {
public:
    enum class Form { kText, kXml };

    /// @param strict  whether the report calls warnings errors
    explicit Report(bool strict = false) : m_bStrict(strict) {}

    /// Adds the next file. If a file was not added, its first finding adds it.
    void begin(const Source& source);
    void error(const Source& source, std::size_t offset, const PlacedMessage& message);
    void warning(const Source& source, std::size_t offset, const PlacedMessage& message);
    /// Do the same with the arguments of placed() and placedWarning().
    template <class Make, class... Texts>
    void error(const Source& source, std::size_t offset, Make make, Texts... texts) {
        error(source, offset, placed(make, std::move(texts)...));
    }
    template <class Make, class... Texts>
    void warning(const Source& source, std::size_t offset, Make make, Texts... texts) {
        warning(source, offset, placedWarning(make, std::move(texts)...));
    }
    /// An error of a whole file. It comes before the errors with a place.
    void fault(const QBLTypedMessage& message);
    template <class Make, class... Texts>
    void fault(Make make, const Texts&... texts) {
        fault(tools::withShown(make, texts...));
    }

    bool hasErrors() const { return m_bHasErrors; }
    bool hasWarnings() const { return m_bHasWarnings; }
    /// @param quiet  whether to omit warnings
    void print(std::FILE* out, Form form, bool quiet);

private:
    struct Finding {
        bool isWarning;
        std::size_t file;  // number of the file, from 1; 0 for a fault
        std::size_t offset;
        QBLTypedMessage message;
    };

    std::size_t numberOf(const Source& source);
    void add(bool isWarning, const Source& source, std::size_t offset,
             const PlacedMessage& message);

    const bool m_bStrict;
    std::vector<Finding> m_findings;
    std::vector<std::string> m_files;
    bool m_bHasErrors = false;
    bool m_bHasWarnings = false;
};

}  // namespace msgc

#endif
