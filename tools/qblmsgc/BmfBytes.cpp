#include "tools/qblmsgc/BmfBytes.hpp"

#include <algorithm>

#include "tools/common/Utf8.hpp"

namespace msgc {

namespace {

const char kMagic[8] = "BMF1";
const std::size_t kMagicLength = 5;  // including the NUL; the shape follows
const std::size_t kHeaderSize = 16;
const std::size_t kEntrySize = 12;

void append(std::string& out, std::size_t value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        out += static_cast<char>(static_cast<unsigned char>(value >> shift));
}

unsigned numberAt(const std::string& bytes, std::size_t offset) {
    unsigned value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes[offset + i]);
    return value;
}

}  // namespace

bool fitsBmf(const Entries& entries) {
    unsigned long long size = kHeaderSize;
    for (const Entry& entry : entries) size += kEntrySize + entry.text.size() + 1;
    return size <= 0xFFFFFFFFULL;
}

std::string writeBmf(const Entries& entries, unsigned shape) {
    std::vector<const Entry*> sorted;
    for (const Entry& entry : entries) sorted.push_back(&entry);
    std::sort(sorted.begin(), sorted.end(),
              [](const Entry* a, const Entry* b) { return a->id < b->id; });
    std::size_t textSize = 0;
    for (const Entry* entry : sorted) textSize += entry->text.size() + 1;
    std::string out(kMagic, sizeof kMagic - 4);
    append(out, shape);  // The first byte is the terminating null of the magic.
    out.reserve(kHeaderSize + kEntrySize * sorted.size() + textSize);
    append(out, sorted.size());
    append(out, textSize);
    std::size_t offset = 0;
    for (const Entry* entry : sorted) {
        append(out, entry->id);
        append(out, offset);
        append(out, entry->text.size() + 1);
        offset += entry->text.size() + 1;
    }
    for (const Entry* entry : sorted) out.append(entry->text.c_str(), entry->text.size() + 1);
    return out;
}

bool readBmf(const std::string& bytes, std::vector<BmfText>& texts, BmfProblem& problem) {
    const auto refuse = [&problem](std::size_t offset, QBLTypedMessage (*reason)()) {
        problem = {offset, reason};
        return false;
    };
    if (bytes.compare(0, kMagicLength, kMagic, kMagicLength) != 0)
        return refuse(0, qblmsgcmsgs::msgcReasonMagic);
    if (bytes.size() < kHeaderSize) return refuse(bytes.size(), qblmsgcmsgs::msgcReasonCut);
    const std::size_t count = numberAt(bytes, 8), textSize = numberAt(bytes, 12);
    if (count > (bytes.size() - kHeaderSize) / kEntrySize)
        return refuse(8, qblmsgcmsgs::msgcReasonCut);
    const std::size_t begin = kHeaderSize + kEntrySize * count;
    if (textSize > bytes.size() - begin) return refuse(12, qblmsgcmsgs::msgcReasonCut);
    texts.clear();
    std::size_t checkedBegin = 0, checkedEnd = 0;  // bytes already checked to be UTF-8
    for (std::size_t at = kHeaderSize; at < begin; at += kEntrySize) {
        const std::size_t offset = numberAt(bytes, at + 4), length = numberAt(bytes, at + 8);
        const unsigned id = numberAt(bytes, at);
        if (!texts.empty() && texts.back().id >= id)
            return refuse(at, qblmsgcmsgs::msgcReasonOrder);
        if (offset > textSize || length > textSize - offset)
            return refuse(at, qblmsgcmsgs::msgcReasonOutside);
        const std::size_t first = begin + offset;
        // If a text is the end of the text checked last, it was checked together with that text.
        const bool isPart = checkedBegin <= first && first + length == checkedEnd && length > 0;
        if (!isPart) {
            if (length == 0 || bytes.find('\0', first) != first + length - 1)
                return refuse(first, qblmsgcmsgs::msgcReasonZero);
            const std::size_t illFormed = tools::findIllFormed(bytes, first, first + length - 1);
            if (illFormed != std::string::npos)
                return refuse(illFormed, qblmsgcmsgs::msgcReasonUtf8);
            checkedBegin = first;
            checkedEnd = first + length;
        } else if ((static_cast<unsigned char>(bytes[first]) & 0xC0) == 0x80) {
            return refuse(first, qblmsgcmsgs::msgcReasonUtf8);
        }
        texts.push_back({id, std::string_view(bytes).substr(first, length - 1)});
    }
    return true;
}

unsigned shapeOfBmf(const std::string& bytes) { return numberAt(bytes, 4) & 0xFFFFFF; }

bool isCanonicalBmf(const std::string& bytes, const std::vector<BmfText>& texts) {
    std::size_t end = kHeaderSize + kEntrySize * texts.size();
    for (const BmfText& each : texts) {
        if (each.text.data() != bytes.data() + end) return false;
        end += each.text.size() + 1;
    }
    return end == bytes.size();
}

}  // namespace msgc
