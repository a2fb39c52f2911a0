#include "i18n/cpp/i18n_text_stream.hpp"

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "i18n/cpp/stream/i18n_text_stream_state.hpp"

I18NTextStreamListener::~I18NTextStreamListener() = default;

I18NTextStream::I18NTextStream(const I18NConverter* from, const I18NConverter* to,
                               I18NByteOrderMark mark, I18NTextStreamListener* listener)
    : m_pState(nullptr) {
    QBL_ALLOC_TRY
    m_pState = new I18NTextStreamState(from, to, mark, listener);
    QBL_ALLOC_CATCH
}

I18NTextStream::~I18NTextStream() { delete m_pState; }

void I18NTextStream::put(const char* block, std::size_t size) { m_pState->put(block, size); }
void I18NTextStream::put(const char16_t* units, std::size_t count) { m_pState->put(units, count); }
void I18NTextStream::finish() { m_pState->finish(); }

void I18NTextStream::replaceBy(const char16_t* units, std::size_t count) {
    m_pState->replaceBy(units, count);
}

const char* I18NTextStream::getBytes() const {
    return m_pState->hasOutput() ? m_pState->result().begin() : nullptr;
}

std::size_t I18NTextStream::getByteCount() const {
    return m_pState->hasOutput() ? m_pState->result().size() : 0;
}

const char16_t* I18NTextStream::getText() const {
    const void* text = m_pState->hasOutput() ? nullptr : m_pState->result().begin();
    return static_cast<const char16_t*>(text);
}

std::size_t I18NTextStream::getTextLength() const {
    return m_pState->hasOutput() ? 0 : m_pState->result().size() / sizeof(char16_t);
}

std::int64_t I18NTextStream::getReplacedInput() const { return m_pState->replacedInput(); }
std::int64_t I18NTextStream::getReplacedOutput() const { return m_pState->replacedOutput(); }
std::int64_t I18NTextStream::getBestFits() const { return m_pState->bestFits(); }
std::int64_t I18NTextStream::getLine() const { return m_pState->position().line(); }
std::int64_t I18NTextStream::getColumn() const { return m_pState->position().column(); }
const char* I18NTextStream::getInputEncoding() const { return m_pState->inputEncoding(); }
