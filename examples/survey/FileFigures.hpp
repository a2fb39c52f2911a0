#ifndef EXAMPLES_SURVEY_FILEFIGURES_HPP
#define EXAMPLES_SURVEY_FILEFIGURES_HPP

#include <cstdint>
#include <string>

/// Figures of a text file: the counts of wc, and the lengths of the lines.
struct FileFigures {
    static constexpr int kBuckets = 6;
    /// The longest line of each bucket except the last, in bytes without the line end.
    static constexpr std::uint64_t kBucketEnds[kBuckets - 1] = {0, 20, 40, 80, 120};

    std::uint64_t lines = 0;  ///< line ends
    std::uint64_t words = 0;  ///< runs of bytes that are not white space
    std::uint64_t bytes = 0;
    std::uint64_t longest = 0;
    std::uint64_t byLength[kBuckets] = {};

    FileFigures& operator+=(const FileFigures& other);
};

/// Reads a file to its end.
/// @throws QBLSystemError with the errno of the call that failed
FileFigures surveyFile(const std::string& path);

#endif
