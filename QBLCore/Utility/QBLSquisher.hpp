#ifndef QBLCORE_UTILITY_QBLSQUISHER_HPP
#define QBLCORE_UTILITY_QBLSQUISHER_HPP

#include "QBLCore/Utility/QBLSquisher.h"

/// The functions of QBLSquisher.h with allocated results. The caller owns each result and frees it
/// with delete[].
///
/// Threads: any thread may call any operation.
///
///     std::unique_ptr<char[]> token(QBLSquisher::squish(text));
///     std::unique_ptr<char[]> back(QBLSquisher::unSquish(token.get()));
class QBL_API QBLSquisher {
public:
    /// @return the token, in an array of at least QBLsqu_squished_size() bytes whose rest is zero;
    ///     null if the text is null, if memory runs out, or if the size exceeds 32 bits
    [[nodiscard]] static char* squish(const char* text);

    /// @return the text; null if this is not the token of a text of up to 10,000,000 bytes, or if
    ///     memory runs out. A text with a NUL, which tokens of squish() never have,
    ///     seems to end there.
    [[nodiscard]] static char* unSquish(const char* token);
};

#endif
