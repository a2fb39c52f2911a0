#ifndef QBLCORE_UTILITY_QBLUTGETOPT_HPP
#define QBLCORE_UTILITY_QBLUTGETOPT_HPP

#include <string>
#include <type_traits>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// Parses the options of a command line. An option is a letter after one dash, or a long option
/// after two dashes. A word may contain several letters after its dash. A long option is returned
/// as a whole, with "=VALUE" if it has a value. The parser does not change or reorder the words,
/// and keeps no state outside the object.
///
/// Threads: one thread at a time for each object.
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

    /// Reads the next option. The words must not change between calls.
    /// @param argc  the number of words; the first word is the program's name. A null word also
    ///     ends the command line.
    /// @param opts  the letters. A letter followed by a colon takes an argument: the text after the
    ///     letter in the same word, or the next word if the letter is the last one of its word.
    /// @param longOpt  receives the text after two dashes, as getLongOpt() returns it, or null if
    ///     there is no long option; may be null
    /// @return the letter, from 1 to 255; 0 for an error, after which parsing can continue; -1 for
    ///     a long option and at the end of the options. The options end before the first word that
    ///     is not an option, or after "--".
    /// @throws QBLAssertError if argv or opts is null
    /// @throws QBLOutOfMemoryError
    int getOpt(int argc, char** argv, char* opts, const char** longOpt = nullptr);
    int getOpt(int argc, char** argv, const char* opts, const char** longOpt = nullptr) {
        return getOpt(argc, argv, const_cast<char*>(opts), longOpt);
    }
    /// @}

    /// @name Errors
    /// @{

    /// Stores an error message and prints it to standard error, unless setPrintErrors() has turned
    /// this off. "%%" in the message is printed as "%".
    /// @param programName  null stands for an empty name
    /// @param kind  0: the letter is not an option; any other number: its argument is missing
    /// @throws QBLOutOfMemoryError
    void error(char* programName, int kind, char c);
    /// Does the same for a constant program name, such as a literal.
    template <class Char, class = std::enable_if_t<std::is_same<Char, const char>::value>>
    void error(Char* programName, int kind, char c) {
        error(const_cast<char*>(programName), kind, c);
    }
    /// Returns the last error message; empty before the first error. Valid until the next error.
    const char* getErrorMsg() const { return m_errorMsg.c_str(); }
    /// Returns the letter that caused the last error; 0 before the first error. If an argument is
    /// missing, the message of getOpt() names the first letter of `opts` instead.
    char getErrorLetter() const;
    /// Returns true if the last error was a missing argument; false if the last error was a letter
    /// that is not an option, or if there was no error yet.
    bool isArgumentMissing() const;
    /// @}

    /// @name The last option
    /// @{

    /// Returns the argument of the last option that had one: a pointer into argv, or null before
    /// the first such option.
    char* getOptArg() const { return m_pOptArg; }
    /// Returns the index of the next word in argv.
    int getOptInd() const { return m_iOptInd; }
    /// Sets whether errors are printed to standard error.
    /// @param on  if 0, errors are not printed
    /// @return the previous setting; it is initially 1
    int setPrintErrors(int on);
    /// Returns the last long option without its two dashes; empty before the first long option.
    /// Valid until the next long option.
    const char* getLongOpt() const { return m_longOpt.c_str(); }
    /// @}

private:
    char* m_pOptArg;
    int m_iOptInd;
    int m_iPrintErrors;
    const char* m_pNextChar;  // the next letter of the current word; null at its end
    std::string m_errorMsg;   // after the text: a NUL, the letter, the kind (0 or 1)
    std::string m_longOpt;
};

#endif
