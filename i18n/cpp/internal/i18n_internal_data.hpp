#ifndef I18N_CPP_INTERNAL_I18N_INTERNAL_DATA_HPP
#define I18N_CPP_INTERNAL_I18N_INTERNAL_DATA_HPP

#include <atomic>

#include "i18n/cpp/i18n_internal_resources.hpp"
#include "i18n/cpp/internal/i18n_settings.hpp"

struct I18NInternalResources::Data {
    const I18NSettings& settings() const;

    /// Of loadSequenceTable(), null until then. Strings are normalised by any thread, also while
    /// the layer starts, so they find either nothing or all of it.
    std::atomic<const I18NSettings*> loaded{nullptr};
    std::atomic<bool> replaceScaledZero{false};
    std::atomic<bool> negativeZero{false};
};

#endif
