// Converts the input with a converter of any encoding under any policy, and compares the result
// with that of ICU for the whole text. If the encoding has no states, also converts the text in
// pieces with the streaming form, into small destinations. The first bytes select the encoding, the
// policy and the sizes.
#include <cstring>
#include <memory>
#include <string>

#include "QBLCore/Frame/QBLCore.h"
#include "fuzz/support/Input.hpp"
#include "fuzz/support/StreamChecks.hpp"
#include "i18n/cpp/i18n_encoding_names.h"
#include "i18n/cpp/i18n_init.h"

namespace {

struct Free {
    void operator()(void* block) const { std::free(block); }
};

/// The result of a conversion.
struct Converted {
    std::string output;
    bool isRefused = false;

    bool operator==(const Converted& other) const {
        return isRefused == other.isRefused && (isRefused || output == other.output);
    }
};

Converted resultOf(const StreamOutcome& outcome) {
    Converted result;
    result.output = outcome.output;
    const std::string refused = "refused";
    result.isRefused = outcome.findings.size() >= refused.size() &&
                       outcome.findings.compare(outcome.findings.size() - refused.size(),
                                                refused.size(), refused) == 0;
    return result;
}

/// Calls an operation that gives a block, and appends the block without its NUL.
template <class Operation>
void take(Converted& result, int nullSize, const Operation& operation) {
    void* block = nullptr;
    int size = 0;
    try {
        operation(&block, &size);
    } catch (const I18NRuntimeError& error) {
        require(error.getErrorCode() == I18N_CONVERSION && block == nullptr);
        result.isRefused = true;
        return;
    }
    const std::unique_ptr<void, Free> owned(block);
    if (block != nullptr)
        result.output.append(static_cast<const char*>(block),
                             static_cast<std::size_t>(size - nullSize));
}

Converted decoded(const I18NConverter& from, const std::string& bytes) {
    Converted result;
    take(result, 2, [&](void** block, int* size) {
        from.toUnicode(block, size, bytes.c_str(), static_cast<int>(bytes.size()));
    });
    return result;
}

Converted encoded(const I18NConverter& to, const std::u16string& text) {
    Converted result;
    take(result, to.sizeofLegacyNull(), [&](void** block, int* size) {
        to.fromUnicode(reinterpret_cast<char**>(block), size, text.c_str());
    });
    return result;
}

/// Converts a text in pieces.
/// @param convert  calls the streaming form: destination, size, source, length, written, consumed
template <class Convert>
bool inPieces(const std::string& source, std::size_t piece, std::size_t room, int nullSize,
              std::string& output, const Convert& convert) {
    for (std::size_t at = 0; at < source.size();) {
        const std::string part = source.substr(at, piece);
        const std::unique_ptr<char[]> exact(new char[part.size()]);
        std::memcpy(exact.get(), part.data(), part.size());
        for (std::size_t done = 0;;) {
            const std::unique_ptr<char[]> destination(new char[room]);
            int written = 0, consumed = 0;
            I18NErrorCodes error = I18N_OK;
            convert(destination.get(), static_cast<int>(room), exact.get() + done,
                    static_cast<int>(part.size() - done), &written, &consumed, &error);
            if (error == I18N_CONVERSION) return false;
            require(error == I18N_OK || error == I18N_STREAM_FULL);
            require(written >= 0 && consumed >= 0);
            require(static_cast<std::size_t>(written) <= room);
            if (written > nullSize)
                output.append(destination.get(), static_cast<std::size_t>(written - nullSize));
            done += static_cast<std::size_t>(consumed);
            require(done <= part.size());
            if (error == I18N_OK) break;
            if (written <= nullSize) room *= 2;
        }
        at += part.size();
    }
    return true;
}

Converted decodedInPieces(I18NConverter from, const std::string& bytes, std::size_t piece,
                          std::size_t room) {
    Converted result;
    result.isRefused =
        !inPieces(bytes, piece, room, 2, result.output, [&](char* to, int size, auto... rest) {
            from.toUnicodeStream(static_cast<void*>(to), size, rest...);
        });
    if (!result.isRefused)
        take(result, 2, [&](void** block, int* size) { from.toUnicode(block, size, "", 0); });
    return result;
}

Converted encodedInPieces(const I18NConverter& original, const std::u16string& text,
                          std::size_t piece, std::size_t room) {
    const I18NConverter to(original);
    Converted result;
    const std::string units(reinterpret_cast<const char*>(text.data()), text.size() * 2);
    result.isRefused =
        !inPieces(units, piece * 2, room, to.sizeofLegacyNull(), result.output,
                  [&](char* out, int size, const char* source, auto... rest) {
                      to.fromUnicodeStream(out, size, static_cast<const void*>(source), rest...);
                  });
    if (!result.isRefused)
        take(result, to.sizeofLegacyNull(), [&](void** block, int* size) {
            to.fromUnicode(reinterpret_cast<char**>(block), size, u"");
        });
    return result;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    qblCoreInitialize();
    I18NInitialize();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const unsigned number = input.byte() + (input.byte() % 2) * 256;
    I18NConverter converter(
        I18NGetEncodingName(static_cast<int>(number) % I18NCountEncodings(), 0));
    const int policy = static_cast<int>(input.below(I18N_STOP + 1));
    converter.setBuiltInUnconvertibleInputSequenceCallback(policy);
    converter.setBuiltInUnconvertibleOutputSequenceCallback(policy);
    converter.useFallback(false);
    const std::size_t piece = 1 + input.below(16), room = 8 + input.below(64);
    const std::string bytes = input.rest();
    std::u16string text(bytes.size() / sizeof(char16_t), u'\0');
    std::memcpy(&text[0], bytes.data(), text.size() * sizeof(char16_t));
    text.erase(std::remove(text.begin(), text.end(), u'\0'), text.end());

    const Converted wholeText = resultOf(decodedByIcu(converter, bytes));
    require(decoded(converter, bytes) == wholeText);
    const Converted wholeBytes = resultOf(encodedByIcu(converter, text));
    require(encoded(converter, text) == wholeBytes);
    if (!dependsOnTextAlone(converter)) return 0;
    require(decodedInPieces(converter, bytes, piece, room) == wholeText);
    require(encodedInPieces(converter, text, piece, room) == wholeBytes);
    return 0;
}
