#ifndef QBLCORE_UTILITY_QBLSQUISHER_HPP
#define QBLCORE_UTILITY_QBLSQUISHER_HPP

#include "QBLCore/Utility/QBLSquisher.h"

/// The tokens of QBLSquisher.h, in memory of their own. What is returned is the caller's, to be
/// deleted with delete[].
///
/// Threads: any thread may call any operation.
///
///     std::unique_ptr<char[]> token(QBLSquisher::squish(text));
///     std::unique_ptr<char[]> back(QBLSquisher::unSquish(token.get()));
class QBL_API QBLSquisher {
public:
    /// @return the token, in at least QBLsqu_squished_size() bytes, zeroed behind it; null if there
    ///     is no text or no memory, and for what 32 bits cannot tell the size of
    [[nodiscard]] static char* squish(const char* text);

    /// @return the text; null for what is not the token of a text of up to 10,000,000 bytes, and
    ///     without memory. A text with a NUL, which no token of squish() has, reads as cut there.
    [[nodiscard]] static char* unSquish(const char* token);
};

#endif
