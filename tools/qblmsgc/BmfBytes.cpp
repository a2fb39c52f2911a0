#include "tools/qblmsgc/BmfBytes.hpp"

#include <algorithm>

#include "tools/common/Utf8.hpp"

namespace msgc {

namespace {

const char kMagic[8] = "BMF1";
const std::size_t kMagicLength = 5;  // with its zero; the rest does not matter to readers
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

std::string writeBmf(const Entries& entries) {
    std::vector<const Entry*> sorted;
    for (const Entry& entry : entries) sorted.push_back(&entry);
    std::sort(sorted.begin(), sorted.end(),
              [](const Entry* a, const Entry* b) { return a->id < b->id; });
    std::size_t textSize = 0;
    for (const Entry* entry : sorted) textSize += entry->text.size() + 1;
    std::string out(kMagic, sizeof kMagic);
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

bool readBmf(const std::string& bytes, Entries& entries, BmfProblem& problem) {
    const auto refuse = [&problem](std::size_t offset, qblmsgcmsgs reason) {
        problem = {offset, reason};
        return false;
    };
    if (bytes.compare(0, kMagicLength, kMagic, kMagicLength) != 0)
        return refuse(0, MSGC_REASON_MAGIC);
    if (bytes.size() < kHeaderSize) return refuse(bytes.size(), MSGC_REASON_CUT);
    const std::size_t count = numberAt(bytes, 8), textSize = numberAt(bytes, 12);
    if (count > (bytes.size() - kHeaderSize) / kEntrySize) return refuse(8, MSGC_REASON_CUT);
    const std::size_t begin = kHeaderSize + kEntrySize * count;
    if (textSize > bytes.size() - begin) return refuse(12, MSGC_REASON_CUT);
    entries.clear();
    for (std::size_t at = kHeaderSize; at < begin; at += kEntrySize) {
        const std::size_t offset = numberAt(bytes, at + 4), length = numberAt(bytes, at + 8);
        Entry entry;
        entry.id = numberAt(bytes, at);
        if (!entries.empty() && entries.back().id >= entry.id) return refuse(at, MSGC_REASON_ORDER);
        if (offset > textSize || length > textSize - offset) return refuse(at, MSGC_REASON_OUTSIDE);
        if (length == 0 || bytes.find('\0', begin + offset) != begin + offset + length - 1)
            return refuse(begin + offset, MSGC_REASON_ZERO);
        entry.text.assign(bytes, begin + offset, length - 1);
        const std::size_t illFormed = tools::findIllFormed(entry.text);
        if (illFormed != std::string::npos)
            return refuse(begin + offset + illFormed, MSGC_REASON_UTF8);
        entries.push_back(std::move(entry));
    }
    return true;
}

}  // namespace msgc
