#ifndef TOOLS_QBLCONV_LINEENDS_HPP
#define TOOLS_QBLCONV_LINEENDS_HPP

#include <string>

#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_text_stream.hpp"

namespace conv {

/// Makes all line ends of a text the same, in any encoding. CR LF and LF are line ends; a CR alone
/// stays as it is.
///
/// Threads: one at a time for each object.
class LineEnds {
public:
    /// @param encoding  of the text
    /// @param withReturn  whether lines are to end with CR LF instead of LF
    LineEnds(const I18NConverter& encoding, bool withReturn);

    void put(const char* bytes, std::size_t size);
    void finish();
    /// What came out of the last call, until the next one.
    const std::string& bytes() const { return m_bytes; }

private:
    void change();
    void encode();

    static I18NConverter strict(const I18NConverter& encoding);

    const I18NConverter m_encoding;
    const bool m_bWithReturn;
    I18NTextStream m_decoder, m_encoder;
    std::u16string m_text;
    std::string m_bytes;
    bool m_bAfterReturn = false;  // which is written already if lines end with it
};

}  // namespace conv

#endif
