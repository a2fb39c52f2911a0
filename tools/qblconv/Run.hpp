#ifndef TOOLS_QBLCONV_RUN_HPP
#define TOOLS_QBLCONV_RUN_HPP

#include "tools/qblconv/Options.hpp"

namespace conv {

/// Exit statuses.
enum Status { kDone = 0, kFailed = 1, kNothingDone = 2 };

/// Runs a command line. Reports errors in the command line to the destination of the report.
Status run(int argc, char** argv);

}  // namespace conv

#endif
