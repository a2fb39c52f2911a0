#include "tools/qblconv/Operands.hpp"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>

#include "QBLCore/FileManagement/QBLFmDir.hpp"

namespace conv {

namespace {

using Mode = Options::Mode;

/// The last part of a path; empty for roots and the like, whose output is the directory itself.
std::string lastPart(std::string path) {
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    path.erase(0, path.rfind('/') + 1);
    return path == "." || path == ".." ? std::string() : path;
}

std::string below(const std::string& directory, const std::string& name) {
    return directory.empty() || directory.back() == '/' ? directory + name : directory + "/" + name;
}

bool isSame(const struct stat64& a, const struct stat64& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool endsWith(const std::string& name, const std::string& suffix) {
    return name.size() >= suffix.size() &&
           name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
}

}  // namespace

std::string realPath(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr),
                                                           &std::free);
    return real != nullptr ? real.get() : path;
}

Operands::Operands(const Options& options)
    : m_options(options), m_isInPlace(options.mode == Mode::kInPlace) {}

bool Operands::check(Problem& problem) const {
    for (const std::string& operand : m_options.operands) {
        const bool isStandardInput = operand == "-";
        if (isStandardInput && (m_isInPlace || m_options.mode == Mode::kDirectory)) {
            problem = {CONV_NOT_TOGETHER, {"-", m_isInPlace ? "-i" : "-d"}};
            return false;
        }
        struct stat64 status = {};
        if (!isStandardInput && stat64(operand.c_str(), &status) != 0 &&
            (errno == ENOENT || errno == ENOTDIR)) {
            problem = {CONV_CANNOT_READ, {operand, std::strerror(errno)}};
            return false;
        }
        if (S_ISDIR(status.st_mode) && !m_options.recurse) {
            problem = {CONV_IS_DIRECTORY, {operand}};
            return false;
        }
    }
    return m_options.mode == Mode::kDirectory ? checkOutputs(problem) : checkOriginals(problem);
}

/// Whether no file of an operand becomes the same as one of another.
bool Operands::checkOutputs(Problem& problem) const {
    std::map<std::string, const std::string*> outputs;
    const std::vector<std::string>& operands = m_options.operands;
    for (const std::string& operand : operands) {
        const std::string name = lastPart(operand);
        const auto added = outputs.emplace(name, &operand);
        if (!added.second) {
            problem = {CONV_SAME_OUTPUT,
                       {*added.first->second, operand, below(m_options.directory, name)}};
            return false;
        }
        // Its files stand beside the outputs of the others.
        if (operands.size() == 1 || (!name.empty() && !isOutputDirectory(operand))) continue;
        const std::string& other = &operand == &operands[0] ? operands[1] : operands[0];
        problem = {CONV_MIXED_OUTPUTS, {operand, other, m_options.directory}};
        return false;
    }
    return true;
}

/// Whether no original would be kept under the name of another operand.
bool Operands::checkOriginals(Problem& problem) const {
    if (m_options.suffix.empty()) return true;
    std::map<std::string, const std::string*> files;
    for (const std::string& operand : m_options.operands)
        files.emplace(realPath(operand), &operand);
    for (const auto& [path, operand] : files) {
        const auto found = files.find(path + m_options.suffix);
        if (found == files.end()) continue;
        problem = {CONV_SAME_OUTPUT, {*operand, *found->second, *found->second}};
        return false;
    }
    return true;
}

bool Operands::isPassedOver(const std::string& file, const Level& level) const {
    if (file[0] == '.' && m_options.match.compare(0, 1, ".") != 0) return true;
    if (!m_isInPlace) return false;
    const bool isOriginal = !m_options.suffix.empty() && endsWith(file, m_options.suffix);
    return isOriginal || isDone(below(level.real, file));
}

bool Operands::next(Item& item) {
    while (!m_levels.empty()) {
        Level& level = m_levels.back();
        if (!level.files.empty()) {
            const std::string file = std::move(level.files.front());
            level.files.pop_front();
            if (isPassedOver(file, level)) continue;
            item.path = level.path + file;
            item.name = below(level.name, file);
            item.origin = m_isInPlace ? Input::Origin::kFoundInPlace : Input::Origin::kFound;
            item.error = 0;
            return true;
        }
        if (level.directories.empty()) {
            m_levels.pop_back();
            continue;
        }
        const std::string directory = std::move(level.directories.front());
        level.directories.pop_front();
        const std::string path = level.path + directory;
        struct stat64 status = {};
        const bool isLink = lstat64(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
        if (directory[0] == '.' || isLink || isOutputDirectory(path)) continue;
        const std::string real = m_isInPlace ? below(level.real, directory) : std::string();
        if (m_isInPlace && isDone(real)) continue;
        if (!enter(path, below(level.name, directory), real, item)) return true;
    }
    return nextOperand(item);
}

bool Operands::nextOperand(Item& item) {
    while (m_iNext < m_options.operands.size()) {
        const std::string& operand = m_options.operands[m_iNext++];
        std::string real;
        if (m_isInPlace) {
            real = realPath(operand);
            if (isDone(real) || !m_done.insert(real).second) continue;
        }
        struct stat64 status = {};
        const bool isDirectory =
            operand != "-" && stat64(operand.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
        if (isDirectory) {
            if (!enter(operand, lastPart(operand), real, item)) return true;
            return next(item);
        }
        item = {operand, lastPart(operand),
                m_isInPlace ? Input::Origin::kNamedInPlace : Input::Origin::kNamed, 0};
        return true;
    }
    return false;
}

/// @return false, with an item that says why, if the directory cannot be read
bool Operands::enter(const std::string& path, const std::string& name, const std::string& real,
                     Item& item) {
    Level level = {below(path, ""), name, real, {}, {}};
    if (QBLFmDir::readDir(path.c_str(), &level.files, m_options.match.c_str(), &level.directories,
                          nullptr)) {
        m_levels.push_back(std::move(level));
        return true;
    }
    item = {path, name, Input::Origin::kNamed, errno};
    return false;
}

/// Whether an operand in front leads there, itself or as a directory above.
bool Operands::isDone(const std::string& real) const {
    // The one being gone through is the last operand: what it has is not done.
    const std::string& current = m_levels.empty() ? std::string() : m_levels.front().real;
    if (m_done.empty()) return false;
    for (std::size_t end = real.size(); end != std::string::npos && end > 0;
         end = real.rfind('/', end - 1)) {
        const std::string above = real.substr(0, end);
        if (above != current && m_done.count(above) != 0) return true;
    }
    return m_done.count("/") != 0 && current != "/";
}

bool Operands::isOutputDirectory(const std::string& path) const {
    struct stat64 output = {}, status = {};
    return m_options.mode == Mode::kDirectory &&
           stat64(m_options.directory.c_str(), &output) == 0 &&
           stat64(path.c_str(), &status) == 0 && isSame(output, status);
}

}  // namespace conv
