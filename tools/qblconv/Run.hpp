#ifndef TOOLS_QBLCONV_RUN_HPP
#define TOOLS_QBLCONV_RUN_HPP

#include "tools/qblconv/Options.hpp"

namespace conv {

/// Exit statuses.
enum Status { kDone = 0, kFailed = 1, kNothingDone = 2 };

/// Does what a command line asks for. What has to be said of the command line itself goes where
/// the report would have gone.
Status run(int argc, char** argv);

}  // namespace conv

#endif
