#ifndef QBLCORE_EXCEPTIONS_QBLFILELOCATION_HPP
#define QBLCORE_EXCEPTIONS_QBLFILELOCATION_HPP

#include "QBLCore/Frame/QBLLanguage.hpp"

/// A place in a source file. The file name is not owned; it is usually __FILE__.
///
/// Threads: any thread may read a place; changes are not synchronised.
class QBLFileLocation {
public:
    constexpr QBLFileLocation(const char* file, int line) : m_pFile(file), m_iLine(line) {}

    constexpr const char* getFile() const { return m_pFile; }
    constexpr int getLine() const { return m_iLine; }

private:
    const char* m_pFile;
    int m_iLine;
};

/// The place of this macro in the source.
#define QBL_HERE QBLFileLocation(__FILE__, __LINE__)

#endif
