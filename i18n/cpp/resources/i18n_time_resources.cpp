#include <cstring>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "i18n/cpp/resources/i18n_internal_data.hpp"

namespace {

struct Zone {
    int offset;  // in hours
    const char* abbreviation;
    const char* id;
};
constexpr Zone kZones[] = {{-5, "EST", "US/Eastern"},
                           {-6, "CST", "America/Chicago"},
                           {-7, "MST", "US/Mountain"},
                           {-8, "PST", "America/Los_Angeles"},
                           {-10, "HST", "Pacific/Honolulu"}};

}  // namespace

bool I18NInternalResources::getTimeZoneDescription(const char* zone, const I18NLocale& locale,
                                                   std::u16string& description) {
    QBL_ALLOC_TRY
    return m_data.find(kI18NTimeZones, locale, zone, description);
    QBL_ALLOC_CATCH
}

const char* const* I18NInternalResources::getTimeZoneIDs(int& count) {
    QBL_ALLOC_TRY
    const I18NResourceMap& zones = m_data.maps.get(kI18NTimeZones, i18nEnglish());
    QBLThreadGuard guard(m_data.lock);
    if (m_data.timeZoneIDs.empty()) {
        std::vector<const char*> all;
        for (const auto& zone : zones) all.push_back(zone.first.c_str());
        m_data.timeZoneIDs.swap(all);
    }
    count = static_cast<int>(m_data.timeZoneIDs.size());
    return m_data.timeZoneIDs.data();
    QBL_ALLOC_CATCH
}

const char* I18NInternalResources::getFallbackTimeZoneID(int offset) {
    for (const Zone& zone : kZones)
        if (zone.offset == offset) return zone.id;
    return nullptr;
}

const char* I18NInternalResources::getCompatibilityTimeZoneID(const char* id) {
    for (const Zone& zone : kZones)
        if (id != nullptr && std::strcmp(zone.abbreviation, id) == 0) return zone.id;
    return id;
}

const I18NResourceMap& I18NInternalResources::getTimePeriodResources(const I18NLocale& locale) {
    QBL_ALLOC_TRY
    return m_data.maps.get(kI18NTimePeriods, locale);
    QBL_ALLOC_CATCH
}

const I18NResourceMap& I18NInternalResources::getTimeZoneResources(const I18NLocale& locale) {
    QBL_ALLOC_TRY
    return m_data.maps.get(kI18NTimeZones, locale);
    QBL_ALLOC_CATCH
}
