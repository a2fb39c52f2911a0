#include "tools/common/Suggest.hpp"

#include <algorithm>
#include <vector>

namespace tools {

namespace {

constexpr std::size_t kLongest = 64;  // longest name that is compared

}  // namespace

std::string lettersOf(const std::string& name) {
    std::string letters;
    for (const char c : name) {
        if (c >= 'A' && c <= 'Z') letters += static_cast<char>(c - 'A' + 'a');
        if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) letters += c;
    }
    return letters;
}

std::size_t editDistance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> beforeLast(b.size() + 1), last(b.size() + 1), row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        beforeLast.swap(last);
        last.swap(row);
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const bool differ = a[i - 1] != b[j - 1];
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (differ ? 1 : 0)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
    }
    return row[b.size()];
}

Closest::Closest(const std::string& wrong)
    : m_wrong(lettersOf(wrong)), m_uDistance(std::max<std::size_t>(m_wrong.size() / 3, 1) + 1) {}

void Closest::offer(const char* name) {
    if (m_wrong.size() > kLongest) return;
    const std::string letters = lettersOf(name);
    // A beginning of a name counts as similar: users often abbreviate.
    const bool isBeginning = m_wrong.size() > 2 && letters.compare(0, m_wrong.size(), m_wrong) == 0;
    const std::size_t distance = isBeginning ? 1 : editDistance(m_wrong, letters);
    if (distance >= m_uDistance) return;
    m_uDistance = distance;
    m_found = name;
}

}  // namespace tools
