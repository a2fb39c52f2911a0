// Calls the operations that take a length, a size, a count or an offset with extreme numbers. No
// number promises memory that the caller does not have: where it would, the pointer is null.
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "i18n/cpp/i18n_external_buffer.h"
#include "tests/faults/Injector.hpp"
#include "tests/support/Library.hpp"
#include "tests/support/TempTree.hpp"
#include "tests/support/ThrowChecks.hpp"

namespace {

/// What a call uses.
struct World {
    World() {
        EXPECT_TRUE(file.open(tree.file("old", "x").c_str(), QBLFmFile::existing, 0) &&
                    file64.open(tree("old").c_str(), QBLFmFile64::existing, 0) &&
                    fresh.open(tree("new").c_str()) && variant.setValue("abc", 0));
        bytes << "abc";
    }
    char* at(int size) { return size <= 12 ? room : nullptr; }
    const TempTree tree;
    QBLFmFile file;
    QBLFmFile64 file64;
    QBLFmReplaceFile fresh;
    QBLVariant variant;
    QBLByteBuffer bytes;
    QBLMessageComponents message;
    I18NString text{L"abca"};
    I18NConverter utf16{"UTF-16"};
    I18NErrorCodes error = I18N_OK;
    char room[12] = "";
    const char* null = nullptr;
};
std::string shown(long long result) { return std::to_string(result); }
std::string shown(const I18NString& text) { return text.toUtf8(); }
std::string shown(const QBLByteBuffer& bytes) { return {bytes.begin(), bytes.end()}; }

/// `expected` has the result for each number; O for QBLOutOfMemoryError, A for QBLAssertError, T
/// for QBLThreadResourceError, N for I18NRuntimeError.
struct Row {
    const char* expected;
    std::string (*run)(World&, int);
    const char* call;
};
// A call with a number `n` of a type.
#define CALL(Type, ...)                                                               \
    [](World& w [[maybe_unused]], int number) {                                       \
        return shown([&](Type n) { return __VA_ARGS__; }(static_cast<Type>(number))); \
    },                                                                                \
        #__VA_ARGS__

const Row kRows[] = {
    {"|a|O||", CALL(int, I18NString(n, L'a'))},
    {"|a|O||", CALL(int, w.text.resize(n))},
    {"0|2|O|0|0", CALL(int, I18NString(n, wchar_t{0x1F600}).nUnits())},
    {"|a|O|A|abc", CALL(int, I18NString("abc", nullptr, n))},
    {"||ab|ab|ab", CALL(int, I18NString(u"ab", n))},
    {"0|3|-1|0|0", CALL(int, w.text.find(L'a', n))},
    {"0|3|-1|0|0", CALL(int, w.text.findFirstOf(L'a', n))},
    {"0|0|3|3|3", CALL(int, w.text.rfind(L'a', n))},
    {"0|0|3|3|3", CALL(int, w.text.findLastOf(L'a', n))},
    {"1|2|-1|-1|-1", CALL(int, w.text.incrementOffset(n))},
    {"0|1|4|0|0", CALL(int, (w.text.begin() + n).getOffset())},
    {"0|1|4|0|0", CALL(int, I18NStringIterator(w.text, n) - w.text.begin())},
    {"4|4|2147483647|-2147483648|-1",
     CALL(int, (I18NStringIterator(w.text, n) + INT_MAX).getOffset())},
    {"N|N|N|N|N", CALL(int, (w.text.attach(n > 1 ? nullptr : w.room, n), 0))},
    {"0|0|10|0|0", CALL(int, w.text.copyToExternalBuffer(w.room, n))},
    {"-1|0|1073741822|-1073741825|-1", CALL(int, w.utf16.numLegacyCodePoints(n))},
    {"-10|-11|-10|-10|-10", CALL(int, (w.utf16.fromUnicode(w.at(n), n, u"ab", &w.error), w.error))},
    {"-11|-11|-10|-11|-11",
     CALL(int, (w.utf16.toUnicode(w.at(n), n, "abc", 4, &w.error), w.error))},
    {"0|0|-10|0|0", CALL(int, (w.utf16.toUnicode(w.room, 12, w.at(n), n, &w.error), w.error))},
    {"0|N|N|N|N", CALL(std::size_t, (I18NTextStream(&w.utf16, nullptr).put(w.null, n), 0))},
    {"2|2|6|6|6", CALL(int, I18NUTF16ToExternalBuffer(u"ab", n, w.room, 12))},
    {"0|0|6|0|0", CALL(int, I18NExternalBufferToUTF16(u"ab", -1, w.room, n))},
    {"0|0|O|O|O", CALL(unsigned long, I18NStringPool(n).size())},
    {"7|7|2147483647|2147483655|O", CALL(unsigned, w.bytes.roundUpToBlockSizeMultiple(n))},
    {"||O|O|O", CALL(unsigned, QBLByteBuffer(n))},
    {"|a|abc|abc|abc", CALL(unsigned, (w.bytes.setLength(n), w.bytes))},
    {"abc|bc|||", CALL(unsigned, (w.bytes.chop(n), w.bytes))},
    {"abc|A|A|A|A", CALL(unsigned, w.bytes.appendChars(w.null, n))},
    {"1|1|0|0|0", CALL(unsigned long, w.variant.setValue("abc", n))},
    {"1|1|0|0|0", CALL(unsigned long, (w.variant.setValueSize(n), w.variant.getValue(w.room, 12)))},
    {"1|0|0|0|0", CALL(unsigned, (w.message << 5).getParmN(n) != nullptr)},
    {"5|6|5|5|5", CALL(unsigned, QBLList<int>({5, 6})[n])},
    {"0|0|0|0|0", CALL(unsigned, QBLList<int>()[n])},
    {"0|0|0|T|T", CALL(unsigned long, QBLSentinelQueue<int>(n).withdraw(0))},
    {"0|0|T|0|0", CALL(int, (QBLThreadSemaphore(INT_MAX - 1).post(n), 0))},
    {"1|1|1|1|1", CALL(unsigned long, skipRootPath("/a", n))},
    {"0|-1|-1|-1|-1", CALL(unsigned long, w.file.read(nullptr, n))},
    {"0|-1|-1|-1|-1", CALL(unsigned long, w.file.write(nullptr, n))},
    {"1|0|0|0|0", CALL(unsigned long, w.fresh.write(nullptr, n))},
    {"0|1|2147483647|-1|-1", CALL(long, w.file.seek(n, QBLFmFile::begin))},
    {"0|1|2147483647|-1|-1", CALL(long long, w.file64.seek(n, QBLFmFile64::begin))},
    {"0|1|2147483647|1|1", CALL(long, (w.file.truncate(n), w.file.getLength()))},
    {"0|1|2147483647|1|1", CALL(long long, (w.file64.truncate(n), w.file64.getLength()))},
};

TEST(LimitsTest, ExtremeNumbersHaveTheOutcomeOfTheTable) {
    fault::limitAllocations(64U << 20);
    for (const Row& row : kRows)
        for (const bool force : {false, true}) {
            I18NString::setForceUnicodeString(force);
            std::string outcomes;
            // INT_MAX is half of the largest unsigned number, INT_MIN the number after it.
            for (const int number : {0, 1, INT_MAX, INT_MIN, -1}) try {
                    World world;
                    outcomes += "|" + row.run(world, number);
                } catch (const QBLThrowable& error) {
                    outcomes.append("|").append(1, error.getThrowableName()[3]);
                }
            EXPECT_EQ("|" + std::string(row.expected), outcomes) << row.call;
        }
    I18NString::setForceUnicodeString(false);
    fault::limitAllocations(SIZE_MAX);
}

}  // namespace
