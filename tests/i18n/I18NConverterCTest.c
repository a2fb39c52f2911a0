/* Calls the flat interface of converters from C. */
#include <stdlib.h>
#include <string.h>

#include "i18n/cpp/i18n_converter_c.h"
#include "i18n/cpp/i18n_platform_encoding.h"

static void dropInput(const char* encoding, const char* bytes, int length, wchar_t* codePoints,
                      int* count, I18NErrorCodes* error) {
    (void)encoding, (void)bytes, (void)length, (void)codePoints, (void)error;
    *count = 0;
}

static void dropOutput(wchar_t codePoint, const char* encoding, char* bytes, int* count,
                       I18NErrorCodes* error) {
    (void)codePoint, (void)encoding, (void)bytes, (void)error;
    *count = 0;
}

static char* noMemory(void* context, char* block, int size, int* error) {
    (void)context, (void)block, (void)size;
    *error = -1;
    return 0;
}

#define CHECK(code, condition)                                \
    do {                                                      \
        error = (I18NErrorCodes)-2;                           \
        if (!(condition) || error != (code)) return __LINE__; \
    } while (0)
#define RUN(code, call) CHECK(code, ((call), 1))

/* Returns 0, or the line of the first failed check. */
int i18nConverterFailedFromC(void);
int i18nConverterFailedFromC(void) {
    static const unsigned short kText[] = {'a', 0x4E00, 'b', 0};
    char bytes[8];
    unsigned short units[8];
    char* block = bytes;
    void* unitBlock = units;
    int size = 0;
    I18NErrorCodes error;
    I18NConverterHandle c = 0;
    CHECK(I18N_ENCODING, i18nConverterCreate("no such", &error) == 0);
    CHECK(I18N_OK, (c = i18nConverterCreate("US-ASCII", &error)) != 0);
    CHECK(I18N_OK, strcmp(i18nConverterGetEncoding(c, &error), "US-ASCII") == 0);
    CHECK(I18N_ARGUMENT, i18nConverterGetEncoding(0, &error) == 0);
    CHECK(I18N_ARGUMENT, i18nConverterSizeofLegacyNull(0, &error) == 0);

    RUN(I18N_OK, i18nConverterSetBuiltInUnconvertibleInputSequenceCallback(c, I18N_STOP, &error));
    RUN(I18N_OK, i18nConverterSetBuiltInUnconvertibleOutputSequenceCallback(c, I18N_STOP, &error));
    CHECK(I18N_OK, i18nConverterGetBuiltInUnconvertibleInputSequenceCallback(c, &error) == 4);
    CHECK(I18N_OK, i18nConverterGetBuiltInUnconvertibleOutputSequenceCallback(c, &error) == 4);
    RUN(I18N_CONVERSION, i18nConverterFromUnicode(c, bytes, 8, kText, &error));
    RUN(I18N_CONVERSION, i18nConverterToUnicode(c, units, 16, "a\x80", -1, &error));
    RUN(I18N_CONVERSION,
        i18nConverterFromUnicodeWithAllocator(c, &block, &size, kText, 0, 0, &error));
    RUN(I18N_CONVERSION,
        i18nConverterToUnicodeWithAllocator(c, &unitBlock, &size, "\x80", 1, 0, 0, &error));
    if (block != 0 || unitBlock != 0) return __LINE__;

    RUN(I18N_OK,
        i18nConverterSetUserDefinedUnconvertibleInputSequenceCallback(c, dropInput, &error));
    RUN(I18N_OK,
        i18nConverterSetUserDefinedUnconvertibleOutputSequenceCallback(c, dropOutput, &error));
    CHECK(I18N_OK,
          i18nConverterGetUserDefinedUnconvertibleInputSequenceCallback(c, &error) == dropInput);
    CHECK(I18N_OK, i18nConverterGetUserDefinedInUnconvertibleOutputSequenceCallback(c, &error) ==
                       dropOutput);
    RUN(I18N_OK, i18nConverterFromUnicode(c, bytes, 8, kText, &error));
    RUN(I18N_OK, i18nConverterToUnicode(c, units, 16, "x\x80", -1, &error));
    if (strcmp(bytes, "ab") != 0 || units[0] != 'x' || units[1] != 0) return __LINE__;
    RUN(I18N_TOO_SMALL, i18nConverterFromUnicode(c, bytes, 2, kText, &error));
    RUN(I18N_UNEXPECTED,
        i18nConverterFromUnicodeWithAllocator(c, &block, &size, kText, noMemory, 0, &error));
    RUN(I18N_OK, i18nConverterFromUnicodeWithAllocator(c, &block, &size, kText, 0, 0, &error));
    if (size != 3 || strcmp(block, "ab") != 0) return __LINE__;
    RUN(I18N_OK,
        i18nConverterToUnicodeWithAllocator(c, &unitBlock, &size, block, -1, 0, 0, &error));
    if (size != 6) return __LINE__;
    free(block);
    free(unitBlock);

    CHECK(I18N_OK, i18nConverterNumLegacyBytes(c, 5, &error) == 6);
    CHECK(I18N_OK, i18nConverterNumLegacyCodePoints(c, 6, &error) == 5);
    CHECK(I18N_OK, i18nConverterNumUnicodeBytes(c, 5, &error) == 12);
    CHECK(I18N_OK, i18nConverterNumUnicodeCodePoints(c, 12, &error) == 5);
    CHECK(I18N_OK, i18nConverterSizeofLegacyNull(c, &error) == 1);
    CHECK(I18N_OK, i18nConverterSizeofUnicodeNull(c, &error) == 2);
    RUN(I18N_OK, i18nConverterFree(c, &error));
    i18nConverterFree(0, 0);
    return strcmp(I18NGetPlatformDefaultEncoding(), I18NGetNormalizedPlatformDefaultEncoding()) !=
               0 ||
           strcmp(I18NGetToolkitDefaultEncoding(), "UTF-8") != 0;
}
