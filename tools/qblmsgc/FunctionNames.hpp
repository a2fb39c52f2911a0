#ifndef TOOLS_QBLMSGC_FUNCTIONNAMES_HPP
#define TOOLS_QBLMSGC_FUNCTIONNAMES_HPP

#include <set>
#include <string>
#include <vector>

namespace msgc {

/// Returns the name of a message's function: diskFull for DISK_FULL and DiskFull. A name that the
/// language or the header uses gets an underscore at its end.
std::string functionOf(const std::string& message);

/// Returns the numbers of the arguments that a comment describes, as in "{0} the path".
std::set<int> describedArguments(const std::string& comment);

/// Names the parameters of a function after a comment. If an argument's description is not a usable
/// or a unique name, the parameter is called arg0 and so on.
/// @param taken  other names that are not usable
std::vector<std::string> parameterNames(const std::vector<int>& numbers, const std::string& comment,
                                        const std::set<std::string>& taken);

}  // namespace msgc

#endif
