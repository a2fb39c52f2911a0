#ifndef TOOLS_QBLCONV_PROBLEM_HPP
#define TOOLS_QBLCONV_PROBLEM_HPP

#include <optional>

#include "tools/common/Shown.hpp"
#include "tools/qblconv/qblconvmsgs.hpp"

namespace conv {

/// A problem, as a message of the tool; empty if there is none.
using Problem = std::optional<QBLTypedMessage>;

}  // namespace conv

#endif
