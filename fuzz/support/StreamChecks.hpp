#ifndef FUZZ_SUPPORT_STREAMCHECKS_HPP
#define FUZZ_SUPPORT_STREAMCHECKS_HPP

#include <unicode/ucnv.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "i18n/cpp/converter/i18n_converter_access.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_text_stream.hpp"

/// Compares text streams with ICU. A stream converts most characters by its own tables; ICU gets
/// the whole text at once.

/// The result of a conversion: the output, and each position where the policy was called, with the
/// bytes or the character.
struct StreamOutcome : I18NTextStreamListener {
    std::string output, findings;
    std::string source, told;  // of streams only: a line for each finding, then the end
    std::string encoding;      // of the input, as the stream names it

    void add(const void* data, std::size_t size) {
        output.append(static_cast<const char*>(data), size);
    }
    void take(const I18NTextStream& stream) {
        if (stream.getBytes() != nullptr) add(stream.getBytes(), stream.getByteCount());
        add(stream.getText(), stream.getTextLength() * sizeof(char16_t));
    }
    void found(std::int64_t at, const std::string& what) {
        findings += std::to_string(at) + ":" + what + "\n";
    }
    void unconvertible(const I18NUnconvertible& what) override {
        const char* const how = what.isBestFit ? " fit " : what.isCutOff ? " cut " : " ";
        std::ostringstream text;
        text << (what.isOutput ? "out" : "in") << how << what.byteOffset << " U+" << std::hex
             << what.codePoint + 0 << std::dec << " text " << what.textOffset << ", " << what.line
             << ":" << what.column << "\n";
        told += text.str();
        if (what.isOutput)
            return found(what.textOffset, std::to_string(static_cast<long>(what.codePoint)));
        const std::string bytes(what.bytes, static_cast<std::size_t>(what.byteCount));
        found(what.textOffset, bytes);
        if (source.compare(static_cast<std::size_t>(what.byteOffset), bytes.size(), bytes) != 0)
            told += findings += "these bytes are not at this place\n";
    }
    bool operator==(const StreamOutcome& other) const {
        return output == other.output && findings == other.findings;
    }
};

/// Converts a text in blocks, and uses the given block sizes in turn. The input is UTF-16 if `from`
/// is null, the output is UTF-16 if `to` is null.
template <class Unit>
StreamOutcome convertedByStream(const I18NConverter* from, const I18NConverter* to,
                                const std::basic_string<Unit>& text,
                                const std::vector<std::size_t>& sizes,
                                I18NByteOrderMark mark = I18N_MARK_KEEP) {
    StreamOutcome outcome;
    if (from != nullptr) outcome.source.assign(text.begin(), text.end());
    I18NTextStream stream(from, to, mark, &outcome);
    try {
        std::size_t turn = 0;
        for (std::size_t at = 0; at < text.size();) {
            const auto end = std::min(text.size(), at + sizes[turn++ % sizes.size()]);
            // A separate allocation, so that the address sanitizer detects reads past its end.
            const std::vector<Unit> block(text.begin() + static_cast<std::ptrdiff_t>(at),
                                          text.begin() + static_cast<std::ptrdiff_t>(end));
            stream.put(block.data(), block.size());
            outcome.take(stream);
            at = end;
        }
        stream.finish();
    } catch (I18NRuntimeError& error) {
        outcome.findings += "refused";
        outcome.told += error.getMessage();
    }
    outcome.take(stream);
    if (from != nullptr) outcome.encoding = stream.getInputEncoding();
    outcome.told += "\n" + std::to_string(stream.getReplacedInput()) + " and " +
                    std::to_string(stream.getReplacedOutput()) + ", " +
                    std::to_string(stream.getLine()) + ":" + std::to_string(stream.getColumn());
    return outcome;
}

/// Calls the policy of a converter, and records each call.
struct AskedByIcu {
    StreamOutcome outcome;
    std::u16string text;  // the source, or room for the output
    UConverterToUCallback toUnicode = nullptr;
    UConverterFromUCallback fromUnicode = nullptr;
    const void* context = nullptr;

    static void input(const void* self, UConverterToUnicodeArgs* args, const char* bytes,
                      int32_t length, UConverterCallbackReason reason, UErrorCode* status) {
        auto* const asked = static_cast<AskedByIcu*>(const_cast<void*>(self));
        if (reason <= UCNV_IRREGULAR)
            asked->outcome.found(args->target - asked->text.data(),
                                 std::string(bytes, static_cast<std::size_t>(length)));
        asked->toUnicode(asked->context, args, bytes, length, reason, status);
    }
    static void output(const void* self, UConverterFromUnicodeArgs* args, const UChar* units,
                       int32_t length, UChar32 codePoint, UConverterCallbackReason reason,
                       UErrorCode* status) {
        auto* const asked = static_cast<AskedByIcu*>(const_cast<void*>(self));
        if (reason <= UCNV_IRREGULAR)
            asked->outcome.found(args->source - asked->text.data() - length,
                                 std::to_string(codePoint));
        asked->fromUnicode(asked->context, args, units, length, codePoint, reason, status);
    }
};

inline StreamOutcome decodedByIcu(I18NConverter from, const std::string& bytes) {
    UConverter* const icu = I18NConverterAccess::icu(from);
    AskedByIcu asked;
    asked.text.resize(bytes.size() * 16 + 64);
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(icu, AskedByIcu::input, &asked, &asked.toUnicode, &asked.context, &status);
    const char* source = bytes.data();
    UChar* target = &asked.text[0];
    ucnv_toUnicode(icu, &target, target + asked.text.size(), &source, source + bytes.size(),
                   nullptr, true, &status);
    asked.outcome.add(asked.text.data(),
                      static_cast<std::size_t>(target - asked.text.data()) * sizeof(char16_t));
    if (U_FAILURE(status)) asked.outcome.findings += "refused";
    status = U_ZERO_ERROR;
    ucnv_setToUCallBack(icu, asked.toUnicode, asked.context, nullptr, nullptr, &status);
    return asked.outcome;
}

inline StreamOutcome encodedByIcu(I18NConverter to, const std::u16string& text) {
    UConverter* const icu = I18NConverterAccess::icu(to);
    ucnv_setFallback(icu, false);
    AskedByIcu asked;
    asked.text = text;
    std::string bytes(text.size() * 64 + 64, '\0');
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(icu, AskedByIcu::output, &asked, &asked.fromUnicode, &asked.context,
                          &status);
    const UChar* source = asked.text.data();
    char* target = &bytes[0];
    ucnv_fromUnicode(icu, &target, target + bytes.size(), &source, source + text.size(), nullptr,
                     true, &status);
    asked.outcome.add(bytes.data(), static_cast<std::size_t>(target - bytes.data()));
    if (U_FAILURE(status)) asked.outcome.findings += "refused";
    status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(icu, asked.fromUnicode, asked.context, nullptr, nullptr, &status);
    return asked.outcome;
}

/// Returns true for an encoding if ICU has the same results for a whole text and for its pieces,
/// and reports all bytes that are not convertible. These are US-ASCII, Latin-1, UTF-8, and the
/// single-byte and multi-byte encodings without shift states, except gsm, which has an escape
/// character for single characters.
inline bool dependsOnTextAlone(const I18NConverter& converter) {
    const UConverter* const icu = I18NConverterAccess::icu(converter);
    UErrorCode status = U_ZERO_ERROR;
    const UConverterType type = ucnv_getType(icu);
    return (type <= UCNV_MBCS || type == UCNV_LATIN_1 || type == UCNV_UTF8 ||
            type == UCNV_US_ASCII) &&
           std::string(ucnv_getName(icu, &status)).compare(0, 3, "gsm") != 0;
}

/// A stream applies the policy to private-use characters that do not survive a round trip, and ICU
/// does not.
inline std::u16string withoutPrivateUse(std::u16string text) {
    const auto isPrivate = [](char16_t unit) { return unit >= 0xE000 && unit < 0xF900; };
    text.erase(std::remove_if(text.begin(), text.end(), isPrivate), text.end());
    return text;
}

/// @return the direction in which a stream and ICU have different results; null if all results are
/// equal
inline const char* differenceFromIcu(const I18NConverter& converter, const std::string& bytes,
                                     const std::u16string& text,
                                     const std::vector<std::size_t>& sizes) {
    const StreamOutcome decoded = convertedByStream(&converter, nullptr, bytes, sizes);
    if (!(decoded == decodedByIcu(converter, bytes))) return "decoding";
    const std::u16string units = withoutPrivateUse(text);
    I18NConverter to(converter);
    to.useFallback(false);
    const StreamOutcome encoded = convertedByStream(nullptr, &to, units, sizes);
    return encoded == encodedByIcu(to, units) ? nullptr : "encoding";
}

#endif
