#ifndef TESTS_FAULTS_ROWS_HPP
#define TESTS_FAULTS_ROWS_HPP

#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "i18n/cpp/i18n_string.hpp"
#include "tests/faults/Injector.hpp"
#include "tests/support/TempTree.hpp"

namespace fault {

/// Thrown by need(): the operation reported a failure by its result.
struct Refused {};

/// Thrown if an object is not what its class promises.
struct Broken {
    std::string what;
};

/// For operations that report by a result.
inline void need(bool done) {
    if (!done) throw Refused();
}
/// For operations whose failure sets errno to the error of what failed.
/// @param documented  another error number that the header names
void needErrno(bool done, int error, int documented = 0);
void needErrno(bool done);

/// Runs code that must not fail, such as the preparation of a row or a look at its results.
template <class Code>
auto calmly(Code code) {
    const Calm calm;
    return code();
}

/// Starts the library on the first call.
void start();
/// A directory that exists as long as the program runs.
const TempTree& tree();

/// Changes an object. If the change fails, the object must be as before.
/// @param print  returns everything that users can see of the object; throws Broken if an invariant
///     of the class does not hold
template <class Object, class Print, class Change>
std::string changed(Object& object, Print print, Change change) {
    const std::string before = calmly([&] { return print(object); });
    try {
        change(object);
    } catch (...) {
        const Calm calm;
        if (print(object) != before) throw Broken{"was " + before + ", is " + print(object)};
        throw;
    }
    return calmly([&] { return print(object); });
}

/// What an operation may throw when memory runs out.
enum Promise : unsigned {
    kOutOfMemory = 1,     // QBLOutOfMemoryError
    kBadAlloc = 2,        // std::bad_alloc
    kRefuses = 4,         // fails by its result
    kThreadResource = 8,  // QBLThreadResourceError
    kOther = 16,          // another throwable of the library, which the header names
    kFallback = 32,       // gives another result, as the header says
    kAbsence = 64,        // does so if the error says that something does not exist or is closed
    kNothing = 0          // cannot fail
};

inline std::string shown(const std::string& text) { return text; }
inline std::string shown(const I18NString& text) { return text.toUtf8(); }
inline std::string shown(const char* text) { return text != nullptr ? text : ""; }
inline std::string shown(long long number) { return std::to_string(number); }
template <class Range, class = decltype(std::declval<const Range&>().begin())>
std::string shown(const Range& range) {
    std::string all;
    for (const auto& each : range) all += shown(each) + "\n";
    return all;
}

/// The text of several results of calls whose order does not matter.
template <class... Results>
std::string together(const Results&... results) {
    const Calm calm;
    return ((shown(results) + ";") + ...);
}

/// One operation, or a few that belong together.
struct Row {
    std::string name;   // Class.operation
    unsigned promises;  // a set of Promise
    unsigned calls;     // what else it may do when a system call fails: a set of Promise
    std::function<std::string()> run;
};
std::vector<Row>& rows();

/// Adds a row.
/// @param operation  Returns nothing or a result that shown() takes. The result must be the same
///     for every run that succeeds, whether an allocation or a call failed before or not.
template <class Operation>
void add(const std::string& name, unsigned promises, unsigned calls, Operation operation) {
    rows().push_back({name, promises, calls, [operation] {
                          if constexpr (std::is_void_v<decltype(operation())>) {
                              operation();
                              return std::string();
                          } else {
                              const auto result = operation();
                              return calmly([&result] { return shown(result); });
                          }
                      }});
}
template <class Operation>
void add(const std::string& name, unsigned promises, Operation operation) {
    add(name, promises, kNothing, operation);
}

}  // namespace fault

#endif
