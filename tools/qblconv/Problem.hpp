#ifndef TOOLS_QBLCONV_PROBLEM_HPP
#define TOOLS_QBLCONV_PROBLEM_HPP

#include "tools/common/MessageText.hpp"
#include "tools/qblconv/qblconvmsgs.hpp"

namespace conv {

using tools::Details;

/// A problem, as a message of the tool.
struct Problem {
    qblconvmsgs id;
    Details details;
};

}  // namespace conv

#endif
