#include "tools/qblmsgc/ArgumentType.hpp"

namespace msgc {

namespace {

bool isNumeric(ArgumentType type) {
    return type == ArgumentType::kInteger || type == ArgumentType::kNumber;
}

}  // namespace

bool joinType(ArgumentType& type, ArgumentType other) {
    if (type == other || other == ArgumentType::kPlain) return true;
    if (isNumeric(type) && isNumeric(other))
        type = ArgumentType::kInteger;
    else if (type == ArgumentType::kPlain)
        type = other;
    else
        return false;
    return true;
}

bool fitsType(ArgumentType passed, ArgumentType used) {
    if (passed == ArgumentType::kPlain) passed = ArgumentType::kText;
    return joinType(used, passed) && used == passed;
}

std::string patternOf(int number, ArgumentType type) {
    const char* const kEnds[] = {"}", ",select}", ",number,integer}", ",number}", ",date}"};
    return "{" + std::to_string(number) + kEnds[static_cast<int>(type)];
}

const char* classOf(ArgumentType type) {
    const char* const kClasses[] = {"QBLTypedText", "QBLTypedText", "QBLTypedInteger",
                                    "QBLTypedNumber", "QBLTypedDate"};
    return kClasses[static_cast<int>(type)];
}

}  // namespace msgc
