#ifndef TOOLS_QBLMSGC_BMFBYTES_HPP
#define TOOLS_QBLMSGC_BMFBYTES_HPP

#include <string>
#include <string_view>
#include <vector>

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

/// A text of a message file, as part of the file's bytes.
struct BmfText {
    unsigned id;
    std::string_view text;  // UTF-8
};

/// Takes a binary message file apart, and trusts nothing in it.
/// @param texts  receives views of bytes, in the order of the identifiers; several can share bytes
/// @return false, with the reason in problem, if it is not a message file
bool readBmf(const std::string& bytes, std::vector<BmfText>& texts, BmfProblem& problem);

/// Whether the compiler would write these bytes for these texts of them.
bool isCanonicalBmf(const std::string& bytes, const std::vector<BmfText>& texts);

}  // namespace msgc

#endif
