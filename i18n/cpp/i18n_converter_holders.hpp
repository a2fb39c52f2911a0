#ifndef I18N_CPP_I18N_CONVERTER_HOLDERS_HPP
#define I18N_CPP_I18N_CONVERTER_HOLDERS_HPP

#include "i18n/cpp/i18n_converter.hpp"

/// A prepared UTF-8 converter, from which other converters are copied. The constructor throws what
/// the constructor of I18NConverter throws.
///
/// Threads: any thread may copy the converter; no thread may change it.
class QBL_API I18NConverterUTF8 {
public:
    I18NConverterUTF8();
    ~I18NConverterUTF8();
    I18NConverterUTF8(const I18NConverterUTF8&) = delete;
    I18NConverterUTF8& operator=(const I18NConverterUTF8&) = delete;
    const I18NConverter& getConverter() const { return *m_pConverter; }

private:
    I18NConverter* m_pConverter;
};

/// A prepared converter for UTF-16 in the machine's byte order.
///
/// Threads: any thread may copy the converter; no thread may change it.
class QBL_API I18NConverterUTF16 {
public:
    I18NConverterUTF16();
    ~I18NConverterUTF16();
    I18NConverterUTF16(const I18NConverterUTF16&) = delete;
    I18NConverterUTF16& operator=(const I18NConverterUTF16&) = delete;
    const I18NConverter& getConverter() const { return *m_pConverter; }

private:
    I18NConverter* m_pConverter;
};

/// A prepared converter for I18NGetPlatformDefaultEncoding().
///
/// Threads: any thread may copy the converter; no thread may change it.
class QBL_API I18NConverterPlatformDefault {
public:
    I18NConverterPlatformDefault();
    ~I18NConverterPlatformDefault();
    I18NConverterPlatformDefault(const I18NConverterPlatformDefault&) = delete;
    I18NConverterPlatformDefault& operator=(const I18NConverterPlatformDefault&) = delete;
    const I18NConverter& getConverter() const { return *m_pConverter; }

private:
    I18NConverter* m_pConverter;
};

#endif
