#ifndef I18N_CPP_CONVERTER_I18N_HOLDERS_HPP
#define I18N_CPP_CONVERTER_I18N_HOLDERS_HPP

#include <memory>

#include "i18n/cpp/i18n_converter_holders.hpp"

/// The prepared converters: either all of them or none.
struct I18NHolders {
    std::unique_ptr<I18NConverterUTF8> utf8;
    std::unique_ptr<I18NConverterUTF16> utf16;
    std::unique_ptr<I18NConverterPlatformDefault> platformDefault;
};

/// Makes the prepared converters once; a failure leaves none. They stay when the layer stops,
/// because a thread may be copying one of them at that time. Requires: the layer is not yet
/// initialised, and no other thread starts or stops it.
/// @throws what the constructor of I18NConverter throws
void i18nCreateConverters();
/// Sets what I18NConverter::isInitialized() returns. The start of the layer sets it last, after the
/// prepared converters and the replacement tables are complete. The stop of the layer clears it
/// first.
void i18nSetInitialized(bool initialized);

/// Requires: the layer is initialised.
const I18NHolders& i18nHolders();

#endif
