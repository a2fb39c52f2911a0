#include "tools/qblconv/Operands.hpp"

#include <fcntl.h>

#include <cerrno>

#include "tools/common/Reason.hpp"

namespace conv {

namespace {

using Mode = Options::Mode;

/// The last part of a path; empty for "/", "." and "..", whose files go directly into the output
/// directory.
std::string lastPart(std::string path) {
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    path.erase(0, path.rfind('/') + 1);
    return path == "." || path == ".." ? std::string() : path;
}

std::string below(const std::string& directory, const std::string& name) {
    return directory.empty() || directory.back() == '/' ? directory + name : directory + "/" + name;
}

bool endsWith(const std::string& name, const std::string& suffix) {
    return name.size() >= suffix.size() &&
           name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
}

}  // namespace

Operands::Operands(const Options& options)
    : m_options(options), m_bInPlace(options.mode == Mode::kInPlace) {}

bool Operands::check(Problem& problem) const {
    for (const std::string& operand : m_options.operands) {
        const bool isStandardInput = operand == "-";
        if (isStandardInput && (m_bInPlace || m_options.mode == Mode::kDirectory)) {
            problem = tools::withShown(qblconvmsgs::convNotTogether, "-", m_bInPlace ? "-i" : "-d");
            return false;
        }
        FileStatus status;
        const bool isThere = !isStandardInput && status.get(operand.c_str());
        if (!isStandardInput && !isThere && (errno == ENOENT || errno == ENOTDIR)) {
            problem = tools::withShown(qblconvmsgs::convCannotRead, operand, tools::reason(errno));
            return false;
        }
        if (isThere && status.isDirectory() && !m_options.recurse) {
            problem = tools::withShown(qblconvmsgs::convIsDirectory, operand);
            return false;
        }
    }
    return m_options.mode == Mode::kDirectory ? checkOutputs(problem) : checkOriginals(problem);
}

/// Returns true if no two operands write to the same output.
bool Operands::checkOutputs(Problem& problem) const {
    std::map<std::string, const std::string*> outputs;
    const std::vector<std::string>& operands = m_options.operands;
    for (const std::string& operand : operands) {
        const std::string name = lastPart(operand);
        const auto added = outputs.emplace(name, &operand);
        if (!added.second) {
            problem = tools::withShown(qblconvmsgs::convSameOutput, *added.first->second, operand,
                                       below(m_options.directory, name));
            return false;
        }
        if (const std::string* const input = inputAt(below(m_options.directory, name), operand)) {
            const auto message = input == &operand ? qblconvmsgs::convOutputIsItself
                                                   : qblconvmsgs::convOutputIsInput;
            problem = tools::withShown(message, below(m_options.directory, name), *input);
            return false;
        }
        // This operand's files would be next to the outputs of the other operands.
        FileStatus status;
        const bool isOutput = status.get(operand.c_str()) && isOutputDirectory(status);
        if (operands.size() == 1 || (!name.empty() && !isOutput)) continue;
        const std::string& other = &operand == &operands[0] ? operands[1] : operands[0];
        problem =
            tools::withShown(qblconvmsgs::convMixedOutputs, operand, other, m_options.directory);
        return false;
    }
    return true;
}

/// Finds an operand that an output would overwrite: an operand that is the output, or that is below
/// the output. For the operand that produces the output, checks only the first case.
/// @param own  the operand that produces the output
/// @return null if there is no such operand
const std::string* Operands::inputAt(const std::string& output, const std::string& own) const {
    FileStatus at, status;
    if (!at.get(output.c_str())) return nullptr;
    for (const std::string& operand : m_options.operands) {
        std::string up = operand;
        if (status.get(up.c_str()) && status.isSameFile(at)) return &operand;
        if (&operand == &own) continue;
        if (!status.isDirectory())
            up = up.find('/') == std::string::npos ? "." : up.substr(0, up.rfind('/') + 1);
        for (FileStatus above; status.get(up.c_str()); up += "/..") {
            if (status.isSameFile(at)) return &operand;
            if (!above.get((up + "/..").c_str()) || above.isSameFile(status)) break;
        }
    }
    return nullptr;
}

/// Returns true if no original would be kept under the name of another operand.
bool Operands::checkOriginals(Problem& problem) const {
    if (m_options.suffix.empty()) return true;
    std::map<FileKey, const std::string*> files;
    for (const std::string& operand : m_options.operands) {
        QBLFmDirectory directory;
        std::string leaf;
        FileStatus status;
        if (directory.openParent(operand.c_str(), leaf) && status.get(directory.getDescriptor()))
            files.emplace(FileKey(status.identity(), leaf), &operand);
    }
    for (const auto& [file, operand] : files) {
        const auto found = files.find({file.first, file.second + m_options.suffix});
        if (found == files.end()) continue;
        problem =
            tools::withShown(qblconvmsgs::convSameOutput, *operand, *found->second, *found->second);
        return false;
    }
    return true;
}

bool Operands::isPassedOver(const std::string& file, const Level& level) const {
    if (file[0] == '.' && m_options.match.compare(0, 1, ".") != 0) return true;
    if (!m_bInPlace) return false;
    const bool isOriginal = !m_options.suffix.empty() && endsWith(file, m_options.suffix);
    return isOriginal || m_doneFiles.count({level.identity, file}) != 0;
}

bool Operands::next(Item& item) {
    while (!m_levels.empty()) {
        Level& level = m_levels.back();
        if (!level.files.empty()) {
            const std::string file = std::move(level.files.front());
            level.files.pop_front();
            if (isPassedOver(file, level)) continue;
            item = {level.path + file,
                    below(level.name, file),
                    Item::Origin::kFound,
                    level.place,
                    file,
                    0};
            return true;
        }
        if (level.directories.empty()) {
            m_levels.pop_back();
            continue;
        }
        const std::string directory = std::move(level.directories.front());
        level.directories.pop_front();
        if (directory[0] == '.') continue;
        const std::string path = level.path + directory;
        auto place = std::make_shared<Place>();
        place->name = directory;
        place->above = level.place;
        if (!place->directory.open(level.place->directory, directory.c_str())) {
            // Skips a link. A link may also have replaced the directory since it was listed.
            if (errno == ENOTDIR || errno == ELOOP) continue;
            item = {path, directory, Item::Origin::kNamed, nullptr, {}, errno};
            return true;
        }
        if (!enter(std::move(place), path, below(level.name, directory), item)) return true;
    }
    return nextOperand(item);
}

bool Operands::nextOperand(Item& item) {
    while (m_iNext < m_options.operands.size()) {
        const std::string& operand = m_options.operands[m_iNext++];
        FileStatus status;
        const bool isDirectory =
            operand != "-" && status.get(operand.c_str()) && status.isDirectory();
        if (isDirectory ? nextDirectory(operand, item) : nextFile(operand, item)) return true;
        if (!m_levels.empty()) return next(item);
    }
    return false;
}

/// @return false if the file is finished already
bool Operands::nextFile(const std::string& operand, Item& item) {
    item = {operand, lastPart(operand), Item::Origin::kNamed, nullptr, {}, 0};
    if (!m_bInPlace) return true;
    item.origin = Item::Origin::kNamedInPlace;
    auto place = std::make_shared<Place>();
    FileStatus status;
    if (!place->directory.openParent(operand.c_str(), item.leaf) ||
        !status.get(place->directory.getDescriptor())) {
        item.error = errno;
        return true;
    }
    if (isBelowDone(place->directory) || !m_doneFiles.insert({status.identity(), item.leaf}).second)
        return false;
    item.place = std::move(place);
    return true;
}

/// @return false if the directory is finished already, or if m_levels has received it
bool Operands::nextDirectory(const std::string& operand, Item& item) {
    auto place = std::make_shared<Place>();
    place->name = lastPart(operand);
    if (!place->directory.open(operand.c_str())) {
        item = {operand, place->name, Item::Origin::kNamed, nullptr, {}, errno};
        return true;
    }
    if (m_bInPlace && isBelowDone(place->directory)) return false;
    const std::string name = place->name;
    return !enter(std::move(place), operand, name, item);
}

/// @return false, with an item that has the error, if the directory cannot be read
bool Operands::enter(std::shared_ptr<Place> place, const std::string& path, const std::string& name,
                     Item& item) {
    FileStatus status;
    Level level = {below(path, ""), name, nullptr, {}, {}, {}};
    if (!status.get(place->directory.getDescriptor()) ||
        !place->directory.readDir(&level.files, m_options.match.c_str(), &level.directories,
                                  nullptr)) {
        item = {path, name, Item::Origin::kNamed, nullptr, {}, errno};
        return false;
    }
    if (place->above != nullptr && isOutputDirectory(status)) return true;
    level.identity = status.identity();
    if (m_bInPlace && m_doneDirectories.count(level.identity) != 0) return true;
    if (m_bInPlace && place->above == nullptr) m_doneDirectories.insert(level.identity);
    place->mode = status.mode();
    level.place = std::move(place);
    m_levels.push_back(std::move(level));
    return true;
}

/// Returns true if an earlier operand is this directory or a directory above it.
bool Operands::isBelowDone(const QBLFmDirectory& directory) const {
    if (m_doneDirectories.empty()) return false;
    FileStatus status, above;
    std::string up = ".";
    while (status.get(directory.getDescriptor(), up.c_str(), 0)) {
        if (m_doneDirectories.count(status.identity()) != 0) return true;
        up += "/..";
        const bool isRoot =
            !above.get(directory.getDescriptor(), up.c_str(), 0) || above.isSameFile(status);
        if (isRoot) break;
    }
    return false;
}

bool Operands::isOutputDirectory(const FileStatus& status) const {
    FileStatus output;
    return m_options.mode == Mode::kDirectory && output.get(m_options.directory.c_str()) &&
           output.isSameFile(status);
}

}  // namespace conv
