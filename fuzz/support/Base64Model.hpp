#ifndef FUZZ_SUPPORT_BASE64MODEL_HPP
#define FUZZ_SUPPORT_BASE64MODEL_HPP

#include <cstring>
#include <string>

/// A model of Base64 that processes one letter at a time, written from the definition of Base64.
struct Base64Model {
    char for62, for63;

    /// Returns -1 for an invalid character, else a value of 8 bits.
    int value(unsigned char c) const {
        if (c == '=') return 0;
        if (c == static_cast<unsigned char>(for62)) return 62;
        if (c == static_cast<unsigned char>(for63)) return 63;
        if (c < '9' + 1) return c + 4;
        if (c < 'Z' + 1) return (c - 65) & 255;
        return c < 'z' + 1 ? c - 71 : -1;
    }

    bool decode(const std::string& text, std::string& out) const {
        std::string group;
        out.clear();
        for (const char c : text) {
            if (std::strchr(" \t\n\v\f\r", c) != nullptr) continue;
            if (value(static_cast<unsigned char>(c)) < 0) return false;
            group += c;
            if (group.size() == 4) put(group, out);
        }
        if (group.size() == 1) return false;
        if (!group.empty()) put(group, out);
        return true;
    }

    std::string encode(const std::string& data) const {
        std::string out;
        for (std::size_t i = 0; i < data.size(); i += 3) {
            unsigned bits = 0;
            for (std::size_t j = i; j < i + 3; ++j)
                bits = bits << 8 | (j < data.size() ? data[j] & 255U : 0U);
            for (std::size_t j = 0; j < 4; ++j)
                out += i + j > data.size() ? '=' : letter(bits >> (18 - 6 * j) & 63);
        }
        return out;
    }

private:
    char letter(unsigned wanted) const {
        int c = 'A';
        if (wanted >= 62) return wanted == 62 ? for62 : for63;
        if (wanted >= 52) c = '0';
        while (value(static_cast<unsigned char>(c)) != static_cast<int>(wanted))
            c = c == 'Z' ? 'a' : c + 1;
        return static_cast<char>(c);
    }

    void put(std::string& group, std::string& out) const {
        int v[4] = {};
        for (std::size_t i = 0; i < group.size(); ++i)
            v[i] = value(static_cast<unsigned char>(group[i]));
        out += static_cast<char>(v[0] << 2 | v[1] >> 4);
        if (group.size() > 2 && group[2] != '=') out += static_cast<char>(v[1] << 4 | v[2] >> 2);
        if (group.size() > 3 && group[3] != '=') out += static_cast<char>(v[2] << 6 | v[3]);
        group.clear();
    }
};

#endif
