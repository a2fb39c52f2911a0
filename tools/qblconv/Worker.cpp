#include "tools/qblconv/Worker.hpp"

#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "tools/qblconv/Encodings.hpp"
#include "tools/qblconv/Interrupt.hpp"

namespace conv {

namespace {

using Mode = Options::Mode;

constexpr std::size_t kBlock = 0x10000;

std::unique_ptr<I18NConverter> openKnown(const std::string& name, int input, int output) {
    Problem problem;
    auto converter = openEncoding(name, problem);
    setPolicies(*converter, input, output);
    return converter;
}

/// Whether a sticky directory keeps a file from being replaced; a second name that it got there
/// could not be taken away again either.
bool isStuck(const std::string& path) {
    struct stat64 file = {}, directory = {};
    const uid_t user = geteuid();
    return stat64(path.c_str(), &file) == 0 &&
           stat64(path.substr(0, path.rfind('/') + 1).c_str(), &directory) == 0 &&
           (directory.st_mode & S_ISVTX) != 0 && user != 0 && user != file.st_uid &&
           user != directory.st_uid;
}

}  // namespace

Worker::Worker(const Options& options, Progress& progress)
    : m_options(options),
      m_progress(progress),
      m_from(openKnown(options.from,
                       options.mode == Mode::kCheck ? I18N_SUBSTITUTE : options.inputPolicy,
                       I18N_STOP)),
      m_block(kBlock) {
    const bool isCheck = options.mode == Mode::kCheck;
    const bool isUTF16 = I18NConverter::isUTF16(options.from.c_str());
    if (isUTF16 || I18NConverter::isUTF32(options.from.c_str())) {
        m_fromSwapped = openKnown(isUTF16 ? "UTF-16BE" : "UTF-32BE",
                                  isCheck ? I18N_SUBSTITUTE : options.inputPolicy, I18N_STOP);
        m_swappedMark = markIn(*m_fromSwapped);
    }
    if (!isCheck || options.isToGiven)
        m_to = openKnown(options.to, I18N_STOP, isCheck ? I18N_SUBSTITUTE : options.outputPolicy);
    if (options.mark == Options::Mark::kAdd) m_mark = markIn(*m_to);
    if (!options.keepValid) return;
    m_valid = openKnown(options.to, I18N_STOP, I18N_STOP);
    // Nearly any text would pass for these.
    if (I18NConverter::shouldUseBOM(options.to.c_str())) m_validMark = markIn(*m_valid);
}

Findings::Each Worker::each() const {
    if (m_options.mode == Mode::kCheck) return Findings::Each::kError;
    return m_options.verbose ? Findings::Each::kWarning : Findings::Each::kCounted;
}

I18NByteOrderMark Worker::marks(bool strip) const {
    // An encoding that is given is what the text is in.
    if (!m_options.isFromGiven) return strip ? I18N_MARK_CHOOSE_AND_STRIP : I18N_MARK_CHOOSE;
    return strip ? I18N_MARK_STRIP : I18N_MARK_KEEP;
}

Way Worker::way(I18NByteOrderMark mark) {
    return {m_from.get(), m_fromSwapped.get(), m_swappedMark, m_to.get(), mark,
            m_block,      m_progress};
}

void Worker::work(const Item& item, FileReport& report) {
    Input input;
    if (!open(item, input, report)) return;
    if (m_options.mode == Mode::kCheck)
        check(shown(item.path), input, report);
    else if (m_options.mode == Mode::kInPlace)
        convertInPlace(item, input, report);
    else
        convertInto(item, input, report);
    m_progress.addFile();
}

bool Worker::open(const Item& item, Input& input, FileReport& report) {
    const bool isInPlace = m_options.mode == Mode::kInPlace;
    const bool isLocked = m_options.lock != Options::Lock::kNone;
    int error = item.error;
    if (error == 0 && !input.open(item.path, item.origin, isInPlace && isLocked))
        error = input.error();
    if (input.isPassedOver() || isInterrupted()) return false;
    if (error != 0) {
        // In place it is opened for writing, too.
        const bool isOurs = isInPlace && (error == EACCES || error == EROFS || error == ETXTBSY);
        report.error(isOurs ? CONV_CANNOT_WRITE : CONV_CANNOT_READ,
                     {shown(item.path), std::strerror(error)});
        return false;
    }
    if (isInPlace && !input.isRegular()) {
        report.error(CONV_NOT_REGULAR, {shown(item.path)});
        return false;
    }
    Problem problem;
    if (input.lock(m_options.lock, isInPlace, problem)) return true;
    if (!isInterrupted()) report.error(problem.id, shown(problem.details));
    return false;
}

void Worker::check(const std::string& name, Input& input, FileReport& report) {
    Findings findings(report, name, each());
    std::string encoding;
    const bool isRead =
        convertText(way(marks(true)), input, name, nullptr, {}, findings, report, &encoding);
    if (isRead && !report.hasFailed() && m_options.verbose)
        report.information(CONV_VALID, {name, encoding});
}

bool Worker::isToBeKept(Input& input, const std::string& name, FileReport& report) {
    if (m_valid == nullptr) return false;
    if (!input.isRegular()) {
        report.error(CONV_NOT_REGULAR, {name});
        return false;
    }
    int error = 0;
    const bool isKept = isValid(*m_valid, m_validMark, input, m_block, error);
    if (error != 0 && !isInterrupted())
        report.error(CONV_CANNOT_READ, {name, std::strerror(error)});
    if (error != 0) report.fail();
    return isKept;
}

void Worker::sayDone(const std::string& name, bool isKept, FileReport& report) const {
    if (!m_options.verbose || report.hasFailed()) return;
    report.information(isKept ? CONV_KEPT : CONV_DONE, {name, isKept ? m_options.to : m_encoding});
}

bool Worker::fill(Input& input, const std::string& name, Output& output,
                  const std::string& outputName, FileReport& report) {
    if (!m_mark.empty() && !output.write(m_mark.data(), m_mark.size())) {
        report.error(CONV_CANNOT_WRITE, {outputName, std::strerror(output.error())});
        return false;
    }
    return convert(input, name, output, outputName, m_options.mark != Options::Mark::kKeep, report);
}

bool Worker::convert(Input& input, const std::string& name, Output& output,
                     const std::string& outputName, bool stripMark, FileReport& report) {
    Findings findings(report, name, each());
    if (!convertText(way(marks(stripMark)), input, name, &output, outputName, findings, report,
                     &m_encoding))
        return false;
    if (findings.count() > 0 && !m_options.quiet)
        report.warning(CONV_REPLACED, {name, std::to_string(findings.count())});
    return true;
}

void Worker::convertInto(const Item& item, Input& input, FileReport& report) {
    const std::string name = shown(item.path);
    const std::string outputName = shown(m_options.directory + "/" + item.name);
    const bool isKept = isToBeKept(input, name, report);
    if (report.hasFailed()) return;
    m_new.begin(m_options.directory, item.name, item.path, input.mode());
    const bool isFilled =
        isKept ? copyText(way(I18N_MARK_KEEP), input, name, m_new, outputName, report)
               : fill(input, name, m_new, outputName, report);
    if (isFilled && !m_new.commit())
        report.error(CONV_CANNOT_WRITE, {outputName, std::strerror(m_new.error())});
    else if (isFilled)
        sayDone(name, isKept, report);
    m_new.discard();
}

void Worker::convertInPlace(const Item& item, Input& input, FileReport& report) {
    const std::string name = shown(item.path);
    const bool isKept = isToBeKept(input, name, report);
    if (isKept) sayDone(name, isKept, report);
    if (isKept || report.hasFailed()) return;
    ReplacingOutput output;
    if (!output.open(item.path))
        return report.error(CONV_CANNOT_WRITE, {name, std::strerror(output.error())});
    if (!fill(input, name, output, name, report)) return;
    if (input.hasChanged()) return report.error(CONV_CHANGED, {name});
    std::string kept;
    if (!m_options.suffix.empty() && !keepOriginal(item.path, kept, report)) return;
    if (output.commit()) return sayDone(name, isKept, report);
    report.error(CONV_CANNOT_WRITE, {name, std::strerror(output.error())});
    // Two names of one file would be changed together.
    if (!kept.empty()) unlink(kept.c_str());
}

/// By a second name, so that the file has its first one all the time. What has that name already
/// may be the only original there is.
bool Worker::keepOriginal(const std::string& path, std::string& kept, FileReport& report) const {
    const std::string original = realPath(path);
    const std::string second = original + m_options.suffix;
    if (isStuck(original)) {
        report.error(CONV_CANNOT_WRITE, {shown(path), std::strerror(EPERM)});
        return false;
    }
    if (link(original.c_str(), second.c_str()) == 0) {
        kept = second;
        return true;
    }
    const int error = errno;
    struct stat64 one = {}, other = {};
    if (error == EEXIST && stat64(original.c_str(), &one) == 0 &&
        lstat64(second.c_str(), &other) == 0 && isSameVersion(one, other))
        return true;
    report.error(CONV_CANNOT_KEEP, {shown(path), shown(second), std::strerror(error)});
    return false;
}

bool Worker::join(const std::string& path, DirectOutput* direct, Output& output,
                  const std::string& outputName, bool isFirst, FileReport& report) {
    const Item item = {path, {}, Input::Origin::kNamed, 0};
    const std::string name = shown(path);
    Input input;
    if (!open(item, input, report)) return false;
    struct stat64 status = {};
    if (direct != nullptr && input.isRegular() && fstat64(direct->descriptor(), &status) == 0 &&
        input.isSame(status)) {
        report.error(CONV_IS_OUTPUT, {name});
        return false;
    }
    const bool strip = m_options.mark != Options::Mark::kKeep || !isFirst;
    if (convert(input, name, output, outputName, strip, report)) {
        sayDone(name, false, report);
        m_progress.addFile();
    }
    return !input.isEmpty();
}

}  // namespace conv
