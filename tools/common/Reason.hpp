#ifndef TOOLS_COMMON_REASON_HPP
#define TOOLS_COMMON_REASON_HPP

#include <locale.h>

#include <string>

namespace tools {

/// What the system calls an error, in the language that messages come in: that of the catalogue
/// found for some locales. It is English where that is, where the C library has no installed locale
/// of that language, and where it does not know the error's name in it.
///
/// Threads: any number may call text().
class Reasons {
public:
    /// In English.
    Reasons() = default;
    /// @param catalogue  a base name, as of findCatalogue()
    Reasons(const std::string& catalogue, const std::string& locales);
    ~Reasons();
    Reasons(Reasons&& other) noexcept;
    Reasons& operator=(Reasons&& other) noexcept;

    /// @param error  an errno
    /// @return UTF-8
    std::string text(int error) const;

private:
    locale_t m_locale = nullptr;  // null for English
};

/// Chooses the language of reason().
/// Requires: no other thread has been started.
void setReasonLanguage(const std::string& catalogue, const std::string& locales);
/// The process's Reasons::text(); English until a language is chosen.
std::string reason(int error);

}  // namespace tools

#endif
