#ifndef I18N_CPP_I18N_INTERNAL_RESOURCES_HPP
#define I18N_CPP_I18N_INTERNAL_RESOURCES_HPP

#include <string>
#include <string_view>

#include "QBLCore/Frame/QBLExport.h"
#include "i18n/cpp/i18n_error_codes.h"

/// What the resource file "i18n_res.xml" of the installation says, which is read while the
/// internationalisation layer starts. There is one object of this class in a process; before the
/// start and after the stop it has the defaults.
///
/// Threads: any thread may call any operation, but loadSequenceTable() and release(), which need
/// that nobody uses the resources meanwhile.
class QBL_API I18NInternalResources {
public:
    /// The process's one.
    static I18NInternalResources& getInternalResForTesting();

    I18NInternalResources(const I18NInternalResources&) = delete;
    I18NInternalResources& operator=(const I18NInternalResources&) = delete;

    /// Finds the installation's bin directory, and the first time that there is one names it to ICU
    /// as the place of its data. What ICU has built in comes first all the same.
    static void setDataDirectoryPath();
    /// The bin directory; empty if none was found.
    static std::string getDataDirectoryPath();
    /// Puts a name in the place of "./i18n_res.xml" in the path of the resource file, for the next
    /// loadSequenceTable(). Without effect when it is null or the path does not contain that.
    // NOLINTNEXTLINE(bugprone-reserved-identifier): programs know it under this name
    static void __changeResourceFileName(const char* name);
    /// Reads the resource file. One that cannot be opened is no error and changes nothing.
    /// @throws QBLOutOfMemoryError
    void loadSequenceTable();
    /// Drops all that was read, and goes back to the defaults.
    void release();

    /// What to reckon with when room is made for UTF-8; 2.5 unless the file says another number,
    /// 4 at most.
    float getUTF8BytesPerCodePoints() const;
    /// Whether number formats may replace zeros with a scale; false unless the file says so.
    bool isAllowReplaceScaledZero() const;
    void setAllowReplaceScaledZero(bool allow);
    /// Whether number formats may show a negative zero; false unless the file says so.
    bool isAllowNegativeZero() const;
    void setAllowNegativeZero(bool allow);

    /// Whether a text has a character that must not be normalised. Null has none.
    bool isNonNormalizable(const wchar_t* text) const;
    bool isNonNormalizable(std::u16string_view text) const;
    /// What Japanese text has in the place of a character; the character itself if nothing else.
    char32_t getJaSubstitution(char32_t codePoint) const;
    /// Makes the Japanese substitutions in a text. @return whether there were any.
    bool substituteJa(std::u16string& text) const;

    /// What stands for a character that an encoding does not have.
    /// @param bytes  receives the bytes, which belong to the resources; null without an entry
    /// @param length  receives their number; with an entry, 0 means that the character is dropped
    /// @param error  receives I18N_ARGUMENT for a null pointer, I18N_ENCODING for an unknown
    ///     encoding, else I18N_OK; may be null itself
    /// @return whether there is an entry.
    bool getReplacementSequence(const char* encoding, wchar_t character, unsigned char** bytes,
                                int* length, I18NErrorCodes* error) const;
    /// What stands for bytes that are not convertible.
    /// @param character  receives the character; U+FFFF without an entry
    bool getReplacementSequence(const char* encoding, unsigned char* bytes, int length,
                                wchar_t* character, I18NErrorCodes* error) const;

    /// Replaces the five named XML entities by their characters.
    static void transliterate(std::u16string& text);
    /// The icu::Transliterator that does the same, made by the first call and valid until the stop.
    /// @throws I18NRuntimeError, QBLOutOfMemoryError
    const void* getTransliterator();
    /// Its rules.
    static const char* getTransliterationData();
    /// Appends a text with the characters escaped that a URL must not hold.
    static void urlEncode(std::u16string_view text, std::u16string& out);
    /// The icu::Transliterator that does the same, made by the first call and valid until the stop.
    /// @throws I18NRuntimeError, QBLOutOfMemoryError
    const void* getURLEncodeTranslit();

protected:
    I18NInternalResources();
    ~I18NInternalResources() = default;  // there is always one

private:
    struct Data;

    Data& m_data;
};

#endif
