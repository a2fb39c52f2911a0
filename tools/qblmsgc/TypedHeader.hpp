#ifndef TOOLS_QBLMSGC_TYPEDHEADER_HPP
#define TOOLS_QBLMSGC_TYPEDHEADER_HPP

#include <string>

#include "tools/qblmsgc/Catalogue.hpp"

namespace msgc {

/// A catalogue as a typed header describes it.
struct TypedCatalogue {
    std::string base;  // base name of the message files
    unsigned shape;    // 0 for a header without functions
};

/// Returns a namespace with the catalogue and one function for each message.
/// @param entries  messages with names, in the order of the header
std::string typedFunctions(const Entries& entries, const std::string& space,
                           const TypedCatalogue& catalogue);

}  // namespace msgc

#endif
