#include "QBLCore/Messages/QBLMessageComponents.hpp"

#include <memory>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Messages/internal/QBLNumberText.hpp"
#include "i18n/cpp/i18n_string.hpp"

QBLMessageComponents::QBLMessageComponents() : m_id(0) {}

QBLMessageComponents::QBLMessageComponents(unsigned long id) : m_id(id) {}

QBLMessageComponents::QBLMessageComponents(QBLSeverity severity, unsigned long id)
    : QBLMessageBase(severity), m_id(id) {}

// Delegates to another constructor, so that the destructor runs if copying fails halfway.
QBLMessageComponents::QBLMessageComponents(const QBLMessageComponents& other)
    : QBLMessageComponents(other.m_id) {
    QBLMessageBase::operator=(other);
    copyParms(other);
}

QBLMessageComponents& QBLMessageComponents::operator=(const QBLMessageComponents& other) {
    copyParms(other);
    QBLMessageBase::operator=(other);
    m_id = other.m_id;
    return *this;
}

QBLMessageComponents::~QBLMessageComponents() { clearParms(); }

QBLMessageBase* QBLMessageComponents::clone() const {
    QBL_ALLOC_TRY
    return new QBLMessageComponents(*this);
    QBL_ALLOC_CATCH
}

const char* QBLMessageComponents::getClassName() const { return "QBLMessageComponents"; }

void QBLMessageComponents::format(const char* language, const char* fallbackLanguage,
                                  I18NString& out) const {
    writeElement(nullptr, language, fallbackLanguage, out, 0);
}

void QBLMessageComponents::toString(const char* language, const char* fallbackLanguage,
                                    I18NString& out, int flag) const {
    writeElement(nullptr, language, fallbackLanguage, out, flag);
}

void QBLMessageComponents::setMessage(QBLSeverity severity, unsigned long id) {
    setSeverity(severity);
    m_id = id;
}

QBLMessageComponents& QBLMessageComponents::operator<<(const QBLMessageParm& parm) {
    addParameter(parm);
    return *this;
}

void QBLMessageComponents::addParameter(const QBLMessageParm& parm) {
    QBL_ALLOC_TRY
    std::unique_ptr<QBLMessageParm> copy(parm.clone());
    m_parms.push_back(copy.get());
    static_cast<void>(copy.release());
    QBL_ALLOC_CATCH
}

const QBLMessageParm* QBLMessageComponents::getParmN(unsigned n) const {
    return n < m_parms.size() ? m_parms[n] : nullptr;
}

void QBLMessageComponents::clearParms() {
    for (const QBLMessageParm* parm : m_parms) delete parm;
    m_parms.clear();
}

void QBLMessageComponents::clear() {
    clearParms();
    m_id = 0;
}

void QBLMessageComponents::copyParms(const QBLMessageComponents& other) {
    if (this == &other) return;
    QBLMessageComponents copies(m_id);
    for (const QBLMessageParm* parm : other.m_parms) copies.addParameter(*parm);
    clearParms();
    while (!copies.m_parms.empty())
        m_parms.splice(m_parms.end(), copies.m_parms, copies.m_parms.begin());
}

void QBLMessageComponents::writeElement(const I18NString* file, const char* language,
                                        const char* fallbackLanguage, I18NString& out,
                                        int flag) const {
    openElement(file, out);
    if (flag != 0) {
        out.append("<MessageText>");
        format(language, fallbackLanguage, out);
        out.append("</MessageText>");
    } else {
        // Existing readers of these reports expect the two blanks.
        out.append("<MessageComponents  ID=\"");
        out.append(QBLNumberText::hex(static_cast<unsigned>(m_id)).c_str()).append("\" >");
        if (!m_parms.empty()) {
            out.append("<MessageParms>");
            for (const QBLMessageParm* parm : m_parms) parm->toString(language, out, 0);
            out.append("</MessageParms>");
        }
        out.append("</MessageComponents>");
    }
    out.append("</Message>");
}
