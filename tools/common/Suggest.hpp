#ifndef TOOLS_COMMON_SUGGEST_HPP
#define TOOLS_COMMON_SUGGEST_HPP

#include <cstddef>
#include <string>

namespace tools {

/// Finds the offered name that is most similar to a wrong name. Compares only letters and digits,
/// and ignores case.
class Closest {
public:
    explicit Closest(const std::string& wrong);

    void offer(const char* name);
    /// Empty if no name is similar enough. At most a third of the letters may differ, but one
    /// different letter is always allowed. Finds nothing for names of more than 64 letters.
    const std::string& found() const { return m_found; }

private:
    std::string m_wrong;
    std::size_t m_uDistance;  // a name must be closer than this
    std::string m_found;
};

/// The letters and digits of a name, in lower case.
std::string lettersOf(const std::string& name);

/// The smallest number of edits that turn one text into the other. An edit inserts, removes or
/// replaces a letter, or swaps two neighbours.
std::size_t editDistance(const std::string& a, const std::string& b);

}  // namespace tools

#endif
