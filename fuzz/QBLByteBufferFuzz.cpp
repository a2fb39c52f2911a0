// The byte buffer as a stream of commands, checked against std::string and the rules of growth
// after every one. The first byte says how the buffer grows, each command is two bytes.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "QBLCore/Types/QBLByteBuffer.hpp"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

const unsigned int kLongest = 20000;  // where nothing is appended any more

bool isSpace(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

/// A buffer and its model.
class Checked {
public:
    explicit Checked(unsigned int kind)
        : m_buffer(kind % 2 == 0 ? QBLByteBuffer::GROW_BY_BLOCK : QBLByteBuffer::GROW_BY_HALF,
                   kind / 2 % 8, kind / 16),
          m_block(kind % 2 != 0    ? 0
                  : kind / 16 != 0 ? kind / 16
                                   : 8),
          m_limit(m_block == 0 ? kind / 2 % 8 : roundedUp(kind / 2 % 8)),
          m_other(m_buffer),
          m_otherLimit(m_limit),
          m_otherBlock(m_block) {}

    void apply(unsigned int command, unsigned int operand) {
        const auto size = static_cast<unsigned int>(m_model.size());
        const char letter = static_cast<char>(operand);
        const unsigned int at = operand % (size + 1);
        const std::string text(operand, letter);
        switch (size > kLongest ? 9 + command % 4 : command % 18) {
            case 0:
                m_buffer << letter;
                append(std::string(1, letter));
                break;
            case 1:
                m_buffer << text.c_str();
                append(text.c_str());
                break;
            case 2:
                m_buffer.appendChars(text.data(), operand);
                append(text);
                break;
            case 3:  // a part of its own
                m_buffer.appendChars(m_buffer.str() + at, size - at);
                append(m_model.substr(at));
                break;
            case 4:
                m_buffer << m_buffer;
                append(m_model);
                break;
            case 5:
                appendNumbers(operand);
                break;
            case 6:
                print(std::string("<") + std::string(m_model.c_str()).substr(0, 600) + ">",
                      "<%.600s>", m_buffer.str());
                break;
            case 7:
                print(std::string(operand * 9, ' ') + "x", "%*s", static_cast<int>(operand * 9 + 1),
                      "x");
                break;
            case 8:
                require(m_buffer.getPrintfBufferSize() == m_printfRoom);
                m_buffer.setPrintfBufferSize(m_printfRoom = operand * 4);
                break;
            case 9:
                require(m_buffer.chop(operand * 8) == size - std::min(operand * 8, size));
                m_model.erase(0, std::min<std::size_t>(operand * 8, size));
                break;
            case 10:
                trim(operand);
                break;
            case 11:
                m_buffer.setLength(at);
                m_model.resize(at);
                break;
            case 12:
                m_buffer.reset();
                m_model.clear();
                break;
            case 13:
                m_buffer.reserve(operand * 16);
                grow(operand * 16);
                break;
            case 14:
                writeBehind(operand, letter);
                break;
            case 15:
                m_other = m_buffer;
                m_otherModel = m_model;
                m_otherLimit = m_limit;
                m_otherBlock = m_block;
                m_otherRoom = m_printfRoom;
                break;
            case 16:
                m_buffer = m_other;
                m_model = m_otherModel;
                m_limit = m_otherLimit;
                m_block = m_otherBlock;
                m_printfRoom = m_otherRoom;
                break;
            default:
                m_buffer = QBLByteBuffer(m_buffer);
        }
        compare();
    }

private:
    unsigned int roundedUp(unsigned int n) const { return (n + m_block) / m_block * m_block - 1; }

    void grow(std::size_t needed) {
        const auto n = static_cast<unsigned int>(needed);
        if (n <= m_limit) return;
        if (m_block != 0) {
            m_limit = roundedUp(n);
        } else {
            if (n / 3 < m_limit / 2) m_limit += m_limit / 2;
            if (m_limit < n) m_limit = n;
        }
    }

    void append(const std::string& text) {
        m_model += text;
        grow(m_model.size());
    }

    void appendNumbers(unsigned int operand) {
        const std::uint64_t bits = operand * 0x9E3779B97F4A7C15U >> operand % 64;
        const auto value = static_cast<long>(bits);
        const auto natural = static_cast<unsigned int>(bits);
        m_buffer << value << natural;
        append(std::to_string(value));
        append(std::to_string(natural));
    }

    template <class... Arguments>
    void print(const std::string& expected, const char* format, Arguments... arguments) {
        const int printed = m_buffer.printf(format, arguments...);
        require(printed == static_cast<int>(expected.size()));
        grow(m_model.size() + m_printfRoom);
        append(expected);
    }

    void trim(unsigned int which) {
        if (which % 3 != 0)
            while (!m_model.empty() && isSpace(m_model.front())) m_model.erase(0, 1);
        if (which % 3 != 1)
            while (!m_model.empty() && isSpace(m_model.back())) m_model.pop_back();
        const unsigned int count = which % 3 == 0   ? m_buffer.trimBack()
                                   : which % 3 == 1 ? m_buffer.trimFront()
                                                    : m_buffer.trim();
        require(count == m_model.size());
    }

    // As one would read(2) into the buffer.
    void writeBehind(unsigned int count, char letter) {
        m_buffer.reserve(static_cast<unsigned int>(m_model.size()) + count);
        grow(m_model.size() + count);
        std::memset(m_buffer.str() + m_model.size(), letter, count);
        m_model.append(count, letter);
        m_buffer.setLength(static_cast<unsigned int>(m_model.size()));
    }

    // What setLength() shows behind the content is defined, for MemorySanitizer and valgrind.
    void compare() {
        const auto count = static_cast<unsigned int>(m_model.size());
        require(m_buffer.pcount() == count);
        require(std::memcmp(m_buffer.str(), m_model.c_str(), count + 1) == 0);
        m_buffer.setLength(m_limit + 1);
        require(m_buffer.pcount() == count);
        m_buffer.setLength(m_limit);
        require(m_buffer.pcount() == m_limit);
        for (unsigned int i = count; i < m_limit; i += 61) m_seen += m_buffer.str()[i] != 0;
        m_buffer.setLength(count);
    }

    QBLByteBuffer m_buffer;
    unsigned int m_block;
    unsigned int m_limit;
    unsigned int m_printfRoom = 4096;
    unsigned int m_seen = 0;
    std::string m_model;

    QBLByteBuffer m_other;
    unsigned int m_otherLimit;
    unsigned int m_otherBlock;
    unsigned int m_otherRoom = 4096;
    std::string m_otherModel;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Checked checked(size != 0 ? data[0] : 0);
    for (std::size_t i = 1; i + 1 < size; i += 2) checked.apply(data[i], data[i + 1]);
    return 0;
}
