#ifndef QBLCORE_UTILITY_QBLUTSTRTOK_HPP
#define QBLCORE_UTILITY_QBLUTSTRTOK_HPP

#include <string>

#include "QBLCore/Frame/QBLExport.h"

/// Takes a text apart at separators, of which each byte is one. There are no empty tokens: several
/// separators in a row count as one, and those at either end for nothing.
///
/// Threads: one at a time.
///
///     QBLUtStrTok words("de_DE, en;;fr");
///     for (std::string word; words.nextToken(word);) use(word);  // de_DE  en  fr
class QBL_API QBLUtStrTok {
public:
    /// Copies both.
    /// @param text  null is an empty text
    /// @param separators  null or empty separates nothing
    /// @throws QBLOutOfMemoryError
    explicit QBLUtStrTok(const char* text, const char* separators = " \t\r\n,;");

    /// @param token  receives the next one; unchanged when there is none left
    /// @param separators  those that end this one, and are passed over before it; null means the
    ///     constructor's
    /// @throws QBLOutOfMemoryError; the token is not taken then
    bool nextToken(std::string& token, const char* separators = nullptr);

private:
    std::string m_text;
    std::string m_separators;
    std::size_t m_iNext;
};

#endif
