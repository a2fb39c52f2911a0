#ifndef QBLCORE_UTILITY_QBLUTGETOPT_HPP
#define QBLCORE_UTILITY_QBLUTGETOPT_HPP

#include <string>
#include <type_traits>

#include "QBLCore/Frame/QBLExport.h"

/// Takes the options of a command line apart: letters that follow one dash, alone or several in a
/// word, and words that follow two, which are handed back whole. Nothing is moved or written in the
/// words, and nothing is kept outside of the object.
///
/// Threads: one at a time for each object.
///
///     QBLUtGetOpt options;
///     const char* longOption = nullptr;
///     for (int c; (c = options.getOpt(argc, argv, "vo:", &longOption)) != -1 || longOption;) {
///         if (longOption) takeLong(longOption);       // --NAME, or --NAME=VALUE
///         else if (c == 'v') verbose = true;
///         else if (c == 'o') output = options.getOptArg();
///         else return 2;                              // 0: the message was printed
///     }
///     for (int i = options.getOptInd(); i < argc; ++i) takeFile(argv[i]);
class QBL_API QBLUtGetOpt {
public:
    /// @name Parsing
    /// @{

    QBLUtGetOpt();

    /// Takes the next option. The words must stay as they are from call to call.
    /// @param argc  number of the words, of which the first is the program's name; a null word is
    ///     the end too
    /// @param opts  the letters; one followed by a colon takes an argument: the rest of its word
    ///     or else the next one
    /// @param longOpt  receives what follows two dashes, as getLongOpt() has it, or null if that is
    ///     not what was found; may be null itself
    /// @return the letter, from 1 to 255; 0 after an error, after which parsing can go on; -1 for a
    ///     long option, and at the end: before a word that is no option, or behind "--"
    /// @throws QBLAssertError for null words or letters
    /// @throws QBLOutOfMemoryError
    int getOpt(int argc, char** argv, char* opts, const char** longOpt = nullptr);
    int getOpt(int argc, char** argv, const char* opts, const char** longOpt = nullptr) {
        return getOpt(argc, argv, const_cast<char*>(opts), longOpt);
    }
    /// @}

    /// @name Errors
    /// @{

    /// Notes an error, and writes it to standard error unless that is switched off. What is written
    /// has one percent sign where the message has two in a row.
    /// @param programName  null is an empty one
    /// @param kind  0: the letter is no option; else: it lacks its argument
    /// @throws QBLOutOfMemoryError
    void error(char* programName, int kind, char c);
    /// The same for a constant text, such as a literal.
    template <class Char, class = std::enable_if_t<std::is_same<Char, const char>::value>>
    void error(Char* programName, int kind, char c) {
        error(const_cast<char*>(programName), kind, c);
    }
    /// The last error; empty before the first. As long as the object, up to the next error.
    const char* getErrorMsg() const { return m_errorMsg.c_str(); }
    /// The letter that the last error is about, even where the message names another one; 0 before
    /// the first error.
    char getErrorLetter() const;
    /// Whether the last error was an option without its argument; false for a letter that is no
    /// option, and before the first error.
    bool isArgumentMissing() const;
    /// @}

    /// @name The last option
    /// @{

    /// The argument of the last option that takes one, part of the words; null before the first.
    char* getOptArg() const { return m_pOptArg; }
    /// The index of the word that is looked at next.
    int getOptInd() const { return m_iOptInd; }
    /// @param on  0 keeps errors off standard error
    /// @return what was set until now; 1 at first
    int setPrintErrors(int on);
    /// What followed the two dashes of the last long option, without them; empty before the first.
    /// As long as the object, up to the next one.
    const char* getLongOpt() const { return m_longOpt.c_str(); }
    /// @}

private:
    char* m_pOptArg;
    int m_iOptInd;
    int m_iPrintErrors;
    const char* m_pNextChar;  // the next letter of the cluster; null at its end
    std::string m_errorMsg;   // after the text and its zero: the letter, and the kind (0 or 1)
    std::string m_longOpt;
};

#endif
