#ifndef TOOLS_QBLCONV_LINEENDS_HPP
#define TOOLS_QBLCONV_LINEENDS_HPP

#include <string>

#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_text_stream.hpp"

namespace conv {

/// Converts all line ends of a text to one form, in any encoding. CR LF and LF are line ends; a
/// lone CR stays unchanged.
///
/// Threads: one at a time for each object.
class LineEnds {
public:
    /// @param encoding  the encoding of the text
    /// @param withReturn  whether lines end with CR LF instead of LF
    LineEnds(const I18NConverter& encoding, bool withReturn);

    void put(const char* bytes, std::size_t size);
    void finish();
    /// The output of the last call, valid until the next call.
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
    bool m_bAfterReturn = false;  // the CR is already written if lines end with CR LF
};

}  // namespace conv

#endif
