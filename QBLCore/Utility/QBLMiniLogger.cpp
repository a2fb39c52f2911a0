#include "QBLCore/Utility/QBLMiniLogger.hpp"

#include <string>

#include "QBLCore/Base/QBLCloseQuietly.hpp"
#include "QBLCore/Base/QBLOpenRegular.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/Utility/QBLUtSystemInfo.hpp"
#include "TavThread/shared/TavContain.hpp"

namespace {

const char kName[] = "qbl";
const char kDirectory[] = "../logs/";

const char* orEmpty(const char* text) { return text != nullptr ? text : ""; }

/// Returns true if the name has no directory "..", so that the file is below the log directory.
bool staysBelow(const std::string& name) {
    return ('/' + name + '/').find("/../") == std::string::npos;
}

}  // namespace

QBLMiniLogger::QBLMiniLogger() : QBLMiniLogger(kName) {}

QBLMiniLogger::QBLMiniLogger(const char* name) : m_pStream(nullptr) {
    init(*orEmpty(name) != '\0' ? name : kName);
}

QBLMiniLogger::~QBLMiniLogger() {
    const QBLNoCancel noCancel;
    if (m_pStream != nullptr) std::fclose(m_pStream);
}

void QBLMiniLogger::init(const char* name) {
    if (m_pStream != nullptr) {
        const QBLNoCancel noCancel;  // a cancelled fclose(3) may have freed the stream or not
        std::fclose(m_pStream);
        m_pStream = nullptr;
    }
    tavContain([&] {
        const std::string file = std::string(orEmpty(name)) + ".log";
        if (!staysBelow(file)) return;
        std::string path = kDirectory + file;
        QBLFmDir::resolveEffectivePath(path);
        QBLFileStatus status;
        const int fd = qblOpenRegular(path.c_str(), O_RDWR | O_CREAT | O_APPEND, status, 0666);
        if (fd < 0) return;
        m_pStream = fdopen(fd, "a+");
        if (m_pStream == nullptr) qblCloseQuietly(fd);
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
