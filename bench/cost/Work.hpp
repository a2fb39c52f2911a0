#ifndef BENCH_COST_WORK_HPP
#define BENCH_COST_WORK_HPP

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace cost {

/// Counts the work of pieces of code: the instructions that the calling thread executes outside of
/// the kernel. If the system does not allow this, counts blocks and bytes instead: 64 for each
/// block that operator new allocates, 1 for each 8 bytes in it, and 1 for each 8 bytes that are
/// copied. That is less exact: code that searches without copying counts as no work.
///
/// The program replaces memcpy(), memmove() and memset() by loops, because the C library's
/// functions copy a large block with one instruction.
class Work {
public:
    /// Counts the work of one operation of a row.
    template <class Code>
    void of(const std::string& name, const Code& code) {
        const std::uint64_t before = now();
        code();
        const std::uint64_t count = now() - before;
        m_counts.push_back({name, count});
    }
    struct Count {
        std::string name;
        std::uint64_t count;
    };
    const std::vector<Count>& counts() const { return m_counts; }
    /// Returns true if instructions are counted.
    static bool isExact();

private:
    static std::uint64_t now();

    std::vector<Count> m_counts;
};

/// How work grows with the length n of the input.
enum class Order { kLinear, kLinearLog, kQuadratic };

/// Operations whose work grows alike.
struct Row {
    const char* name;
    Order order;
    std::size_t first;  // the shortest input
    /// Makes inputs of length n, and counts the work of each operation for them.
    void (*run)(std::size_t n, Work& work);
};

std::vector<Row>& rows();

/// Adds the rows of a source to the table.
struct Rows {
    Rows(std::initializer_list<Row> some) { rows().insert(rows().end(), some); }
};

/// Repeats a piece until the text has a length, or is a little longer.
inline std::string repeated(const std::string& piece, std::size_t length) {
    std::string text;
    while (text.size() < length) text += piece;
    return text;
}

/// Keeps a result, so that the compiler does not remove the operation.
template <class Value>
void use(const Value& value) {
    asm volatile("" : : "g"(&value) : "memory");
}

}  // namespace cost

#endif
