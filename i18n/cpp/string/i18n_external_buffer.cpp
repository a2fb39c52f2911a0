#include "i18n/cpp/i18n_external_buffer.h"

#include <climits>
#include <cstddef>
#include <cstring>

#include "TavThread/shared/TavContain.hpp"
#include "i18n/cpp/converter/i18n_encodings.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_error_codes.h"
#include "i18n/cpp/utf/i18n_utf.hpp"

namespace {

char16_t unitAt(const void* text, int i) {
    char16_t unit = 0;
    std::memcpy(&unit, static_cast<const char*>(text) + std::ptrdiff_t{i} * 2, sizeof unit);
    return unit;
}

/// The functions use at most this many units of a text, because the size with the NUL must fit an
/// int.
constexpr int kMostUnits = INT_MAX / 2 - 1;

/// Returns the number of units before the NUL, at most `most`.
int unitsOf(const void* text, int most = kMostUnits) {
    int length = 0;
    while (text != nullptr && length < most && unitAt(text, length) != 0) ++length;
    return length;
}

/// Writes units and a NUL to a place that may overlap the units.
void put(void* target, int at, const void* text, int units) {
    char* const out = static_cast<char*>(target) + std::ptrdiff_t{at} * 2;
    const auto bytes = static_cast<std::size_t>(units) * 2;
    std::memmove(out, text, bytes);
    std::memset(out + bytes, 0, 2);
}

bool accept(bool arguments, int* error) {
    if (error != nullptr) *error = arguments ? I18N_OK : I18N_ARGUMENT;
    return arguments;
}

int copyBounded(const void* from, int length, void* to, int size) {
    if (from == nullptr || to == nullptr || size < 2) return 0;
    const int room = size / 2 - 1;
    const int most = length >= 0 && length / 2 < room ? length / 2 : room;
    const int units = unitsOf(from, most);
    put(to, 0, from, units);
    return units * 2 + 2;
}

}  // namespace

void* I18NExternalBufferConcat(void* target, const void* text, int* error) {
    if (accept(target != nullptr && text != nullptr, error))
        put(target, unitsOf(target), text, unitsOf(text));
    return target;
}

void* I18NExternalBufferCopy(void* target, const void* text, int* error) {
    if (accept(target != nullptr && text != nullptr, error)) put(target, 0, text, unitsOf(text));
    return target;
}

int I18NExternalBufferNumBytes(const void* text, int* error) {
    return accept(text != nullptr, error) ? unitsOf(text) * 2 + 2 : 0;
}

int I18NExternalBufferNumCodePoints(const void* text, int* error) {
    accept(text != nullptr, error);
    return I18NCodeUnitsNumCodePoints(text);
}

void* I18NCodeUnitsConcat(void* target, const void* text) {
    return I18NExternalBufferConcat(target, text, nullptr);
}

void* I18NCodeUnitsCopy(void* target, const void* text) {
    static const char16_t kEmpty = 0;
    return I18NExternalBufferCopy(target, text != nullptr ? text : &kEmpty, nullptr);
}

int I18NCodeUnitsSize(const void* text) { return unitsOf(text) * 2; }

int I18NCodeUnitsNumBytes(const void* text) { return unitsOf(text) * 2 + 2; }

int I18NCodeUnitsLength(const void* text) { return unitsOf(text); }

int I18NCodeUnitsNumCodePoints(const void* text) {
    if (text == nullptr) return 0;
    const int units = unitsOf(text);
    int count = 0;
    for (int i = 0; i < units; ++i, ++count)
        if (i18nIsHigh(unitAt(text, i)) && i18nIsLow(unitAt(text, i + 1))) ++i;
    return count;
}

int I18NCodeUnitsNullSize(const char* encoding) {
    if (i18nKeepsASCII(encoding)) return 1;
    int size = 0;
    tavContain([&] { size = I18NConverter(encoding).sizeofLegacyNull(); });
    return size;
}

int I18NUTF16ToExternalBuffer(const void* text, int length, void* buffer, int size) {
    return copyBounded(text, length, buffer, size);
}

int I18NExternalBufferToUTF16(const void* buffer, int length, void* text, int size) {
    return copyBounded(buffer, length, text, size);
}

int i18n_compareUCharToChar(const void* text, const char* ascii) {
    for (int i = 0;; ++i) {
        const int unit = text != nullptr ? unitAt(text, i) : 0;
        const int byte = ascii != nullptr ? static_cast<unsigned char>(ascii[i]) : 0;
        if (unit != byte || unit == 0) return unit - byte;
    }
}

int i18n_compareCharToUChar(const char* ascii, const void* text) {
    return -i18n_compareUCharToChar(text, ascii);
}
