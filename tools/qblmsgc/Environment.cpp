#include "tools/qblmsgc/Environment.hpp"

#include "tools/common/Environment.hpp"
#include "tools/qblmsgc/qblmsgcmsgs.hpp"

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

const tools::Catalogue& ownCatalogue() {
    static const tools::Catalogue kFound =
        tools::findCatalogue(qblmsgcmsgs::kCatalogue, userLocale());
    return kFound;
}

}  // namespace msgc
