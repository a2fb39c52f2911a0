#ifndef FUZZ_SUPPORT_CONVERTERCHECKS_HPP
#define FUZZ_SUPPORT_CONVERTERCHECKS_HPP

#include <cstring>
#include <memory>
#include <string>

#include "fuzz/support/Input.hpp"
#include "fuzz/support/StreamChecks.hpp"
#include "i18n/cpp/i18n_converter.hpp"

/// Converts with a converter: at once, or in pieces with the streaming form.
namespace converterchecks {

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

inline Converted resultOf(const StreamOutcome& outcome) {
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

inline Converted decoded(const I18NConverter& from, const std::string& bytes) {
    Converted result;
    take(result, 2, [&](void** block, int* size) {
        from.toUnicode(block, size, bytes.c_str(), static_cast<int>(bytes.size()));
    });
    return result;
}

inline Converted encoded(const I18NConverter& to, const std::u16string& text) {
    Converted result;
    take(result, to.sizeofLegacyNull(), [&](void** block, int* size) {
        to.fromUnicode(reinterpret_cast<char**>(block), size, text.c_str());
    });
    return result;
}

/// Converts a text in pieces, from and to odd addresses.
/// @param convert  calls the streaming form: destination, size, source, length, written, consumed
template <class Convert>
bool inPieces(const std::string& source, std::size_t piece, std::size_t room, int nullSize,
              std::string& output, const Convert& convert) {
    for (std::size_t at = 0; at < source.size();) {
        const std::string part = source.substr(at, piece);
        const std::unique_ptr<char[]> exact(new char[1 + part.size()]);
        std::memcpy(exact.get() + 1, part.data(), part.size());
        for (std::size_t done = 0;;) {
            const std::unique_ptr<char[]> destination(new char[1 + room]);
            int written = 0, consumed = 0;
            I18NErrorCodes error = I18N_OK;
            convert(destination.get() + 1, static_cast<int>(room), exact.get() + 1 + done,
                    static_cast<int>(part.size() - done), &written, &consumed, &error);
            if (error == I18N_CONVERSION) return false;
            require(error == I18N_OK || error == I18N_STREAM_FULL);
            require(written >= 0 && consumed >= 0);
            require(static_cast<std::size_t>(written) <= room);
            if (written > nullSize)
                output.append(destination.get() + 1, static_cast<std::size_t>(written - nullSize));
            done += static_cast<std::size_t>(consumed);
            require(done <= part.size());
            if (error == I18N_OK) break;
            require(written > nullSize || consumed > 0);
        }
        at += part.size();
    }
    return true;
}

/// The operation that also flushes the converter gets the last piece if it is shorter.
inline Converted decodedInPieces(I18NConverter from, const std::string& bytes, std::size_t piece,
                                 std::size_t room) {
    Converted result;
    const std::size_t most = bytes.size() - bytes.size() % piece;
    result.isRefused = !inPieces(bytes.substr(0, most), piece, room, 2, result.output,
                                 [&](char* to, int size, auto... rest) {
                                     from.toUnicodeStream(static_cast<void*>(to), size, rest...);
                                 });
    if (!result.isRefused)
        take(result, 2, [&](void** block, int* size) {
            from.toUnicode(block, size, &bytes[most], static_cast<int>(bytes.size() - most));
        });
    return result;
}

inline Converted encodedInPieces(const I18NConverter& original, const std::u16string& text,
                                 std::size_t piece, std::size_t room) {
    const I18NConverter to(original);
    Converted result;
    const std::size_t most = text.size() - text.size() % piece;
    const std::string units(reinterpret_cast<const char*>(text.data()), most * 2);
    result.isRefused =
        !inPieces(units, piece * 2, room, to.sizeofLegacyNull(), result.output,
                  [&](char* out, int size, const char* source, auto... rest) {
                      to.fromUnicodeStream(out, size, static_cast<const void*>(source), rest...);
                  });
    if (!result.isRefused)
        take(result, to.sizeofLegacyNull(), [&](void** block, int* size) {
            to.fromUnicode(reinterpret_cast<char**>(block), size, &text[most]);
        });
    return result;
}

}  // namespace converterchecks

#endif
