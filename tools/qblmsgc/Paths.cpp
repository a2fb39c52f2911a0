#include "tools/qblmsgc/Paths.hpp"

#include <algorithm>

#include "QBLCore/Resources/QBLResourceFactory.hpp"

namespace msgc {

namespace {

/// Removes an ending.
/// @return true if the text had the ending
bool dropEnding(std::string& text, const std::string& ending) {
    if (text.size() < ending.size() ||
        text.compare(text.size() - ending.size(), ending.size(), ending) != 0)
        return false;
    text.resize(text.size() - ending.size());
    return true;
}

/// Removes the part after the last underscore.
/// @return the part; empty, with the text unchanged, if there is no underscore or if the part does
///     not consist of 2 to `most` letters from first to last
std::string takePart(std::string& text, char first, char last, std::size_t most) {
    const std::size_t begin = text.rfind('_');
    if (begin == std::string::npos) return std::string();
    std::string part = text.substr(begin + 1);
    if (part.size() < 2 || part.size() > most ||
        !std::all_of(part.begin(), part.end(), [=](char c) { return c >= first && c <= last; }))
        return std::string();
    text.resize(begin);
    return part;
}

}  // namespace

std::string fileOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string compiledName(const std::string& source) {
    std::string name = source;
    dropEnding(name, ".msg");
    return name + QBLResourceFactory::g_resourceFileExtension;
}

std::string baseOf(const std::string& source) {
    std::string name = fileOf(source);
    dropEnding(name, ".msg");
    takePart(name, 'A', 'Z', 2);
    takePart(name, 'a', 'z', 3);
    return name;
}

bool isMessageFileName(const std::string& path) {
    std::string name = fileOf(path);
    return dropEnding(name, QBLResourceFactory::g_resourceFileExtension);
}

std::string localeOf(const std::string& path) {
    std::string name = fileOf(path);
    if (!dropEnding(name, QBLResourceFactory::g_resourceFileExtension)) return std::string();
    const std::string country = takePart(name, 'A', 'Z', 2);
    const std::string language = takePart(name, 'a', 'z', 3);
    return language.empty() || country.empty() ? language : language + "_" + country;
}

}  // namespace msgc
