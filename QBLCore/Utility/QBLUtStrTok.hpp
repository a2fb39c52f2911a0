#ifndef QBLCORE_UTILITY_QBLUTSTRTOK_HPP
#define QBLCORE_UTILITY_QBLUTSTRTOK_HPP

#include <string>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// Splits a text into tokens at separators; each byte of `separators` is a separator. There are no
/// empty tokens: several separators in a row count as one, and separators at the ends are ignored.
///
/// Threads: one thread at a time for each object.
///
///     QBLUtStrTok words("de_DE, en;;fr");
///     for (std::string word; words.nextToken(word);) use(word);  // de_DE  en  fr
class QBL_API QBLUtStrTok {
public:
    /// Copies both texts.
    /// @param text  null stands for an empty text
    /// @param separators  if null or empty, the whole text is one token
    /// @throws QBLOutOfMemoryError
    explicit QBLUtStrTok(const char* text, const char* separators = " \t\r\n,;");

    /// @param token  receives the next token; unchanged if no token is left
    /// @param separators  the separators before and after this token; null means the separators of
    ///     the constructor
    /// @return false if no token is left
    /// @throws QBLOutOfMemoryError; the next call then returns the same token
    bool nextToken(std::string& token, const char* separators = nullptr);

private:
    std::string m_text;
    std::string m_separators;
    std::size_t m_iNext;
};

#endif
