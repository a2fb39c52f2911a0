#ifndef QBLCORE_FILEMANAGEMENT_QBLFMDESCRIPTOR_HPP
#define QBLCORE_FILEMANAGEMENT_QBLFMDESCRIPTOR_HPP

#include "QBLCore/Frame/QBLLanguage.hpp"

/// The state of an open file in QBLFmFile and QBLFmFile64. Descriptor 0 stands for a closed file.
/// These classes therefore never open a file as descriptor 0; only standard input can have this
/// descriptor.
///
/// Threads: as for the file object that contains it.
struct QBLFmDescriptor {
    int m_iDescriptor = 0;
    int m_iStandard = 0;  ///< not 0 for a standard stream, which is never closed
    int m_iLastError = 0;

    bool isOpen() const { return m_iDescriptor != 0 || m_iStandard != 0; }
};

#endif
