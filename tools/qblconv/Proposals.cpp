#include "tools/qblconv/Proposals.hpp"

#include <unicode/ucnv.h>
#include <unicode/ucsdet.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

#include "tools/common/Utf8.hpp"

namespace conv {

namespace {

const char kUTF8[] = "UTF-8";
constexpr std::size_t kSample = 8192;  // ICU's detector examines at most this many bytes
constexpr int kNoEvidence = 10;  // ICU's confidence in UTF-16 for a text without any sign of it

/// Pairs of encodings that are used for the same texts. The more common encoding comes first.
const char* const kPairs[][2] = {{"windows-1252", "ISO-8859-1"},
                                 {"windows-1250", "ISO-8859-2"},
                                 {"windows-1253", "ISO-8859-7"},
                                 {"windows-1255", "ISO-8859-8"},
                                 {"windows-1254", "ISO-8859-9"},
                                 {"ISO-8859-8", "ISO-8859-8-I"},
                                 {"windows-1255", "ISO-8859-8-I"},
                                 {"EUC-KR", "windows-949"},
                                 {"KOI8-R", "KOI8-U"}};

/// Collects the sample for ICU's detector: the lines with non-ASCII bytes or shift characters,
/// because these lines tell most about the encoding. Bytes below 8 are a sign of UTF-16 or UTF-32;
/// if the first part of the text has such bytes, the sample is the beginning of the text.
class Sample {
public:
    /// @return false if the sample is full
    bool add(std::string_view bytes) {
        if (m_bFirst) m_bWide = std::any_of(bytes.begin(), bytes.end(), isOfWideUnit);
        m_bFirst = false;
        if (m_bWide) {
            m_bytes = bytes.substr(0, kSample);
            return false;
        }
        while (!bytes.empty() && m_bytes.size() < kSample) {
            const std::size_t end = std::min(bytes.find('\n'), bytes.size() - 1) + 1;
            const std::size_t size = std::min(end, kSample - m_line.size());
            m_line.append(bytes.substr(0, size));
            bytes.remove_prefix(size);
            if (m_line.back() == '\n' || m_line.size() == kSample) endLine();
        }
        return m_bytes.size() < kSample;
    }
    const std::string& finish() {
        endLine();
        return m_bytes;
    }

private:
    static bool isOfWideUnit(char c) { return c >= 0 && c < 0x08; }
    static bool isTelling(char c) { return c < 0 || c == 0x1B || c == 0x0E || c == 0x0F; }

    void endLine() {
        if (std::any_of(m_line.begin(), m_line.end(), isTelling)) m_bytes += m_line;
        m_line.clear();
    }

    std::string m_bytes, m_line;
    bool m_bFirst = true;
    bool m_bWide = false;
};

std::string sampleOf(Passes& passes) {
    Sample sample;
    passes.begin();
    for (std::string_view part = passes.next(); !part.empty() && sample.add(part);
         part = passes.next()) {
    }
    return sample.finish();
}

/// Returns true if there is at least one valid non-ASCII UTF-8 character for every two wrong bytes.
/// In texts in other encodings, few bytes form valid UTF-8 characters by chance.
bool isMostlyUTF8(const std::string& sample) {
    int right = 0, wrong = 0;
    for (std::size_t at = 0; at < sample.size();) {
        const int c = tools::nextCodePoint(sample, at, sample.size());
        right += c >= 0x80 ? 1 : 0;
        if (c >= 0) continue;
        ++wrong;
        ++at;
    }
    return right > 0 && 2 * right >= wrong;
}

bool isWide(std::string_view name) {
    return name.substr(0, 6) == "UTF-16" || name.substr(0, 6) == "UTF-32";
}

void add(std::vector<Proposal>& proposals, const char* name, int confidence) {
    const bool isThere = std::any_of(proposals.begin(), proposals.end(),
                                     [name](const Proposal& each) { return each.name == name; });
    if (!isThere) proposals.push_back({name, confidence});
}

}  // namespace

std::vector<Proposal> proposeEncodings(Passes& passes) {
    const std::string sample = sampleOf(passes);
    std::vector<Proposal> proposals;
    if (sample.empty()) return proposals;
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<UCharsetDetector, decltype(&ucsdet_close)> detector(ucsdet_open(&error),
                                                                              ucsdet_close);
    ucsdet_setText(detector.get(), sample.data(), static_cast<std::int32_t>(sample.size()), &error);
    std::int32_t count = 0;
    const UCharsetMatch** const matches = ucsdet_detectAll(detector.get(), &count, &error);
    if (error == U_INVALID_CHAR_FOUND) return proposals;  // the detector has no proposal
    if (U_FAILURE(error)) throw std::runtime_error(u_errorName(error));
    for (std::int32_t i = 0; i < count; ++i) {
        const char* const name = ucsdet_getName(matches[i], &error);
        const std::int32_t confidence = ucsdet_getConfidence(matches[i], &error);
        if (std::string_view(name) == kUTF8) continue;
        if (isWide(name) && confidence <= kNoEvidence) continue;
        // The detector knows encodings for which ICU has no converter.
        if (ucnv_countAliases(name, &error) == 0) continue;
        add(proposals, name, confidence);
        for (const auto& [usual, other] : kPairs) {
            if (std::string_view(name) == usual) add(proposals, other, confidence);
            if (std::string_view(name) == other) add(proposals, usual, confidence);
        }
    }
    if (isMostlyUTF8(sample)) add(proposals, kUTF8, 0);
    return proposals;
}

bool isMoreUsual(const std::string& name, const std::string& other) {
    return std::any_of(std::begin(kPairs), std::end(kPairs),
                       [&](const auto& pair) { return pair[0] == name && pair[1] == other; });
}

}  // namespace conv
