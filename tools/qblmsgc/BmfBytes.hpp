#ifndef TOOLS_QBLMSGC_BMFBYTES_HPP
#define TOOLS_QBLMSGC_BMFBYTES_HPP

#include <string>
#include <string_view>
#include <vector>

#include "tools/qblmsgc/Catalogue.hpp"
#include "tools/qblmsgc/qblmsgcmsgs.hpp"

namespace msgc {

/// The reason why bytes are not a valid message file.
struct BmfProblem {
    std::size_t offset;
    QBLTypedMessage (*reason)();
};

/// Returns true if the texts fit into a message file. Its offsets and lengths have only 32 bits.
bool fitsBmf(const Entries& entries);

/// Returns a message file in the format of QBLResourceBMF. The same texts give the same bytes, in
/// any order of entries.
/// @param shape  the catalogue's shape, or 0
/// Requires: fitsBmf(entries), and no duplicate identifiers.
std::string writeBmf(const Entries& entries, unsigned shape = 0);

/// A text of a message file, as a view of the file's bytes.
struct BmfText {
    unsigned id;
    std::string_view text;  // UTF-8
};

/// Parses a message file and validates everything in it.
/// @param texts  receives views of the bytes, by identifier; several texts may share bytes
/// @return false, with the reason in problem, if the bytes are not a message file
bool readBmf(const std::string& bytes, std::vector<BmfText>& texts, BmfProblem& problem);

/// Returns the shape in the header of a message file; 0 if the file was compiled without --typed.
unsigned shapeOfBmf(const std::string& bytes);

/// Returns true if the compiler would write exactly these bytes for these texts and this shape.
/// @param texts  views of the bytes
bool isCanonicalBmf(const std::string& bytes, const std::vector<BmfText>& texts);

}  // namespace msgc

#endif
