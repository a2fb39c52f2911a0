#include "QBLCore/Utility/QBLMiniLogger.hpp"

#include <string>

#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/FileManagement/internal/QBLFmNoCancel.hpp"
#include "QBLCore/Utility/QBLUtSystemInfo.hpp"
#include "TavThread/internal/TavContain.hpp"

namespace {

const char kName[] = "qbl";
const char kDirectory[] = "../logs/";

const char* orEmpty(const char* text) { return text != nullptr ? text : ""; }

}  // namespace

QBLMiniLogger::QBLMiniLogger() : QBLMiniLogger(kName) {}

QBLMiniLogger::QBLMiniLogger(const char* name) : m_pStream(nullptr) {
    init(*orEmpty(name) != '\0' ? name : kName);
}

QBLMiniLogger::~QBLMiniLogger() {
    const QBLFmNoCancel noCancel;
    if (m_pStream != nullptr) std::fclose(m_pStream);
}

void QBLMiniLogger::init(const char* name) {
    if (m_pStream != nullptr) std::fclose(m_pStream);
    m_pStream = nullptr;
    tavContain([&] {
        std::string path = std::string(kDirectory) + orEmpty(name) + ".log";
        QBLFmDir::resolveEffectivePath(path);
        m_pStream = fopen64(path.c_str(), "a+e");
    });
}

void QBLMiniLogger::log(const char* caption, const char* text) { write(caption, "Error", text); }

void QBLMiniLogger::logTrace(const char* caption, const char* text) {
    write(caption, "Trace", text);
}

void QBLMiniLogger::write(const char* caption, const char* kind, const char* text) {
    if (m_pStream == nullptr) return;
    tavContain([&] {
        const std::string stamp = QBLUtSystemInfo::getTimeStamp(1);
        std::fprintf(m_pStream, "%s\t%s %s\n<-\n%s\n->\n\n", stamp.c_str(), orEmpty(caption), kind,
                     orEmpty(text));
        std::fflush(m_pStream);
    });
}
