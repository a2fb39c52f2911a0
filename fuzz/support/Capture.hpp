#ifndef FUZZ_SUPPORT_CAPTURE_HPP
#define FUZZ_SUPPORT_CAPTURE_HPP

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

/// Captures all output to stdout or stderr until it is destroyed.
class Capture {
public:
    explicit Capture(std::FILE*& stream) : m_stream(stream), m_pSaved(stream) {
        m_stream = open_memstream(&m_pBytes, &m_iSize);
    }
    ~Capture() {
        std::fclose(std::exchange(m_stream, m_pSaved));
        std::free(m_pBytes);
    }
    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;
    std::string text() const {
        std::fflush(m_stream);
        return {m_pBytes, m_iSize};
    }

private:
    std::FILE*& m_stream;
    std::FILE* const m_pSaved;
    char* m_pBytes = nullptr;
    std::size_t m_iSize = 0;
};

#endif
