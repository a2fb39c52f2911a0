#include "tools/qblconv/LineEnds.hpp"

#include "tools/qblconv/Encodings.hpp"

namespace conv {

I18NConverter LineEnds::strict(const I18NConverter& encoding) {
    I18NConverter converter(encoding);
    setPolicies(converter, I18N_STOP, I18N_STOP);
    return converter;
}

LineEnds::LineEnds(const I18NConverter& encoding, bool withReturn)
    : m_encoding(strict(encoding)),
      m_bWithReturn(withReturn),
      m_decoder(&m_encoding, nullptr),
      m_encoder(nullptr, &m_encoding) {}

void LineEnds::put(const char* bytes, std::size_t size) {
    m_bytes.clear();
    m_decoder.put(bytes, size);
    change();
    encode();
}

void LineEnds::finish() {
    m_bytes.clear();
    m_decoder.finish();
    change();
    if (m_bAfterReturn && !m_bWithReturn) m_text += u'\r';
    encode();
    m_encoder.finish();
    m_bytes.append(m_encoder.getBytes(), m_encoder.getByteCount());
}

void LineEnds::encode() {
    m_encoder.put(m_text.data(), m_text.size());
    m_bytes.append(m_encoder.getBytes(), m_encoder.getByteCount());
}

void LineEnds::change() {
    const char16_t* at = m_decoder.getText();
    const char16_t* const end = at + m_decoder.getTextLength();
    m_text.clear();
    for (; at != end; ++at) {
        const bool isEnd = *at == u'\n';
        if (m_bWithReturn && isEnd && !m_bAfterReturn) m_text += u'\r';
        if (!m_bWithReturn && !isEnd && m_bAfterReturn) m_text += u'\r';
        m_bAfterReturn = *at == u'\r';
        if (m_bWithReturn || !m_bAfterReturn) m_text += *at;
    }
}

}  // namespace conv
