#ifndef TESTS_FAULTS_ROWS_HPP
#define TESTS_FAULTS_ROWS_HPP

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "tests/faults/Calls.hpp"
#include "tests/faults/Injector.hpp"

namespace faults {

/// Thrown by need(): the operation reported a failure by its result.
struct Refused {};

/// For operations that report by a result.
inline void need(bool done) {
    if (!done) throw Refused();
}

/// Runs code that must not fail, such as the preparation of a row or a look at its results.
template <class Code>
auto calmly(Code code) {
    const Calm calm;
    return code();
}

/// Thrown if an object is not what its class promises.
struct Broken {
    std::string what;
};

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

/// One operation, or a few that belong together.
struct Row {
    std::string name;   // Class.operation
    unsigned promises;  // a set of Promise
    /// Runs the operation and returns its result as text. The text must be the same for every run
    /// that succeeds, whether an allocation failed before or not.
    std::function<std::string()> run;
    /// What else the operation may do when a system call fails: a set of Promise.
    unsigned calls = kNothing;
};

std::vector<Row>& rows();

/// Adds the rows of a source to the table.
struct Rows {
    explicit Rows(std::initializer_list<Row> some) { rows().insert(rows().end(), some); }
};

}  // namespace faults

#endif
