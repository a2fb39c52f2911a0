#include "tools/qblconv/Worker.hpp"

#include <cerrno>
#include <cstring>

#include "tools/common/Reason.hpp"
#include "tools/qblconv/Encodings.hpp"
#include "tools/qblconv/Guess.hpp"
#include "tools/qblconv/InPlace.hpp"
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

}  // namespace

Worker::Worker(const Options& options, Progress& progress, OutputRoot* root)
    : m_options(options), m_progress(progress), m_block(kBlock), m_new(root) {
    const bool isCheck = options.mode == Mode::kCheck;
    if (isAuto(options.from) || options.mode == Mode::kGuess)
        m_detector.emplace(options.from, m_block);
    else
        m_pFrom =
            openKnown(options.from, isCheck ? I18N_SUBSTITUTE : options.inputPolicy, I18N_STOP);
    const bool isUTF16 = I18NConverter::isUTF16(options.from.c_str());
    if (isUTF16 || I18NConverter::isUTF32(options.from.c_str())) {
        m_pFromSwapped = openKnown(isUTF16 ? "UTF-16BE" : "UTF-32BE",
                                   isCheck ? I18N_SUBSTITUTE : options.inputPolicy, I18N_STOP);
        m_swappedMark = markIn(*m_pFromSwapped);
    }
    if (!isCheck || options.isToGiven)
        m_pTo = openKnown(options.to, I18N_STOP, isCheck ? I18N_SUBSTITUTE : options.outputPolicy);
    if (m_pTo != nullptr) m_pTo->useFallback(options.similar == Options::Similar::kFit);
    if (m_pTo != nullptr && options.similar == Options::Similar::kTransliteration)
        m_pTransliteration = std::make_unique<Transliteration>(*m_pTo);
    if (options.mark == Options::Mark::kAdd) m_mark = markIn(*m_pTo);
    if (!options.keepValid) return;
    m_pValid = openKnown(options.to, I18N_STOP, I18N_STOP);
    // Without a mark, nearly any text is valid in these encodings.
    if (I18NConverter::shouldUseBOM(options.to.c_str())) m_validMark = markIn(*m_pValid);
}

Findings Worker::findings(FileReport& report, const std::string& name) const {
    const bool isCheck = m_options.mode == Mode::kCheck;
    Findings::Each each = isCheck ? Findings::Each::kError : Findings::Each::kCounted;
    const bool isToldEach = m_options.verbose || m_options.xml || m_options.json;
    if (!isCheck && isToldEach && !m_options.quiet) each = Findings::Each::kWarning;
    const bool stops = m_options.outputPolicy == I18N_STOP && !m_options.marksLacking;
    return {report,
            name,
            each,
            {!isCheck && stops, m_options.marksLacking, m_pTransliteration.get(),
             inputPolicyName(m_options), outputPolicyName(m_options)}};
}

I18NByteOrderMark Worker::marks(bool strip) const {
    // If the user names the encoding, no other encoding is chosen.
    if (!m_options.isFromGiven) return strip ? I18N_MARK_CHOOSE_AND_STRIP : I18N_MARK_CHOOSE;
    return strip ? I18N_MARK_STRIP : I18N_MARK_KEEP;
}

Setup Worker::setup(I18NByteOrderMark mark) {
    const I18NConverter* const from = m_detector ? m_pChosen : m_pFrom.get();
    return {from,      m_pFromSwapped.get(), m_swappedMark,      m_pTo.get(),
            mark,      m_options.lineEnd,    m_options.verifies, m_block,
            m_progress};
}

bool Worker::choose(Input& input, const std::string& name, FileReport& report) {
    if (!m_detector) return true;
    const bool isGuessAllowed = m_options.mode != Mode::kInPlace;
    m_pChosen = m_detector->choose(input, name, isGuessAllowed, report);
    return m_pChosen != nullptr;
}

void Worker::work(const Item& item, FileReport& report) {
    Input input;
    if (!open(item, input, report)) return;
    if (m_options.mode == Mode::kCheck)
        check(shown(item.path), input, report);
    else if (m_options.mode == Mode::kGuess)
        guess(*m_detector, input, shown(item.path), m_block,
              m_options.quiet ? GuessDetail::kNames : GuessDetail::kDifferences, report);
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
    if (error == 0 && !input.open(item, isInPlace && isLocked)) error = input.error();
    if (input.passedOver() != Input::PassedOver::kNot) sayPassedOver(item, input, report);
    if (input.passedOver() != Input::PassedOver::kNot || isInterrupted()) return false;
    if (error != 0) {
        // Opening does not wait, so it fails with EAGAIN if another program holds a lease.
        const bool isLeased = item.error == 0 && error == EAGAIN;
        // In place, the file is also opened for writing.
        const bool isOurs =
            isInPlace && (error == EACCES || error == EROFS || error == ETXTBSY || error == EPERM);
        if (isLeased)
            report.error(qblconvmsgs::convLeased(shown(item.path)));
        else
            report.error((isOurs ? qblconvmsgs::convCannotWrite : qblconvmsgs::convCannotRead)(
                shown(item.path), tools::reason(error)));
        return false;
    }
    if (isInPlace && !input.isRegular()) {
        report.error(qblconvmsgs::convNotRegular(shown(item.path)));
        return false;
    }
    Problem problem;
    if (input.lock(m_options.lock, isInPlace, problem)) return true;
    if (!isInterrupted()) report.error(*problem);
    return false;
}

void Worker::sayPassedOver(const Item& item, const Input& input, FileReport& report) const {
    if (input.passedOver() == Input::PassedOver::kBrokenLink && !m_options.quiet)
        report.warning(qblconvmsgs::convBrokenLink(shown(item.path)));
    if (input.passedOver() == Input::PassedOver::kLink && m_options.verbose)
        report.information(qblconvmsgs::convPassedLink(shown(item.path)));
}

void Worker::check(const std::string& name, Input& input, FileReport& report) {
    if (!choose(input, name, report)) return;
    Findings found = findings(report, name);
    std::string encoding;
    const bool isRead =
        convertText(setup(marks(true)), input, name, nullptr, {}, found, report, &encoding);
    if (isRead) report.setEncodings(encoding, m_options.isToGiven ? m_options.to : std::string());
    if (!isRead || report.hasFailed()) return;
    report.setOutcome(Outcome::kValid);
    if (m_options.verbose) report.information(qblconvmsgs::convValid(name, encoding));
}

bool Worker::isToBeKept(Input& input, const std::string& name, FileReport& report) {
    if (m_pValid == nullptr) return false;
    if (!input.isRegular()) {
        report.error(qblconvmsgs::convNotRegular(name));
        return false;
    }
    int error = 0;
    const bool isKept = isValid(*m_pValid, m_validMark, input, m_block, error);
    if (error != 0 && !isInterrupted())
        report.error(qblconvmsgs::convCannotRead(name, tools::reason(error)));
    if (error != 0) report.countAsFailed();
    return isKept;
}

void Worker::sayDone(const std::string& name, bool isKept, FileReport& report) const {
    report.setOutcome(isKept ? Outcome::kUnchanged : Outcome::kConverted);
    report.setEncodings(isKept ? m_options.to : m_encoding, m_options.to);
    if (!m_options.verbose || report.hasFailed()) return;
    report.information(isKept ? qblconvmsgs::convKept(name, m_options.to)
                              : qblconvmsgs::convDone(name, m_encoding));
}

bool Worker::fill(Input& input, const std::string& name, Output& output,
                  const std::string& outputName, FileReport& report) {
    if (!m_mark.empty() && !output.write(m_mark.data(), m_mark.size())) {
        report.error(qblconvmsgs::convCannotWrite(outputName, tools::reason(output.error())));
        return false;
    }
    return convert(input, name, output, outputName, m_options.mark != Options::Mark::kKeep, report);
}

bool Worker::convert(Input& input, const std::string& name, Output& output,
                     const std::string& outputName, bool stripMark, FileReport& report) {
    if (!choose(input, name, report)) return false;
    Findings found = findings(report, name);
    if (!convertText(setup(marks(stripMark)), input, name, &output, outputName, found, report,
                     &m_encoding))
        return false;
    const struct {
        decltype(&qblconvmsgs::convReplaced) message;
        std::int64_t count;
    } replaced[] = {{qblconvmsgs::convReplaced, found.count()},
                    {qblconvmsgs::convBestFits, found.bestFits()},
                    {qblconvmsgs::convTransliterations, found.transliterated()}};
    for (const auto& each : replaced) {
        report.addReplaced(each.count);
        if (each.count > 0 && !m_options.quiet)
            report.warning(each.message(name, std::to_string(each.count)));
    }
    return true;
}

void Worker::convertInto(const Item& item, Input& input, FileReport& report) {
    const std::string name = shown(item.path);
    const std::string outputName = shown(m_options.directory + "/" + item.name);
    const bool isKept = isToBeKept(input, name, report);
    if (report.hasFailed()) return;
    m_new.begin(item, input.mode());
    const bool isFilled =
        isKept ? copyText(setup(I18N_MARK_KEEP), input, name, m_new, outputName, report)
               : fill(input, name, m_new, outputName, report);
    if (isFilled && !m_new.commit())
        report.error(qblconvmsgs::convCannotWrite(outputName, tools::reason(m_new.error())));
    else if (isFilled)
        sayDone(name, isKept, report);
    m_new.discard();
}

void Worker::convertInPlace(const Item& item, Input& input, FileReport& report) {
    const std::string name = shown(item.path);
    const bool isKept = isToBeKept(input, name, report);
    if (isKept) sayDone(name, isKept, report);
    if (isKept || report.hasFailed()) return;
    InPlace replacement(item, input, m_options.suffix, report);
    if (!replacement.begin() || !fill(input, name, replacement.output(), name, report)) return;
    if (replacement.finish()) sayDone(name, isKept, report);
}

bool Worker::join(const std::string& path, DirectOutput* direct, Output& output,
                  const std::string& outputName, bool isFirst, FileReport& report) {
    const Item item = {path, {}, Item::Origin::kNamed, nullptr, {}, 0};
    const std::string name = shown(path);
    Input input;
    if (!open(item, input, report)) return false;
    FileStatus status;
    if (direct != nullptr && input.isRegular() && status.get(direct->descriptor()) &&
        input.status().isSameFile(status)) {
        report.error(qblconvmsgs::convIsOutput(name));
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
