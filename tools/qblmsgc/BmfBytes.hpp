#ifndef TOOLS_QBLMSGC_BMFBYTES_HPP
#define TOOLS_QBLMSGC_BMFBYTES_HPP

#include <string>

#include "tools/qblmsgc/Catalogue.hpp"
#include "tools/qblmsgc/qblmsgcmsgs.hpp"

namespace msgc {

/// Why bytes are no message file that a source could have been compiled to.
struct BmfProblem {
    std::size_t offset;
    qblmsgcmsgs reason;
};

/// Whether the numbers of a binary message file can express the texts.
bool fitsBmf(const Entries& entries);

/// The bytes of a binary message file, the format of QBLResourceBMF: the same for the same texts,
/// in whatever order they come. Requires: fitsBmf(entries), and no identifier twice.
std::string writeBmf(const Entries& entries);

/// Takes a binary message file apart, and trusts nothing in it.
/// @param entries  receives identifiers and texts
/// @return false if it is none; problem then tells why
bool readBmf(const std::string& bytes, Entries& entries, BmfProblem& problem);

}  // namespace msgc

#endif
