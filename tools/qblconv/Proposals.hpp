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

/// Returns the encodings that ICU's detector proposes, the most probable first. Some encodings form
/// pairs: they are used for the same texts, and the detector cannot distinguish them. After one
/// encoding of a pair comes the other one. The detector sees only a sample of the text. If the text
/// is mostly valid UTF-8, UTF-8 comes last, without a confidence; the detector's opinion on UTF-8
/// is ignored. Returns no encodings if the text cannot be read.
std::vector<Proposal> proposeEncodings(Passes& passes);

/// Returns true if the two names form such a pair and `name` is the more common encoding.
bool isMoreUsual(const std::string& name, const std::string& other);

}  // namespace conv

#endif
