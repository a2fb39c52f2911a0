#ifndef TOOLS_COMMON_SUGGEST_HPP
#define TOOLS_COMMON_SUGGEST_HPP

#include <cstddef>
#include <string>

namespace tools {

/// Of names that are offered, the one that somebody who wrote another may have meant. Case,
/// hyphens and the like do not count.
class Closest {
public:
    explicit Closest(const std::string& wrong);

    void offer(const char* name);
    /// Empty if none is near enough: a third of the letters may be wrong, and one in any case; of
    /// 64 letters at most.
    const std::string& found() const { return m_found; }

private:
    std::string m_wrong;
    std::size_t m_uDistance;  // a name found is nearer
    std::string m_found;
};

/// The letters and digits of a name, in small letters.
std::string lettersOf(const std::string& name);

/// The least number of letters to be put in, left out, exchanged, or swapped with the next.
std::size_t editDistance(const std::string& a, const std::string& b);

}  // namespace tools

#endif
