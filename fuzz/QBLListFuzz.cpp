// Reads the input as commands on a list and compares the list with a std::deque after each command.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <deque>

#include "QBLCore/Frame/QBLList.hpp"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

/// A list and its model. Each command uses the same position in both.
class Checked {
public:
    void apply(unsigned int command, unsigned int operand) {
        const unsigned int size = m_list.size();
        const unsigned int at = size != 0 ? operand % size : 0;
        QBLList<unsigned int>::iterator it = m_list.begin();
        if (size != 0) require(it[at] == m_model[at]);
        switch (command % 8) {
            case 0:
                m_list.push_back(operand);
                m_model.push_back(operand);
                break;
            case 1:
                m_list.push_front(operand);
                m_model.push_front(operand);
                break;
            case 2:
                it = m_list.insert(it, operand);
                m_model.insert(m_model.begin() + at, operand);
                require(size == 0 || *it == m_model[at + 1]);
                break;
            case 3:
                it = m_list.erase(it);
                if (size != 0) m_model.erase(m_model.begin() + at);
                require(at == m_model.size() ? it == m_list.end() : *it == m_model[at]);
                break;
            case 4:
                m_list.pop_front();
                if (size != 0) m_model.pop_front();
                break;
            case 5:
                m_list.pop_back();
                if (size != 0) m_model.pop_back();
                break;
            case 6:
                eraseRange(at, operand / 7 % (size + 1));
                break;
            default:
                m_uWalk += operand % 3 == 0 ? -1U : 1U;
                return compareAt((operand % 4 == 0 ? operand : m_uWalk) % (size + 2));
        }
        if (m_list.size() != size) m_uCursor = 0;
        require(m_list.size() == m_model.size() && m_list.empty() == m_model.empty());
        if (!m_model.empty()) {
            require(m_list.front() == m_model.front() && m_list.back() == m_model.back());
        }
    }

    void compare() {
        unsigned int n = 0;
        for (unsigned int value : m_list) require(value == m_model[n++]);
        require(n == m_model.size());
        for (auto it = m_list.end(); it != m_list.begin();) require(*--it == m_model[--n]);
    }

private:
    // An index past the end returns the value at the cursor, which the ends do not move.
    void compareAt(unsigned int n) {
        const unsigned int size = m_list.size();
        if (n != 0 && n + 1 < size) m_uCursor = n;
        require(m_list.at(n) == (size == 0 ? 0 : m_model[n < size ? n : m_uCursor]));
    }

    // Erases up to the end if last is before first.
    void eraseRange(unsigned int first, unsigned int last) {
        QBLList<unsigned int>::iterator from = m_list.begin(), to = m_list.end();
        for (unsigned int i = 0; i < first; ++i) ++from;
        if (last < m_list.size()) {
            to = m_list.begin();
            for (unsigned int i = 0; i < last; ++i) ++to;
        }
        m_list.erase(from, to);
        const auto begin = m_model.begin();
        m_model.erase(begin + first, last < first ? m_model.end() : begin + last);
    }

    QBLList<unsigned int> m_list;
    std::deque<unsigned int> m_model;
    unsigned int m_uCursor = 0;
    unsigned int m_uWalk = 0;  // steps of one, up and down
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Checked checked;
    for (; size >= 2; data += 2, size -= 2) checked.apply(data[0], data[1]);
    checked.compare();
    return 0;
}
