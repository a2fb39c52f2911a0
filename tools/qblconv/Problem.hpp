#ifndef TOOLS_QBLCONV_PROBLEM_HPP
#define TOOLS_QBLCONV_PROBLEM_HPP

#include <optional>

#include "tools/common/Shown.hpp"
#include "tools/qblconv/qblconvmsgs.hpp"

namespace conv {

/// A problem, as a message of the tool. An empty object means that there is no problem.
using Problem = std::optional<QBLTypedMessage>;

}  // namespace conv

#endif
