#ifndef TESTS_FAULTS_ATTEMPT_HPP
#define TESTS_FAULTS_ATTEMPT_HPP

#include <string>

#include "tests/faults/Rows.hpp"

namespace faults {

struct Outcome {
    bool done = false;
    unsigned promise = kNothing;
    std::string text;     // the result, or the error
    long long error = 0;  // the error number of a QBLSystemError
};

/// Runs a row.
Outcome attempt(const Row& row);

/// Adds a test for each hook and each disaster.
void registerCallTests();

}  // namespace faults

#endif
