#ifndef QBLCORE_UTILITY_QBLSQUISHER_HPP
#define QBLCORE_UTILITY_QBLSQUISHER_HPP

#include "QBLCore/Frame/QBLLanguage.hpp"
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
    /// @return the token, in an array of at least QBLsqu_squished_size() bytes; the bytes after the
    ///     token are zero. Returns null if the text is null, if memory runs out, or if the size
    ///     exceeds 32 bits.
    [[nodiscard]] static char* squish(const char* text);

    /// @return the text; null if `token` is not the token of a text of up to 10,000,000 bytes, or
    ///     if memory runs out. If the text contains a NUL, it seems to end there; tokens of
    ///     squish() never contain such a text.
    [[nodiscard]] static char* unSquish(const char* token);
};

#endif
