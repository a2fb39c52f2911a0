#include "tools/qblmsgc/Environment.hpp"

#include "tools/common/Environment.hpp"

namespace msgc {

namespace {

std::string& locale() {
    static std::string locale = tools::environmentLocale();
    return locale;
}

}  // namespace

const std::string& userLocale() { return locale(); }

void setUserLocale(const std::string& locales) {
    if (!locales.empty()) locale() = locales;
}

const std::string& ownCatalogue() {
    static const std::string base = tools::findCatalogue("qblmsgcmsgs", userLocale());
    return base;
}

}  // namespace msgc
