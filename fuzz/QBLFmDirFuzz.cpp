// Splits, joins and resolves arbitrary paths, lists directories by arbitrary patterns, and splits
// texts into tokens. The results must be those of naive models, and the parts of a path must name
// the path again.
#include <algorithm>
#include <clocale>
#include <list>
#include <string>
#include <vector>

#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/FileManagement/QBLFmDirectory.hpp"
#include "QBLCore/FileManagement/skipRootPath.hpp"
#include "QBLCore/Utility/QBLUtStrTok.hpp"
#include "fuzz/support/Input.hpp"
#include "tests/support/TempTree.hpp"

namespace {

bool isSeparator(char c) { return c == '/' || c == '\\'; }

/// The root of a path without bytes outside ASCII.
std::size_t rootOfAscii(const std::string& path) {
    if (path.empty()) return 0;
    if (isSeparator(path[0])) {
        if (path.size() == 1 || !isSeparator(path[1])) return 1;
        std::size_t at = 2;
        for (int separators = 0; separators < 2 && at < path.size(); ++at)
            separators += isSeparator(path[at]) ? 1 : 0;
        return at;
    }
    if (path.size() > 1 && path[1] == ':') return path.size() > 2 && isSeparator(path[2]) ? 3 : 2;
    return 0;
}

/// Returns the root in the C locale, in which bytes outside ASCII are invalid.
std::size_t rootOf(const std::string& path) {
    const auto isHigh = [](char c) { return static_cast<unsigned char>(c) >= 0x80; };
    const long root = skipRootPath(path.c_str());
    require(root == static_cast<long>(rootOfAscii(path)) ||
            (root == -1 && std::any_of(path.begin(), path.end(), isHigh)));
    return root > 0 ? static_cast<std::size_t>(root) : 0;
}

void checkSplit(const std::string& path) {
    std::string directory = "before", file = "before";
    require(QBLFmDir::splitPath(path.c_str(), &directory, &file));
    const std::size_t root = rootOf(path);
    std::size_t at = path.find_last_of("/\\");
    if (at == std::string::npos || at < root) {
        require(directory == path.substr(0, root) && file == path.substr(root));
        return;
    }
    require(directory == path.substr(0, at) && file == path.substr(at + 1));
    std::string again = directory;
    QBLFmDir::joinPath(again, file.c_str());
    // An empty file adds nothing, and a file such as "c:x" has a root of its own.
    if (!file.empty() && rootOf(file) == 0 && path[at] == '/' && !directory.empty() &&
        !isSeparator(directory.back()))
        require(again == path);
}

void checkJoin(const std::string& base, const std::string& relative) {
    std::string joined = base;
    QBLFmDir::joinPath(joined, relative.c_str());
    std::string expected = base;
    if (!relative.empty() && (base.empty() || rootOf(relative) > 0))
        expected = relative;
    else if (!relative.empty())
        expected += (isSeparator(base.back()) ? "" : "/") + relative;
    require(joined == expected);

    QBLFmDir::setEffectiveWorkingDir(base.c_str());
    std::string resolved = relative;
    QBLFmDir::resolveEffectivePath(resolved);
    const bool isResolved =
        base.empty() || rootOf(relative) > 0 || relative.compare(0, base.size(), base) == 0;
    std::string whole = base;
    if (!relative.empty()) whole = expected;
    require(resolved == (isResolved ? relative : whole));
    QBLFmDir::setEffectiveWorkingDir(static_cast<const char*>(nullptr));
}

/// Returns the length of the well-formed UTF-8 character at the beginning (table 3-7 of Unicode).
/// Returns 1 if the text does not begin with such a character.
std::size_t widthAt(const std::string& text, std::size_t at) {
    const auto byte = [&](std::size_t i) {
        return at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0U;
    };
    const auto isTrail = [&](std::size_t i) { return byte(i) >= 0x80 && byte(i) <= 0xBF; };
    const unsigned lead = byte(0), second = byte(1);
    if (lead >= 0xC2 && lead <= 0xDF) return isTrail(1) ? 2 : 1;
    const bool isThird = isTrail(1) && isTrail(2);
    if (lead >= 0xE0 && lead <= 0xEF)
        return isThird && (lead != 0xE0 || second >= 0xA0) && (lead != 0xED || second <= 0x9F) ? 3
                                                                                               : 1;
    if (lead >= 0xF0 && lead <= 0xF4)
        return isThird && isTrail(3) && (lead != 0xF0 || second >= 0x90) &&
                       (lead != 0xF4 || second <= 0x8F)
                   ? 4
                   : 1;
    return 1;
}

/// Follows all ways to match at once: marks the offsets in the name that each item of the pattern
/// can reach.
bool matches(const std::string& name, const std::string& pattern) {
    std::vector<bool> reached(name.size() + 1, false);
    reached[0] = true;
    for (const char item : pattern) {
        std::vector<bool> next(reached.size(), false);
        for (std::size_t at = 0; at < reached.size(); ++at) {
            if (item == '*' && reached[at]) next[at] = true;
            if (at == name.size()) continue;
            const std::size_t after = at + widthAt(name, at);
            if (item == '*' && next[at]) next[after] = true;
            if (item == '?' && reached[at]) next[after] = true;
            if (item != '*' && item != '?' && item == name[at] && reached[at]) next[at + 1] = true;
        }
        reached.swap(next);
    }
    return reached[name.size()];
}

void checkPattern(const TempTree& tree, std::string name, const std::string& pattern) {
    name.resize(std::min<std::size_t>(name.size(), 24));
    if (name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos) return;
    tree.file(name);
    std::list<std::string> files;
    require(QBLFmDir::readDir(tree.root(), &files, pattern.c_str(), nullptr, nullptr));
    require((files == std::list<std::string>{name}) == (pattern.empty() || matches(name, pattern)));
    require(QBLFmDir::removeFile(tree(name).c_str()));
}

void checkTokens(const std::string& text, const std::string& separators) {
    QBLUtStrTok tokens(text.c_str(), separators.c_str());
    std::string token = "none", expected;
    for (const char c : text + '\0') {
        if (c != '\0' && separators.find(c) == std::string::npos) {
            expected += c;
            continue;
        }
        if (expected.empty()) continue;
        require(tokens.nextToken(token) && token == expected);
        expected.clear();
    }
    const std::string last = token;
    require(!tokens.nextToken(token) && token == last);
}

/// Calls the operations whose results depend on the locale.
void checkInUtf8(const std::string& path, const std::string& relative) {
    const long root = skipRootPath(path.c_str());
    require(root >= -1 && root <= static_cast<long>(path.size()));
    std::string directory, file, joined = path;
    require(QBLFmDir::splitPath(path.c_str(), &directory, &file));
    require(directory.size() + file.size() <= path.size());
    QBLFmDir::joinPath(joined, relative.c_str());
    require(joined.size() <= path.size() + 1 + relative.size());
    QBLFmDirectory parent;
    std::string name;
    if (parent.openParent(path.c_str(), name))
        require(!name.empty() && name.find('/') == std::string::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TempTree kTree;
    Input input(data, size);
    const std::string first = input.line(), second = input.line();
    std::setlocale(LC_CTYPE, "C");
    checkSplit(first);
    checkJoin(first, second);
    checkPattern(kTree, first, second);
    checkTokens(first, second);
    std::setlocale(LC_CTYPE, "C.UTF-8");
    checkInUtf8(first, second);
    return 0;
}
