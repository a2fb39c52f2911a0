#ifndef EXAMPLES_TUTORIAL_FORMATS_HPP
#define EXAMPLES_TUTORIAL_FORMATS_HPP

#include <map>
#include <string>

#include "QBLCore/ObjectFactory/QBLObjectFactory.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"

class I18NString;

/// The plug-ins. Each is loaded when the first text needs it.
///
/// Threads: any thread may count.
class Formats {
public:
    Formats() = default;
    ~Formats();

    /// @throws QBLPluginException if there is no plug-in for the type
    int countLines(const std::string& type, const I18NString& text);

private:
    struct Plugin {
        void* handle = nullptr;
        char* classId = nullptr;
    };
    char* classOf(const std::string& type);

    QBLObjectFactory m_factory;
    QBLThreadMutex m_mutex{1};                // keeps its holder, for the debugger
    std::map<std::string, Plugin> m_plugins;  // by type; guarded by m_mutex
};

#endif
