#include "tools/qblconv/Convert.hpp"

#include <cerrno>
#include <cstring>
#include <optional>
#include <string_view>

#include "i18n/cpp/i18n_errors.hpp"
#include "tools/common/Reason.hpp"
#include "tools/qblconv/Interrupt.hpp"
#include "tools/qblconv/LineEnds.hpp"
#include "tools/qblconv/Verification.hpp"

namespace conv {

namespace {

class Conversion {
public:
    /// @param name  the input's name, as shown() returns it
    Conversion(const Setup& setup, const I18NConverter* from, const std::string& name,
               Output* output, const std::string& outputName, Findings& findings,
               FileReport& report)
        : m_name(name),
          m_pOutput(output),
          m_outputName(outputName),
          m_findings(findings),
          m_report(report),
          m_pTo(setup.to != nullptr ? setup.to->getEncoding() : ""),
          m_stream(from, setup.to, setup.mark, &findings) {
        findings.attach(m_stream);
        if (setup.to == nullptr) return;
        if (setup.lineEnd != Options::LineEnd::kKeep)
            m_lineEnds.emplace(*setup.to, setup.lineEnd == Options::LineEnd::kCrLf);
        if (setup.verifies) m_verification.emplace(*setup.to, (setup.mark & I18N_MARK_STRIP) != 0);
    }

    /// @param size  0 at the end of the input
    bool put(const char* block, std::size_t size) {
        if (m_verification) m_verification->read(block, size);
        try {
            if (size > 0)
                m_stream.put(block, size);
            else
                m_stream.finish();
        } catch (const I18NRuntimeError& error) {
            if (error.getErrorCode() != I18N_CONVERSION) throw;
            return giveUp();
        } catch (const Findings::Lacking&) {
            return giveUp();
        }
        m_findings.tell(m_stream.getInputEncoding(), m_pTo);
        const std::string_view bytes = takeOutput(size == 0);
        return isReversible(bytes, size == 0) && write(bytes);
    }
    /// Ends a direct output in the initial shift state of its encoding, so that other text can
    /// follow.
    void breakOff() {
        if (m_pOutput == nullptr || !m_pOutput->isDirect()) return;
        try {
            m_stream.finish();
        } catch (const I18NRuntimeError& error) {
            if (error.getErrorCode() != I18N_CONVERSION) throw;
        } catch (const Findings::Lacking&) {  // the conversion has failed already
        }
        write(takeOutput(true));
    }
    const char* encoding() const { return m_stream.getInputEncoding(); }

private:
    /// Gives up at the current place. A direct output keeps the text before that place.
    bool giveUp() {
        m_findings.tellLast(m_stream.getInputEncoding(), m_pTo);
        if (m_pOutput != nullptr && m_pOutput->isDirect()) write(takeOutput(true));
        return false;
    }

    /// Takes the converted text from the stream, with the line ends requested.
    std::string_view takeOutput(bool isEnd) {
        if (m_pOutput == nullptr) return {};
        const std::string_view bytes(m_stream.getBytes(), m_stream.getByteCount());
        if (!m_lineEnds) return bytes;
        m_lineEnds->put(bytes.data(), bytes.size());
        m_bytes = m_lineEnds->bytes();
        if (isEnd) {
            m_lineEnds->finish();
            m_bytes += m_lineEnds->bytes();
        }
        return m_bytes;
    }

    bool isReversible(std::string_view bytes, bool isEnd) {
        if (!m_verification) return true;
        m_verification->wrote(bytes.data(), bytes.size());
        if (m_verification->compare(m_stream.getInputEncoding(), isEnd)) return true;
        const Mismatch& found = m_verification->mismatch();
        Finding finding = {Finding::Kind::kDifferent, "stop", found.line, found.column};
        finding.offset = found.offset;
        finding.bytes = bytesInDigits(found.bytes.data(), found.bytes.size());
        finding.replacement = bytesInDigits(found.back.data(), found.back.size());
        finding.encoding = m_stream.getInputEncoding();
        m_report.finding(QBLSeverityError, m_name, finding);
        return false;
    }

    bool write(std::string_view bytes) {
        if (m_pOutput == nullptr || bytes.empty()) return true;
        if (m_pOutput->write(bytes.data(), bytes.size())) return true;
        if (!isInterrupted())
            m_report.error(
                qblconvmsgs::convCannotWrite(m_outputName, tools::reason(m_pOutput->error())));
        return false;
    }

    const std::string& m_name;
    Output* const m_pOutput;
    const std::string& m_outputName;
    Findings& m_findings;
    FileReport& m_report;
    const char* const m_pTo;
    I18NTextStream m_stream;
    std::optional<LineEnds> m_lineEnds;
    std::optional<Verification> m_verification;
    std::string m_bytes;  // result of m_lineEnds
};

/// Reads the first block. If the byte order may depend on a byte-order mark, the block has enough
/// bytes for the mark.
int readStart(const Setup& setup, Input& input) {
    const auto size = static_cast<int>(setup.block.size());
    const auto wanted =
        setup.fromSwapped != nullptr ? static_cast<int>(setup.swappedMark.size()) : 1;
    int done = 0;
    for (int got = 1; got > 0 && done < wanted; done += got) {
        got = input.read(setup.block.data() + done, static_cast<unsigned>(size - done));
        if (got < 0) return got;
    }
    return done;
}

}  // namespace

bool convertText(const Setup& setup, Input& input, const std::string& name, Output* output,
                 const std::string& outputName, Findings& findings, FileReport& report,
                 std::string* encoding) {
    int got = readStart(setup, input);
    const std::string& mark = setup.swappedMark;
    const bool isSwapped = setup.fromSwapped != nullptr && got >= static_cast<int>(mark.size()) &&
                           std::memcmp(setup.block.data(), mark.data(), mark.size()) == 0;
    Conversion conversion(setup, isSwapped ? setup.fromSwapped : setup.from, name, output,
                          outputName, findings, report);
    while (true) {
        if (isInterrupted()) return false;
        if (got < 0) {
            report.error(qblconvmsgs::convCannotRead(name, tools::reason(input.error())));
            conversion.breakOff();
            return false;
        }
        if (!conversion.put(setup.block.data(), static_cast<std::size_t>(got))) {
            report.countAsFailed();
            return false;
        }
        if (got == 0) break;
        setup.progress.addBytes(static_cast<std::size_t>(got));
        got = input.read(setup.block.data(), static_cast<unsigned>(setup.block.size()));
    }
    if (encoding != nullptr) *encoding = conversion.encoding();
    return true;
}

bool isValid(const I18NConverter& strict, const std::string& mark, Input& input,
             std::vector<char>& block, int& error) {
    I18NTextStream stream(&strict, nullptr);
    bool isValid = true, isStart = true;
    error = 0;
    for (int got = 1; got > 0 && isValid;) {
        got = input.read(block.data(), static_cast<unsigned>(block.size()));
        if (got < 0 || isInterrupted()) {
            error = got < 0 ? input.error() : EINTR;
            return false;
        }
        const auto size = static_cast<std::size_t>(got);
        if (isStart)
            isValid =
                size >= mark.size() && std::memcmp(block.data(), mark.data(), mark.size()) == 0;
        isStart = false;
        try {
            if (size > 0)
                stream.put(block.data(), size);
            else
                stream.finish();
        } catch (const I18NRuntimeError& problem) {
            if (problem.getErrorCode() != I18N_CONVERSION) throw;
            isValid = false;
        }
    }
    if (!input.rewind()) error = input.error();
    return isValid && error == 0;
}

bool copyText(const Setup& setup, Input& input, const std::string& name, Output& output,
              const std::string& outputName, FileReport& report) {
    while (!isInterrupted()) {
        const int got = input.read(setup.block.data(), static_cast<unsigned>(setup.block.size()));
        if (got < 0) report.error(qblconvmsgs::convCannotRead(name, tools::reason(input.error())));
        if (got <= 0) return got == 0;
        if (!output.write(setup.block.data(), static_cast<std::size_t>(got))) {
            report.error(qblconvmsgs::convCannotWrite(outputName, tools::reason(output.error())));
            return false;
        }
        setup.progress.addBytes(static_cast<std::size_t>(got));
    }
    return false;
}

}  // namespace conv
