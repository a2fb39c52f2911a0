#ifndef TOOLS_COMMON_REASON_HPP
#define TOOLS_COMMON_REASON_HPP

#include <locale.h>

#include <string>

namespace tools {

/// The system's texts for errors, in the language of the catalogue that messages come from. The
/// texts are English if no locale of that language is installed, or if the C library has no
/// translation.
///
/// Threads: any thread may call text().
class Reasons {
public:
    /// The texts are in English.
    Reasons() = default;
    /// @param catalogue  a base name from findCatalogue()
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
/// Requires: no other thread is running.
void setReasonLanguage(const std::string& catalogue, const std::string& locales);
/// The text of an errno, in the language chosen last; English before the first choice.
std::string reason(int error);

}  // namespace tools

#endif
