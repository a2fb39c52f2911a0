#include "QBLCore/Messages/QBLMessageFile.hpp"

#include <memory>
#include <string>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Messages/internal/QBLMessagePattern.hpp"
#include "QBLCore/Resources/QBLResourceFile.hpp"

/// An open file, with the name and the locales that it was opened for.
struct QBLMessageFile::Open {
    QBLResourceFile file{1};
    I18NString name;
    std::string locale;
    std::unique_ptr<QBLMessagePattern> pattern;
};

QBLMessageFile::QBLMessageFile() : m_pOpen(nullptr) {}

QBLMessageFile::QBLMessageFile(const I18NString& file) : QBLMessage(file), m_pOpen(nullptr) {}

QBLMessageFile::QBLMessageFile(const char* file) : QBLMessage(file), m_pOpen(nullptr) {}

QBLMessageFile::QBLMessageFile(const I18NString& file, unsigned long id)
    : QBLMessage(file, id), m_pOpen(nullptr) {}

QBLMessageFile::QBLMessageFile(const char* file, unsigned long id)
    : QBLMessage(file, id), m_pOpen(nullptr) {}

QBLMessageFile::QBLMessageFile(QBLSeverity severity, const I18NString& file, unsigned long id)
    : QBLMessage(severity, file, id), m_pOpen(nullptr) {}

QBLMessageFile::QBLMessageFile(QBLSeverity severity, const char* file, unsigned long id)
    : QBLMessage(severity, file, id), m_pOpen(nullptr) {}

QBLMessageFile::QBLMessageFile(const QBLMessageFile& other) : QBLMessage(other), m_pOpen(nullptr) {}

QBLMessageFile& QBLMessageFile::operator=(const QBLMessageFile& other) {
    if (this == &other) return *this;
    QBLMessage::operator=(other);
    close();
    return *this;
}

QBLMessageFile::~QBLMessageFile() { close(); }

QBLMessageBase* QBLMessageFile::clone() const {
    QBL_ALLOC_TRY
    return new QBLMessageFile(*this);
    QBL_ALLOC_CATCH
}

const char* QBLMessageFile::getClassName() const { return "QBLMessageFile"; }

void QBLMessageFile::format(const char* language, const char* fallbackLanguage,
                            I18NString& out) const {
    const char* locale = chooseLocale(language, fallbackLanguage);
    QBL_ALLOC_TRY
    if (m_pOpen == nullptr || m_pOpen->locale != locale || m_pOpen->name != getMsgFile()) {
        auto open = std::make_unique<Open>();
        open->name = getMsgFile();
        open->locale = locale;
        // Each call searches for a missing file again, because the file may have been installed
        // since the last call.
        const bool opened = open->file.open(open->name.toUtf8(), locale);
        delete m_pOpen;
        m_pOpen = opened ? open.release() : nullptr;
    }
    QBL_ALLOC_CATCH
    if (m_pOpen == nullptr || !formatFrom(m_pOpen->file, locale, m_pOpen->pattern, out))
        writeElement(&getMsgFile(), language, fallbackLanguage, out, 0);
}

void QBLMessageFile::setMsgFile(const I18NString& file) {
    QBLMessage::setMsgFile(file);
    close();
}

void QBLMessageFile::close() {
    delete m_pOpen;
    m_pOpen = nullptr;
}
