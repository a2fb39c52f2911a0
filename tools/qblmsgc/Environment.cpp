#include "tools/qblmsgc/Environment.hpp"

#include "tools/common/Environment.hpp"

namespace msgc {

namespace {

std::string& locale() {
    static std::string s_locale = tools::environmentLocale();
    return s_locale;
}

}  // namespace

const std::string& userLocale() { return locale(); }

void setUserLocale(const std::string& locales) {
    if (!locales.empty()) locale() = locales;
}

const std::string& ownCatalogue() {
    static const std::string kBase = tools::findCatalogue("qblmsgcmsgs", userLocale());
    return kBase;
}

}  // namespace msgc
