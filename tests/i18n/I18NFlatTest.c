/* Calls the functions for buffers, converters, string handles and start-up from C. */
#include <stdlib.h>
#include <string.h>

#include "i18n/cpp/i18n_allocator.h"
#include "i18n/cpp/i18n_converter_c.h"
#include "i18n/cpp/i18n_external_buffer.h"
#include "i18n/cpp/i18n_init.h"
#include "i18n/cpp/i18n_platform_encoding.h"

#define CHECK(condition) \
    if (!(condition)) return __LINE__
/* Checks a call and the code that it stores in the variable error. */
#define GIVES(code, condition) CHECK((error = 77, condition) && error == (code))
#define RUNS(code, call) GIVES(code, (call, 1))

static const unsigned short kSmile[] = {'a', 0xD83D, 0xDE00, 0xD83D, 0};
static const unsigned short kTwice[] = {'a',    0xD83D, 0xDE00, 0xD83D, 'a',
                                        0xD83D, 0xDE00, 0xD83D, 0};

static int buffersFailed(void) {
    unsigned short text[16] = {0};
    int error;
    GIVES(0, I18NExternalBufferCopy(text, kSmile, &error) == text);
    GIVES(0, I18NExternalBufferConcat(text, text, &error) == text);
    CHECK(memcmp(text, kTwice, sizeof kTwice) == 0);
    GIVES(0, I18NExternalBufferCopy(text, text + 4, &error) == text);
    CHECK(memcmp(text, kSmile, sizeof kSmile) == 0);
    GIVES(0, I18NExternalBufferNumBytes(text, &error) == 10);
    GIVES(0, I18NExternalBufferNumCodePoints(text, &error) == 3);
    GIVES(-10, I18NExternalBufferCopy(text, 0, &error) == text);
    GIVES(-10, I18NExternalBufferConcat(0, text, &error) == 0);
    GIVES(-10, I18NExternalBufferNumBytes(0, &error) == 0);
    GIVES(-10, I18NExternalBufferNumCodePoints(0, &error) == 0);
    CHECK(I18NExternalBufferNumBytes(text, 0) == 10);

    CHECK(I18NCodeUnitsConcat(text, kSmile) == text && I18NCodeUnitsConcat(text, 0) == text);
    CHECK(memcmp(text, kTwice, sizeof kTwice) == 0);
    CHECK(I18NCodeUnitsSize(text) == 16 && I18NCodeUnitsNumBytes(text) == 18);
    CHECK(I18NCodeUnitsLength(text) == 8 && I18NCodeUnitsNumCodePoints(text) == 6);
    CHECK(I18NCodeUnitsCopy(text, kSmile) == text && I18NCodeUnitsLength(text) == 4);
    CHECK(I18NCodeUnitsCopy(text, 0) == text && I18NCodeUnitsLength(text) == 0);
    CHECK(I18NCodeUnitsSize(0) == 0 && I18NCodeUnitsNumBytes(0) == 2);
    CHECK(I18NCodeUnitsLength(0) == 0 && I18NCodeUnitsNumCodePoints(0) == 0);
    CHECK(I18NCodeUnitsNullSize(0) == 1 && I18NCodeUnitsNullSize("UTF-16") == 2);
    CHECK(I18NCodeUnitsNullSize("UTF-32") == 4 && I18NCodeUnitsNullSize("no such") == 0);
    return 0;
}

static int boundedCopiesFailed(void) {
    char bytes[12];
    unsigned short back[4];
    CHECK(I18NUTF16ToExternalBuffer(kSmile, -1, bytes + 1, 11) == 10);
    CHECK(memcmp(bytes + 1, kSmile, 10) == 0);
    CHECK(I18NExternalBufferToUTF16(bytes + 1, 5, back, 8) == 6);
    CHECK(memcmp(back, kSmile, 4) == 0 && back[2] == 0);
    CHECK(I18NExternalBufferToUTF16(bytes + 1, -1, back, 7) == 6 && back[2] == 0);
    CHECK(I18NUTF16ToExternalBuffer(kSmile, -1, bytes, 1) == 0);
    CHECK(I18NExternalBufferToUTF16(0, -1, back, 8) == 0);
    CHECK(i18n_compareUCharToChar(kSmile, "a") > 0 && i18n_compareCharToUChar("a", kSmile) < 0);
    CHECK(i18n_compareUCharToChar(kSmile, "b") < 0 && i18n_compareCharToUChar("b", kSmile) > 0);
    CHECK(i18n_compareUCharToChar(kSmile + 4, 0) == 0 && i18n_compareCharToUChar("", 0) == 0);
    return 0;
}

static int stringsFailed(I18NStringHandle string) {
    static const char kBytes[] = "\x93\xFA\x96\x7B!";
    I18NErrorCodes error;
    I18NConverterHandle c = 0;
    char* block = 0;
    int size = 0;
    GIVES(I18N_OK, (c = i18nConverterCreate("Shift_JIS", &error)) != 0);
    RUNS(I18N_OK, i18nConverterToUnicodeString(c, string, kBytes, -1, &error));
    RUNS(I18N_OK, i18nConverterFromUnicodeString(c, &block, &size, string, 0, 0, &error));
    CHECK(size == 6 && strcmp(block, kBytes) == 0);
    free(block);
    RUNS(I18N_ARGUMENT, i18nConverterFromUnicodeString(c, &block, &size, 0, 0, 0, &error));
    RUNS(I18N_ARGUMENT, i18nConverterToUnicodeString(c, 0, "a", -1, &error));
    RUNS(I18N_OK, i18nConverterFree(c, &error));
    return 0;
}

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

static int convertersFailed(void) {
    static const unsigned short kText[] = {'a', 0x4E00, 'b', 0};
    char bytes[8];
    unsigned short units[8];
    char* block = bytes;
    void* unitBlock = units;
    int size = 0;
    I18NErrorCodes error;
    I18NConverterHandle c = 0;
    GIVES(I18N_ENCODING, i18nConverterCreate("no such", &error) == 0);
    GIVES(I18N_OK, (c = i18nConverterCreate("US-ASCII", &error)) != 0);
    GIVES(I18N_OK, strcmp(i18nConverterGetEncoding(c, &error), "US-ASCII") == 0);
    GIVES(I18N_ARGUMENT, i18nConverterGetEncoding(0, &error) == 0);
    GIVES(I18N_ARGUMENT, i18nConverterSizeofLegacyNull(0, &error) == 0);

    RUNS(I18N_OK, i18nConverterSetBuiltInUnconvertibleInputSequenceCallback(c, I18N_STOP, &error));
    RUNS(I18N_OK, i18nConverterSetBuiltInUnconvertibleOutputSequenceCallback(c, I18N_STOP, &error));
    RUNS(I18N_CONVERSION, i18nConverterFromUnicode(c, bytes, 8, kText, &error));
    RUNS(I18N_CONVERSION, i18nConverterToUnicode(c, units, 16, "a\x80", -1, &error));
    RUNS(I18N_CONVERSION,
         i18nConverterFromUnicodeWithAllocator(c, &block, &size, kText, 0, 0, &error));
    RUNS(I18N_CONVERSION,
         i18nConverterToUnicodeWithAllocator(c, &unitBlock, &size, "\x80", 1, 0, 0, &error));
    CHECK(block == 0 && unitBlock == 0);

    RUNS(I18N_OK,
         i18nConverterSetUserDefinedUnconvertibleInputSequenceCallback(c, dropInput, &error));
    RUNS(I18N_OK,
         i18nConverterSetUserDefinedUnconvertibleOutputSequenceCallback(c, dropOutput, &error));
    RUNS(I18N_OK, i18nConverterFromUnicode(c, bytes, 8, kText, &error));
    RUNS(I18N_OK, i18nConverterToUnicode(c, units, 16, "x\x80", -1, &error));
    CHECK(strcmp(bytes, "ab") == 0 && units[0] == 'x' && units[1] == 0);
    RUNS(I18N_TOO_SMALL, i18nConverterFromUnicode(c, bytes, 2, kText, &error));
    RUNS(I18N_UNEXPECTED,
         i18nConverterFromUnicodeWithAllocator(c, &block, &size, kText, noMemory, 0, &error));
    RUNS(I18N_OK, i18nConverterFromUnicodeWithAllocator(c, &block, &size, kText, 0, 0, &error));
    CHECK(size == 3 && strcmp(block, "ab") == 0);
    RUNS(I18N_OK,
         i18nConverterToUnicodeWithAllocator(c, &unitBlock, &size, block, -1, 0, 0, &error));
    CHECK(size == 6);
    GIVES(I18N_ARGUMENT, I18N_STRINGBUFFER_ALLOCATOR_CALLBACK(0, block, -1, &error) == 0);
    GIVES(I18N_OK, I18N_STRINGBUFFER_ALLOCATOR_CALLBACK(0, block, 0, &error) == 0);
    free(unitBlock);

    GIVES(I18N_OK, i18nConverterNumLegacyBytes(c, 5, &error) == 6);
    GIVES(I18N_OK, i18nConverterNumLegacyCodePoints(c, 6, &error) == 5);
    GIVES(I18N_OK, i18nConverterNumUnicodeBytes(c, 5, &error) == 12);
    GIVES(I18N_OK, i18nConverterNumUnicodeCodePoints(c, 12, &error) == 5);
    GIVES(I18N_OK, i18nConverterSizeofLegacyNull(c, &error) == 1);
    GIVES(I18N_OK, i18nConverterSizeofUnicodeNull(c, &error) == 2);
    RUNS(I18N_OK, i18nConverterFree(c, &error));
    i18nConverterFree(0, 0);
    CHECK(strcmp(I18NGetPlatformDefaultEncoding(), I18NGetNormalizedPlatformDefaultEncoding()) ==
          0);
    CHECK(strcmp(I18NGetToolkitDefaultEncoding(), "UTF-8") == 0);
    return 0;
}

/* Returns 0, or the line of the first failed check. The string receives Japanese text. */
int i18nFlatFailedFromC(I18NStringHandle string);
int i18nFlatFailedFromC(I18NStringHandle string) {
    int failed = buffersFailed();
    if (failed == 0) failed = convertersFailed();
    if (failed == 0) failed = boundedCopiesFailed();
    I18NInitialize();
    if (failed == 0) failed = stringsFailed(string);
    I18NTerminate();
    return failed;
}
