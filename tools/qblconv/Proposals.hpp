#ifndef TOOLS_QBLCONV_PROPOSALS_HPP
#define TOOLS_QBLCONV_PROPOSALS_HPP

#include <string>
#include <vector>

#include "tools/qblconv/Reading.hpp"

namespace conv {

/// An encoding that a text may have.
struct Proposal {
    std::string name;
    int confidence;  // of ICU's detector, in percent
};

/// Returns the encodings that ICU's detector proposes, most probable first. After each one comes
/// the encoding that is used for the same texts and that the detector cannot distinguish from it.
/// The detector sees a sample of the lines with non-ASCII bytes. UTF-8 comes last, without a
/// confidence, if the text is mostly valid UTF-8; the detector's opinion on UTF-8 is ignored.
/// Returns none if the text cannot be read.
std::vector<Proposal> proposeEncodings(Passes& passes);

/// Returns true if name is the more common encoding of such a pair.
bool isMoreUsual(const std::string& name, const std::string& other);

}  // namespace conv

#endif
