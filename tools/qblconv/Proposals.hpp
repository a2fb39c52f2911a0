#ifndef TOOLS_QBLCONV_PROPOSALS_HPP
#define TOOLS_QBLCONV_PROPOSALS_HPP

#include <string>
#include <vector>

#include "tools/qblconv/Reading.hpp"

namespace conv {

/// An encoding that a text may be in.
struct Proposal {
    std::string name;
    int confidence;  // of ICU's detector, in percent
};

/// What ICU's detector takes a text for, the most probable first; each with the encoding that is
/// used for the same texts and that the detector does not tell from it. It sees some of the lines
/// with other bytes than ASCII. UTF-8 comes last, without a confidence, if it is mostly right; the
/// detector is not asked for that. None if the text cannot be read.
std::vector<Proposal> proposeEncodings(Passes& passes);

/// Whether one encoding of such a pair is the more usual one.
bool isMoreUsual(const std::string& name, const std::string& other);

}  // namespace conv

#endif
