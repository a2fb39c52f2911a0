#include "QBLCore/Utility/QBLUtGetOpt.hpp"

#include <cstdio>
#include <cstring>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"

namespace {

const char kNotValid[] = "' not a valid option\n";
const char kNeedsArgument[] = "' option requires an argument\n";

}  // namespace

QBLUtGetOpt::QBLUtGetOpt()
    : m_pOptArg(nullptr), m_iOptInd(1), m_iPrintErrors(1), m_pNextChar(nullptr) {}

int QBLUtGetOpt::getOpt(int argc, char** argv, char* opts, const char** longOpt) {
    QBL_ASSERT(argv);
    QBL_ASSERT(opts);
    if (longOpt != nullptr) *longOpt = nullptr;
    if (m_pNextChar == nullptr) {
        if (m_iOptInd >= argc) return -1;
        const char* const word = argv[m_iOptInd];
        if (word == nullptr || word[0] != '-' || word[1] == '\0') return -1;
        if (word[1] == '-') {
            if (word[2] != '\0') {
                QBL_ALLOC_TRY
                m_longOpt = word + 2;
                QBL_ALLOC_CATCH
                if (longOpt != nullptr) *longOpt = m_longOpt.c_str();
            }
            ++m_iOptInd;
            return -1;
        }
        ++m_iOptInd;
        m_pNextChar = word + 1;
    }
    const char letter = *m_pNextChar;
    const char* const rest = m_pNextChar + 1;
    m_pNextChar = *rest != '\0' ? rest : nullptr;
    const char* const option = std::strchr(opts, letter);
    if (option == nullptr) {
        error(argv[0], 0, letter);
        return 0;
    }
    if (option[1] == ':') {
        if (m_pNextChar != nullptr) {
            m_pOptArg = const_cast<char*>(rest);
            m_pNextChar = nullptr;
        } else if (m_iOptInd < argc && argv[m_iOptInd] != nullptr) {
            m_pOptArg = argv[m_iOptInd++];
        } else {
            error(argv[0], 1, opts[0]);  // deliberately not `letter`
            m_errorMsg[m_errorMsg.size() - 2] = letter;
            return 0;
        }
    }
    return static_cast<unsigned char>(letter);
}

void QBLUtGetOpt::error(char* programName, int kind, char c) {
    QBL_ALLOC_TRY
    std::string message = "\n";
    if (programName != nullptr) message += programName;
    message.append(" : '").append(1, c).append(kind == 0 ? kNotValid : kNeedsArgument);
    message.append({'\0', c, static_cast<char>(kind != 0)});
    m_errorMsg.swap(message);
    if (m_iPrintErrors == 0) return;
    // Prints "%%" as "%", as printf() does, but prints all other conversions unchanged.
    message = m_errorMsg;
    for (std::size_t at = 0; (at = message.find("%%", at)) != std::string::npos; ++at)
        message.erase(at, 1);
    std::fputs(message.c_str(), stderr);
    QBL_ALLOC_CATCH
}

char QBLUtGetOpt::getErrorLetter() const {
    return m_errorMsg.empty() ? '\0' : m_errorMsg[m_errorMsg.size() - 2];
}

bool QBLUtGetOpt::isArgumentMissing() const {
    return !m_errorMsg.empty() && m_errorMsg.back() != 0;
}

int QBLUtGetOpt::setPrintErrors(int on) {
    const int before = m_iPrintErrors;
    m_iPrintErrors = on;
    return before;
}
