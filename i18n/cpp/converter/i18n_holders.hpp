#ifndef I18N_CPP_CONVERTER_I18N_HOLDERS_HPP
#define I18N_CPP_CONVERTER_I18N_HOLDERS_HPP

#include <memory>

#include "i18n/cpp/i18n_converter_holders.hpp"

/// The prepared converters, all of them or none.
struct I18NHolders {
    std::unique_ptr<I18NConverterUTF8> utf8;
    std::unique_ptr<I18NConverterUTF16> utf16;
    std::unique_ptr<I18NConverterPlatformDefault> platformDefault;
};

/// Makes the prepared converters, once; after a failure there are none. They stay when the layer
/// stops, for a thread may be making a converter from one then.
/// Requires: the layer is not yet initialised, and no other thread starts or stops it.
/// @throws what the constructor of I18NConverter throws.
void i18nCreateConverters();
/// What I18NConverter::isInitialized() tells. Set last in the start, when the prepared converters
/// and the replacement tables are complete, and taken back first in the stop.
void i18nSetInitialized(bool initialized);

/// Requires: the layer is initialised.
const I18NHolders& i18nHolders();

#endif
