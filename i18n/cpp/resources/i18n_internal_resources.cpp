#include "i18n/cpp/i18n_internal_resources.hpp"

#include <algorithm>
#include <cwchar>

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "i18n/cpp/locale/i18n_icu.hpp"
#include "i18n/cpp/resources/i18n_bin_dir.hpp"
#include "i18n/cpp/resources/i18n_internal_data.hpp"
#include "i18n/cpp/resources/i18n_settings_file.hpp"
#include "i18n/cpp/string/i18n_allocation.hpp"

namespace {

const char kResourceFile[] = "./i18n_res.xml";

/// The path of the resource file.
struct ResPath {
    QBLThreadCriticalSection lock{0};
    std::string path QBL_GUARDED_BY(lock) = std::string("$@") + kResourceFile;

    std::string get() {
        QBLThreadGuard guard(lock);
        return path;
    }
};

struct Instance : I18NInternalResources {};

/// Replaces "$@" at the beginning of a path by the share directory. Requires: the path begins with
/// "$@".
std::string inShareDirectory(const std::string& path) {
    std::string whole = i18nShareDirectory();
    QBLFmDir::joinPath(whole, path.c_str() + 2);
    return whole;
}

bool contains(const std::vector<char32_t>& sorted, char32_t codePoint) {
    return std::binary_search(sorted.begin(), sorted.end(), codePoint);
}

}  // namespace

I18NInternalResources::I18NInternalResources() : m_data(qblImmortal<Data>()) {}

I18NInternalResources& I18NInternalResources::getInternalResources() {
    QBL_ALLOC_TRY
    return qblImmortal<Instance>();
    I18N_ALLOC_CATCH
}

I18NInternalResources& I18NInternalResources::getInternalResForTesting() {
    return getInternalResources();
}

void I18NInternalResources::setDataDirectoryPath() {
    determineBinDir();
    i18nPrepareICU();
}

std::string I18NInternalResources::getDataDirectoryPath() {
    QBL_ALLOC_TRY
    return i18nBinDir();
    I18N_ALLOC_CATCH
}

// NOLINTNEXTLINE(bugprone-reserved-identifier): see the declaration
void I18NInternalResources::__changeResourceFileName(const char* name) {
    if (name == nullptr) return;
    QBL_ALLOC_TRY
    ResPath& resPath = qblImmortal<ResPath>();
    QBLThreadGuard guard(resPath.lock);
    const std::size_t at = resPath.path.find(kResourceFile);
    if (at != std::string::npos) resPath.path.replace(at, sizeof kResourceFile - 1, name);
    I18N_ALLOC_CATCH
}

void I18NInternalResources::loadSequenceTable() {
    QBL_ALLOC_TRY
    const std::string path = qblImmortal<ResPath>().get();
    bool seen = true;
    auto settings = i18nLoadSettings(i18nResolveBinDir(path), seen);
    if (settings == nullptr && seen) settings = i18nLoadSettings(inShareDirectory(path), seen);
    if (settings == nullptr) return;
    I18NSettings::publish(std::move(settings));
    m_data.replaceScaledZero = I18NSettings::now().replaceScaledZero;
    m_data.negativeZero = I18NSettings::now().negativeZero;
    I18N_ALLOC_CATCH
}

void I18NInternalResources::release() {
    I18NSettings::publish(nullptr);
    m_data.replaceScaledZero = false;
    m_data.negativeZero = false;
    {
        QBLThreadGuard guard(m_data.lock);
        m_data.xmlEntities.made.reset();
        m_data.urlEncoding.made.reset();
        m_data.locales.clear();
        m_data.timeZoneIDs.clear();
    }
    m_data.maps.clear();
}

float I18NInternalResources::getUTF8BytesPerCodePoints() const {
    return I18NSettings::now().utf8BytesPerCodePoint;
}

bool I18NInternalResources::isAllowReplaceScaledZero() const { return m_data.replaceScaledZero; }

void I18NInternalResources::setAllowReplaceScaledZero(bool allow) {
    m_data.replaceScaledZero = allow;
}

bool I18NInternalResources::isAllowNegativeZero() const { return m_data.negativeZero; }

void I18NInternalResources::setAllowNegativeZero(bool allow) { m_data.negativeZero = allow; }

bool I18NInternalResources::isNonNormalizable(const wchar_t* text) const {
    const std::vector<char32_t>& all = I18NSettings::now().nonNormalizable;
    if (text == nullptr || all.empty()) return false;
    return std::any_of(text, text + std::wcslen(text), [&all](wchar_t character) {
        return contains(all, static_cast<char32_t>(character));
    });
}

bool I18NInternalResources::isNonNormalizable(std::u16string_view text) const {
    return I18NSettings::now().isNonNormalizable(text);
}

char32_t I18NInternalResources::getJaSubstitution(char32_t codePoint) const {
    return I18NSettings::now().getJaSubstitution(codePoint);
}

bool I18NInternalResources::substituteJa(std::u16string& text) const {
    QBL_ALLOC_TRY
    return I18NSettings::now().substituteJa(text);
    I18N_ALLOC_CATCH
}
