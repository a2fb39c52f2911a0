#include "QBLCore/Messages/QBLTypedMessage.hpp"

#include <chrono>
#include <type_traits>

#include "QBLCore/Messages/QBLMessageSet.hpp"
#include "tests/support/BmfFile.hpp"
#include "tests/support/TempTree.hpp"
#include "tests/support/ThrowChecks.hpp"
#include "typedmsgs.hpp"

namespace {

using std::chrono::system_clock;

template <class... Arguments>
constexpr bool kFull = std::is_invocable_v<decltype(typedmsgs::diskFull), Arguments...>;
template <class... Arguments>
constexpr bool kFiles = std::is_invocable_v<decltype(typedmsgs::fileCount), Arguments...>;
template <class Argument>
constexpr bool kDay = std::is_invocable_v<decltype(typedmsgs::oneDay), Argument>;

static_assert(kFull<const char*, int> && kFull<char (&)[4], double> &&
              kFull<I18NString, unsigned long long> && kFull<std::string, unsigned char> &&
              kFiles<std::string_view, long> && kDay<system_clock::time_point> &&
              kDay<std::chrono::time_point<system_clock, std::chrono::hours>> &&
              kDay<QBLTypedDate>);
static_assert(!kFull<const char*> && !kFull<const char*, int, int> && !kFull<int, const char*> &&
                  !kFull<const char*, const char*> && !kFull<std::nullptr_t, int> &&
                  !kFull<bool, int> && !kFull<const wchar_t*, int> && !kFull<const char*, bool> &&
                  !kFull<const char*, char> && !kFull<const char*, int*> &&
                  !kFull<const char*, typedmsgs_ids> && !kFiles<const char*, double> &&
                  !kFiles<const char*, std::nullptr_t> && !kDay<long> && !kDay<const char*> &&
                  !kDay<std::chrono::steady_clock::time_point>,
              "a missing, extra or wrongly typed argument must not compile");

template <class Message>
std::string text(const Message& message, const char* language) {
    I18NString out;
    message.format(language, nullptr, out);
    return out.toUtf8();
}

/// Makes a message use the catalogue of the build.
QBLTypedMessage found(QBLTypedMessage message) {
    message.setMsgFile(I18NString(QBL_TYPED_MSGS));
    return message;
}

}  // namespace

TEST(QBLTypedMessageTest, ShowsItsArgumentsInEachLanguage) {
    const std::string path = "/var";
    const char* const null = nullptr;
    const system_clock::time_point day(std::chrono::hours(24 * 365 * 60));  // in 2029
    const struct {
        QBLTypedMessage message;
        const char *english, *german;
    } table[] = {
        {typedmsgs::diskFull(path, 4294967295U), "4,294,967,295 bytes do not fit into /var.",
         "/var fasst keine 4.294.967.295 Bytes."},
        {typedmsgs::diskFull(I18NString("x"), -1.5), "-1.5 bytes do not fit into x.",
         "x fasst keine -1,5 Bytes."},
        {typedmsgs::diskFull(null, -9007199254740992LL),
         "-9,007,199,254,740,992 bytes do not fit into .",
         " fasst keine -9.007.199.254.740.992 Bytes."},
        {typedmsgs::fileCount("root", 1), "The system has 1 file.", "root hat eine Datei."},
        {typedmsgs::fileCount(std::string_view("eve!", 3), 2ULL), "eve has 2 files.",
         "eve hat 2 Dateien."},
        {typedmsgs::oneDay(day), "2029 00", "2029"},
        {typedmsgs::new_("0", "1", "2", "3", "5", "6", 7, "8", "9"), "012356789", "987653210"},
        {typedmsgs::qblPluginLoad(), "{", "{{"},
        {typedmsgs::kCatalogue_("a", "b"), "ab", "ab"},
    };
    setenv("TZ", "UTC", 1);
    for (const auto& row : table) {
        EXPECT_EQ(row.english, text(found(row.message), "en"));
        EXPECT_EQ(row.german, text(found(row.message), "de"));
    }
}

TEST(QBLTypedMessageTest, ShowsNoTextOfAnotherShape) {
    TempTree tree;
    tree.file("a_en.bmf", bmfBytes({{1, "one"}}));
    tree.file("b_en.bmf", bmfBytes({{1, "one"}}).replace(5, 3, 3, '\0'));
    const std::string a = tree("a"), b = tree("b");
    const unsigned shape = 0x78797A;  // as in bmfBytes()
    const QBLTypedCatalogue ours = {a.c_str(), shape}, other = {a.c_str(), 0xABC},
                            none = {b.c_str(), shape}, missing = {"./missing", shape};
    QBLMessageSet set;
    set << QBLTypedMessage(ours, 1, {}) << QBLTypedMessage(other, 1, {});
    EXPECT_EQ(0U, text(set, "en").find("one<Message Name=\"QBLMessage\""))
        << "copies keep the check";
    EXPECT_EQ('<', text(QBLTypedMessage(none, 1, {}), "en")[0]);
    ours.check("en");
    EXPECT_TRUE(ours.matches("de") && !other.matches() && !none.matches() && !missing.matches());
    const std::string wrong = a +
                              "_en.bmf: made from another version of the catalogue than the "
                              "program (shape 78797A, not 000ABC)";
    QBL_EXPECT_THROW(other.check(), QBLIllegalStateError, wrong.c_str());
    const std::string bare =
        b + "_en.bmf: compiled without --typed; compile it with qblmsgc --typed";
    QBL_EXPECT_THROW(none.check(), QBLIllegalStateError, bare.c_str());
    QBL_EXPECT_THROW(missing.check(), QBLIllegalStateError,
                     "./missing: no message file found; qblmsgc -w lists the files that are "
                     "searched");
    // The file of the build is kept in memory, the others are too new.
    const QBLTypedCatalogue kept = {QBL_TYPED_MSGS, typedmsgs::kCatalogue.shape ^ 1};
    EXPECT_EQ("{", text(found(typedmsgs::qblPluginLoad()), "en"));
    EXPECT_EQ('<', text(QBLTypedMessage(kept, QBLPluginLoad, {}), "en")[0]);
}
