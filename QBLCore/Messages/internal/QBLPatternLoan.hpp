#ifndef QBLCORE_MESSAGES_INTERNAL_QBLPATTERNLOAN_HPP
#define QBLCORE_MESSAGES_INTERNAL_QBLPATTERNLOAN_HPP

#include <atomic>
#include <memory>
#include <string>

#include "QBLCore/Messages/internal/QBLMessagePattern.hpp"

/// A parsed pattern for one use. The destructor gives the pattern back to a table of the process,
/// so that the same text is rarely parsed twice.
///
/// Threads: one thread for each loan. There may be any number of loans at a time.
class QBLPatternLoan {
public:
    /// @param text, locales  as for QBLMessagePattern
    QBLPatternLoan(const char* text, const char* locales);
    ~QBLPatternLoan();
    QBLPatternLoan(const QBLPatternLoan&) = delete;
    QBLPatternLoan& operator=(const QBLPatternLoan&) = delete;

    QBLMessagePattern& get() { return m_pKept->pattern; }

private:
    struct Kept {
        Kept(const char* text, const char* localeList)
            : locales(localeList), pattern(text, localeList) {}

        const std::string locales;
        QBLMessagePattern pattern;
    };

    std::unique_ptr<Kept> m_pKept;
    std::atomic<Kept*>* m_pPlace;
};

#endif
