#ifndef TOOLS_QBLMSGC_ARGUMENTTYPE_HPP
#define TOOLS_QBLMSGC_ARGUMENTTYPE_HPP

#include <map>
#include <string>

namespace msgc {

/// What a pattern does with an argument. A plain argument, "{0}", can show a value of any type.
enum class ArgumentType { kPlain, kText, kInteger, kNumber, kDate };

/// The arguments of a pattern, by their numbers.
using ArgumentTypes = std::map<int, ArgumentType>;

/// Adds another use of the same argument. A number that is also used as an integer is an integer.
/// @return false, with the type unchanged, if no value fits both uses
bool joinType(ArgumentType& type, ArgumentType other);

/// Returns true if every value of a type that a program passes can be used as another type.
bool fitsType(ArgumentType passed, ArgumentType used);

/// Writes an argument as in a pattern, such as "{0,number}".
std::string patternOf(int number, ArgumentType type);

/// Returns the class of the library for arguments of a type. Plain arguments are texts.
const char* classOf(ArgumentType type);

}  // namespace msgc

#endif
