#include "QBLCore/Utility/QBLUtStrTok.hpp"

#include <algorithm>

#include "QBLCore/Exceptions/QBLAllocation.hpp"

QBLUtStrTok::QBLUtStrTok(const char* text, const char* separators) : m_iNext(0) {
    QBL_ALLOC_TRY
    if (text != nullptr) m_text = text;
    if (separators != nullptr) m_separators = separators;
    QBL_ALLOC_CATCH
}

bool QBLUtStrTok::nextToken(std::string& token, const char* separators) {
    if (separators == nullptr) separators = m_separators.c_str();
    const std::size_t begin = m_text.find_first_not_of(separators, m_iNext);
    if (begin == std::string::npos) return false;
    const std::size_t end = std::min(m_text.find_first_of(separators, begin), m_text.size());
    QBL_ALLOC_TRY
    token.assign(m_text, begin, end - begin);
    QBL_ALLOC_CATCH
    m_iNext = end;
    return true;
}
