// Reads the input as commands on a byte buffer. After each command, compares the buffer with a
// std::string and its capacity with the rules of growth. The first byte selects how the buffer
// grows; each command has two bytes.
#include <malloc.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>

#include "QBLCore/Types/QBLByteBuffer.hpp"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

const unsigned int kLongest = 20000;  // longer buffers get no command that appends

bool isSpace(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

/// The expected contents, capacity and settings of a buffer.
struct Model {
    explicit Model(unsigned int kind)
        : block(kind % 2 != 0    ? 0
                : kind / 16 != 0 ? kind / 16
                                 : 8),
          limit(block == 0 ? kind / 2 % 8 : roundedUp(kind / 2 % 8)) {}

    unsigned int roundedUp(unsigned int n) const { return (n + block) / block * block - 1; }

    void grow(std::size_t needed) {
        const auto n = static_cast<unsigned int>(needed);
        if (n <= limit) return;
        if (block != 0) {
            limit = roundedUp(n);
        } else {
            if (n / 3 < limit / 2) limit += limit / 2;
            if (limit < n) limit = n;
        }
    }

    void append(const std::string& more) {
        text += more;
        grow(text.size());
    }

    template <class Integer>
    void appendInteger(Integer value) {
        char hex[40];
        std::snprintf(hex, sizeof hex, "%llx",
                      static_cast<unsigned long long>(std::make_unsigned_t<Integer>(value)));
        append(isHex ? hex : std::to_string(value));
    }

    unsigned int block;
    unsigned int limit;
    unsigned int printfRoom = 4096;
    bool isHex = false;
    std::string text;
};

/// Checks the model against capacities that were computed by hand from the rules of growth.
void checkModel() {
    const struct {
        unsigned int kind, before, n, after;
    } table[] = {{0x00, 7, 8, 15}, {0xAE, 9, 10, 19}, {0x0B, 5, 6, 6},   {0x0B, 5, 7, 7},
                 {0x0F, 7, 8, 10}, {0x0F, 7, 9, 9},   {0x0F, 7, 12, 12}, {0x01, 0, 1, 1}};
    for (const auto& row : table) {
        Model model(row.kind);
        require(model.limit == row.before);
        model.grow(row.n);
        require(model.limit == row.after);
    }
}

using Buffer = std::unique_ptr<QBLByteBuffer>;

Buffer newBuffer(unsigned int kind) {
    const auto growth = kind % 2 == 0 ? QBLByteBuffer::GROW_BY_BLOCK : QBLByteBuffer::GROW_BY_HALF;
    return std::make_unique<QBLByteBuffer>(growth, kind / 2 % 8, kind / 16);
}

/// A buffer and its model. A second buffer, which grows by other rules, is for assignments.
class Checked {
public:
    explicit Checked(unsigned int kind)
        : m_buffer(newBuffer(kind)),
          m_model(kind),
          m_other(newBuffer(kind ^ 1)),
          m_otherModel(kind ^ 1) {}

    void apply(unsigned int command, unsigned int operand) {
        const auto size = static_cast<unsigned int>(m_model.text.size());
        const char letter = static_cast<char>(operand);
        const unsigned int at = operand % (size + 1);
        const std::string text(operand, letter);
        QBLByteBuffer& buffer = *m_buffer;
        switch (size > kLongest ? 9 + command % 4 : command % 21) {
            case 0:
                buffer << letter;
                m_model.append(std::string(1, letter));
                break;
            case 1:
                buffer << text.c_str();
                m_model.append(text.c_str());
                break;
            case 2:
                buffer.appendChars(text.data(), operand);
                m_model.append(text);
                break;
            case 3:  // appends a part of the buffer's own content
                buffer.appendChars(buffer.str() + at, size - at);
                m_model.append(m_model.text.substr(at));
                break;
            case 4:
                buffer << buffer;
                m_model.append(std::string(m_model.text));
                break;
            case 5:
                appendNumbers(operand);
                break;
            case 6:
                print("<" + std::string(m_model.text.c_str()).substr(0, 600) + ">", "<%.600s>",
                      buffer.str());
                break;
            case 7: {  // lengths near and far above the limit for a second pass of printf()
                const unsigned int width = operand < 128 ? 448 + operand : operand * 17;
                print(std::string(width - 1, ' ') + "x", "%*s", static_cast<int>(width), "x");
                break;
            }
            case 8:
                require(buffer.getPrintfBufferSize() == m_model.printfRoom);
                require(buffer.setPrintfBufferSize(operand * 4) == m_model.printfRoom);
                m_model.printfRoom = operand * 4;
                break;
            case 9:
                chop(operand * 8);
                break;
            case 10:
                trim(operand);
                break;
            case 11:
                buffer.setLength(at);
                m_model.text.resize(at);
                break;
            case 12:
                buffer.reset();
                m_model.text.clear();
                break;
            case 13: {
                const unsigned int n = operand < 64 ? operand : operand * 16;
                buffer.reserve(n);
                m_model.grow(n);
                break;
            }
            case 14:  // writes into the buffer as read(2) would
                writeBehind(operand, letter);
                m_model.text.append(operand, letter);
                buffer.setLength(size + operand);
                break;
            case 15:
                *m_other = buffer;
                m_otherModel = m_model;
                break;
            case 16:
                buffer = *m_other;
                m_model = m_otherModel;
                break;
            case 17:
                m_buffer = std::make_unique<QBLByteBuffer>(buffer);
                m_uWritten = size;
                break;
            case 18:
                endAgain(operand);
                break;
            case 19:
                require(buffer.setHexRadix(operand & 2) == (m_model.isHex ? 16 : 10));
                m_model.isHex = (operand & 2) != 0;
                break;
            default:
                printLongerAtLast();
        }
        compare();
    }

private:
    // Appends random numbers, and numbers around a power of ten.
    void appendNumbers(unsigned int operand) {
        std::uint64_t power = 1;
        for (unsigned int i = operand % 20; i != 0; --i) power *= 10;
        const std::uint64_t bits = operand * 0x9E3779B97F4A7C15U >> operand % 64;
        for (const std::uint64_t value : {bits, power - 1, power, power + 1}) {
            const auto number = static_cast<long>(value);
            const auto large = static_cast<unsigned long>(value);
            const auto natural = static_cast<unsigned int>(value);
            *m_buffer << number << large << natural << static_cast<int>(natural);
            m_model.appendInteger(number);
            m_model.appendInteger(large);
            m_model.appendInteger(natural);
            m_model.appendInteger(static_cast<int>(natural));
        }
    }

    template <class... Arguments>
    void print(const std::string& expected, const char* format, Arguments... arguments) {
        const int printed = m_buffer->printf(format, arguments...);
        require(printed == static_cast<int>(expected.size()));
        m_model.grow(m_model.text.size() + m_model.printfRoom);
        m_model.append(expected);
    }

    // The first pass of printf() changes the text that the second pass prints.
    void printLongerAtLast() {
        int printed = 0;
        const int length = 0x0241;  // stored by %n as the bytes "A\2", before the second pass
        const auto* const text = reinterpret_cast<const char*>(&printed);
        print("A\2" + std::string(length - 2, ' '), "%.2s%*s%n", text, length, "q", &printed);
    }

    void chop(unsigned int n) {
        m_model.text.erase(0, n);
        require(m_buffer->chop(n) == m_model.text.size());
    }

    void trim(unsigned int which) {
        std::string& text = m_model.text;
        if (which % 3 != 0)
            while (!text.empty() && isSpace(text.front())) text.erase(0, 1);
        if (which % 3 != 1)
            while (!text.empty() && isSpace(text.back())) text.pop_back();
        const unsigned int count = which % 3 == 0   ? m_buffer->trimBack()
                                   : which % 3 == 1 ? m_buffer->trimFront()
                                                    : m_buffer->trim();
        require(count == text.size());
    }

    void writeBehind(unsigned int count, char letter) {
        const std::size_t size = m_model.text.size();
        m_buffer->reserve(static_cast<unsigned int>(size) + count);
        m_model.grow(size + count);
        std::memset(m_buffer->str() + size, letter, count);
        m_uWritten = std::max(m_uWritten, size + count);
    }

    // Writes after the content, then calls an operation that must null-terminate the content again.
    void endAgain(unsigned int operand) {
        const std::size_t size = m_model.text.size();
        writeBehind(8, operand / 4 % 2 != 0 ? ' ' : 'X');
        if (operand % 4 == 0) return chop(1 + operand / 8);
        if (operand % 4 == 1 && size != 0 && isSpace(m_model.text[0])) return trim(1);
        if (operand % 4 == 2) {
            *m_other = *m_buffer;
            m_otherModel = m_model;
            require(m_other->str()[size] == '\0');
        } else {  // appending nothing does not null-terminate the content
            m_buffer->appendChars(nullptr, 0) << "" << QBLByteBuffer();
            require(m_buffer->str()[size] != '\0');
        }
        m_buffer->setLength(static_cast<unsigned int>(size));
    }

    // Bytes of the array that were never written are zero, even if the array comes from reused
    // memory.
    void compare() {
        QBLByteBuffer& buffer = *m_buffer;
        const auto count = static_cast<unsigned int>(m_model.text.size());
        require(buffer.pcount() == count);
        require(std::memcmp(buffer.str(), m_model.text.c_str(), count + 1) == 0);
        buffer.setLength(m_model.limit + 1);
        require(buffer.pcount() == count);
        buffer.setLength(m_model.limit);
        require(buffer.pcount() == m_model.limit);
        m_uWritten = std::max<std::size_t>(m_uWritten, count);
        for (std::size_t i = m_uWritten; i < m_model.limit; ++i) require(buffer.str()[i] == 0);
        buffer.setLength(count);
    }

    Buffer m_buffer;
    Model m_model;
    std::size_t m_uWritten = 0;  // bytes from here on must be zero
    Buffer m_other;
    Model m_otherModel;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    checkModel();
    mallopt(M_PERTURB, 0x5A);  // malloc() returns memory that is not zero
    Checked checked(size != 0 ? data[0] : 0);
    for (std::size_t i = 1; i + 1 < size; i += 2) checked.apply(data[i], data[i + 1]);
    return 0;
}
