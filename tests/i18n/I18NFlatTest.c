/* Calls the functions for buffers, string handles, memory and start-up from C. */
#include <string.h>

#include "i18n/cpp/i18n_allocator.h"
#include "i18n/cpp/i18n_converter_c.h"
#include "i18n/cpp/i18n_external_buffer.h"
#include "i18n/cpp/i18n_init.h"

#define CHECK(condition) \
    if (!(condition)) return __LINE__
/* Checks a call and the code that it stores in the variable error. */
#define GIVES(code, condition) CHECK((error = 77, condition) && error == (code))

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

static int memoryFailed(void) {
    int error;
    char* block = 0;
    GIVES(I18N_OK, (block = I18N_STRINGBUFFER_ALLOCATOR_CALLBACK(0, 0, 4, &error)) != 0);
    memcpy(block, "abc", 4);
    block = I18N_STRINGBUFFER_ALLOCATOR_CALLBACK(0, block, 100000, 0);
    CHECK(block != 0 && strcmp(block, "abc") == 0);
    GIVES(I18N_ARGUMENT, I18N_STRINGBUFFER_ALLOCATOR_CALLBACK(0, block, -1, &error) == 0);
    GIVES(I18N_OK, I18N_STRINGBUFFER_ALLOCATOR_CALLBACK(0, block, 0, &error) == 0);
    return 0;
}

static int stringsFailed(I18NStringHandle string) {
    I18NErrorCodes error = I18N_UNEXPECTED;
    I18NConverterHandle shiftJIS = i18nConverterCreate("Shift_JIS", &error);
    char* block = 0;
    int size = 0;
    CHECK(shiftJIS != 0 && error == I18N_OK);
    i18nConverterToUnicodeString(shiftJIS, string, "\x93\xFA\x96\x7B!", -1, &error);
    CHECK(error == I18N_OK);
    i18nConverterFromUnicodeString(shiftJIS, &block, &size, string, 0, 0, &error);
    CHECK(error == I18N_OK && size == 6 && strcmp(block, "\x93\xFA\x96\x7B!") == 0);
    I18N_STRINGBUFFER_ALLOCATOR_CALLBACK(0, block, 0, 0);
    i18nConverterFromUnicodeString(shiftJIS, &block, &size, 0, 0, 0, &error);
    CHECK(error == I18N_ARGUMENT);
    i18nConverterToUnicodeString(shiftJIS, 0, "a", -1, &error);
    CHECK(error == I18N_ARGUMENT);
    i18nConverterFree(shiftJIS, &error);
    CHECK(error == I18N_OK);
    return 0;
}

/* Returns 0, or the line of the first failed check. The string receives Japanese text. */
int i18nFlatFailedFromC(I18NStringHandle string);
int i18nFlatFailedFromC(I18NStringHandle string) {
    int failed = buffersFailed();
    if (failed == 0) failed = boundedCopiesFailed();
    if (failed == 0) failed = memoryFailed();
    I18NInitialize();
    if (failed == 0) failed = stringsFailed(string);
    I18NTerminate();
    return failed;
}
