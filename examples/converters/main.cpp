// The code samples of docs/converters.md.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_converter_c.h"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_text_stream.hpp"

namespace {

const char* const kPolicies[] = {"escape", "lookup", "substitute", "user-defined", "stop"};

// Prints ASCII bytes as they are and other bytes in hexadecimal.
void print(const char* what, const char* bytes, std::size_t size) {
    std::printf("%-13s", what);
    for (std::size_t i = 0; i < size; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        std::printf(byte >= 0x20 && byte < 0x7F ? "%c" : "<%02X>", byte);
    }
    std::printf("\n");
}

extern "C" {
void nameBytes(const char*, const char*, int length, wchar_t* codePoints, int* count,
               I18NErrorCodes*) {
    codePoints[(*count)++] = L'?';
    codePoints[(*count)++] = L'0' + length;
}

void nameCharacter(wchar_t, const char*, char* bytes, int* count, I18NErrorCodes*) {
    bytes[0] = '#';
    *count = 1;
}
}

void setPolicy(I18NConverter& converter, int policy) {
    if (policy == I18N_USER_DEFINED) {
        converter.setUserDefinedUnconvertibleInputSequenceCallback(nameBytes);
        converter.setUserDefinedUnconvertibleOutputSequenceCallback(nameCharacter);
    } else {
        converter.setBuiltInUnconvertibleInputSequenceCallback(policy);
        converter.setBuiltInUnconvertibleOutputSequenceCallback(policy);
    }
}

void policies() {
    I18NConverter shiftJIS("Shift_JIS"), utf8("UTF-8");
    for (int policy = I18N_ESCAPE; policy <= I18N_STOP; ++policy) {
        setPolicy(shiftJIS, policy);
        char bytes[40];
        I18NErrorCodes error;
        shiftJIS.fromUnicode(bytes, sizeof bytes, u"a\u00FF\u3042z", &error);
        if (error == I18N_OK) print(kPolicies[policy], bytes, std::string(bytes).size());
        if (error != I18N_OK) std::printf("%-13serror %d\n", kPolicies[policy], error);
    }
    for (int policy = I18N_ESCAPE; policy <= I18N_STOP; ++policy) {
        setPolicy(shiftJIS, policy);
        char16_t text[40];
        char bytes[80];
        I18NErrorCodes error;
        shiftJIS.toUnicode(text, sizeof text, "a\x85\xA0\x82\xA0z", -1, &error);
        if (error == I18N_OK) {
            utf8.fromUnicode(bytes, sizeof bytes, text);
            print(kPolicies[policy], bytes, std::string(bytes).size());
        } else {
            std::printf("%-13serror %d\n", kPolicies[policy], error);
        }
    }
}

void pieces() {
    I18NConverter shiftJIS("Shift_JIS");
    char16_t text[8];
    int written, consumed;
    shiftJIS.toUnicodeStream(text, sizeof text, "a\x82", 2, &written, &consumed);
    std::printf("%d bytes written, %d consumed\n", written, consumed);
    shiftJIS.toUnicode(text, sizeof text, "\xA0", 1);  // the last piece
    std::printf("U+%04X\n", static_cast<unsigned>(text[0]));
}

struct Print : I18NTextStreamListener {
    void unconvertible(const I18NUnconvertible& what) override {
        if (what.isOutput)
            std::printf("line %lld, column %lld: U+%04lX\n", static_cast<long long>(what.line),
                        static_cast<long long>(what.column),
                        static_cast<unsigned long>(what.codePoint));
        else
            std::printf("line %lld, column %lld, byte %lld, length %d\n",
                        static_cast<long long>(what.line), static_cast<long long>(what.column),
                        static_cast<long long>(what.byteOffset), what.byteCount);
    }
};

void stream() {
    I18NConverter from("UTF-8"), to("ISO-8859-1");
    to.setBuiltInUnconvertibleOutputSequenceCallback(I18N_ESCAPE);
    Print listener;
    I18NTextStream stream(&from, &to, I18N_MARK_CHOOSE_AND_STRIP, &listener);
    std::string latin1;
    for (const char* block :
         {"\xEF\xBB", "\xBF\xC3\xA9\r\n", "a\xE2\x82", "\xAC\xFF", "\xE2\x82"}) {
        stream.put(block, std::string(block).size());
        latin1.append(stream.getBytes(), stream.getByteCount());
    }
    stream.finish();
    latin1.append(stream.getBytes(), stream.getByteCount());
    print(stream.getInputEncoding(), latin1.data(), latin1.size());

    from.setBuiltInUnconvertibleInputSequenceCallback(I18N_STOP);
    I18NTextStream strict(&from, nullptr);
    try {
        strict.put("\na\xE3\x81z", 5);
    } catch (I18NRuntimeError& e) {
        std::printf("%ld %s\n", e.getErrorCode(), e.getMessage());
        std::printf("%zu units before it\n", strict.getTextLength());
    }
}

void flat() {
    I18NErrorCodes error;
    I18NConverterHandle converter = i18nConverterCreate("windows-1252", &error);
    char bytes[8];
    i18nConverterFromUnicode(converter, bytes, sizeof bytes, u"\u20AC 5", &error);
    print("windows-1252", bytes, 3);
    i18nConverterFree(converter, &error);
    i18nConverterCreate("no-such", &error);
    std::printf("error %d\n", error);
}

void surprises() {
    const I18NConverter utf8("UTF-8");
    char bytes[4];
    int written, consumed;
    I18NErrorCodes error;
    utf8.fromUnicode(bytes, 0, u"abc", &error);
    std::printf("size 0: %d\n", error);
    utf8.fromUnicode(bytes, 1, u"abc", &error);
    std::printf("size 1: %d \"%s\"\n", error, bytes);
    utf8.fromUnicode(bytes, 3, u"abc", &error);
    std::printf("size 3: %d \"%s\"\n", error, bytes);
    utf8.fromUnicodeStream(bytes, 2, u"\u00E9", 2, &written, &consumed, &error);
    std::printf("stream: %d, written %d, consumed %d\n", error, written, consumed);
    utf8.fromUnicodeStream(bytes, 2, u"", 0, &written, &consumed, &error);
    std::printf("rest:   %d, written %d, consumed %d\n", error, written, consumed);
    I18NConverter ascii("us-ascii");
    ascii.fromUnicode(bytes, sizeof bytes, u"\u4E00", &error);
    std::printf("policy %d, <%02X>\n", ascii.getBuiltInUnconvertibleOutputSequenceCallback(),
                static_cast<unsigned char>(bytes[0]));
}

}  // namespace

int main() {
    policies();
    pieces();
    stream();
    flat();
    surprises();
    return EXIT_SUCCESS;
}
