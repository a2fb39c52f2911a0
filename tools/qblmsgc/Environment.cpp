#include "tools/qblmsgc/Environment.hpp"

#include "tools/common/Environment.hpp"

namespace msgc {

const std::string& userLocale() {
    static const std::string locale = tools::environmentLocale();
    return locale;
}

const std::string& ownCatalogue() {
    static const std::string base = tools::findCatalogue("qblmsgcmsgs", userLocale());
    return base;
}

}  // namespace msgc
