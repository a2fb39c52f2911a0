#include <list>
#include <vector>

#include "QBLCore/Types/QBLTypeCast.hpp"
#include "QBLCore/Utility/QBLUtGetOpt.hpp"
#include "bench/cost/Work.hpp"
#include "tests/support/BmfFile.hpp"
#include "tests/support/Library.hpp"
#include "tests/support/TempTree.hpp"

// The rows of messages, files, data types and utilities.

namespace {

using cost::Order;
using cost::repeated;
using cost::use;
using cost::Work;

class Failure : public QBLException {
public:
    using QBLException::QBLException;
    QBL_EXCEPTION_METHODS(Failure)
};

/// Formats a message with a pattern and two arguments.
void format(Work& work, const std::string& pattern) {
    const TempTree tree;
    tree.file("texts.bmf", bmfBytes({{1, pattern}}));
    const std::string base = tree("texts");
    QBLMessage message(base.c_str(), 1);
    message << 7 << repeated("a", pattern.size());
    I18NString out;
    work.of(pattern.substr(0, 20), [&] { message.format("en", nullptr, out); });
}

class Item : public QBLObjectFactoryItem {
public:
    using QBLObjectFactoryItem::QBLObjectFactoryItem;
    char* getClassId() override { return s_id; }
    static inline char s_id[] = "Item";
};

/// Lists a directory whose only file has the longest name, by a pattern.
void list(Work& work, const std::string& pattern) {
    const TempTree tree;
    tree.file(std::string(255, 'a'));
    std::list<std::string> names;
    work.of(pattern.substr(0, 20), [&] {
        use(QBLFmDir::readDir(tree.root(), &names, pattern.c_str(), nullptr, nullptr));
    });
}

const cost::Rows kRows{
    {"Messages", Order::kLinear, 512,
     [](std::size_t n, Work& work) {
         format(work, repeated("{0} '{'{9} ''", n));
         format(work, repeated("{0,number}", n / 8));
         format(work, repeated("{0,select,other{", n));
         format(work, repeated("{0 , \t ", n) + repeated("{", n) + repeated("}", n));
         format(work, "{0,plural," + repeated(" =1{a}", n) + "other{#}}");
         format(work, "{0,number,::" + repeated("./0 ", n) + "}");
         Failure failure(1);
         QBLMessageComponents message(1);
         QBLMessageSet set, other;
         std::string locales, text = "\u0301" + repeated("&<\"\xFF\u0301\x01", n);
         for (std::size_t i = 0; i < n; ++i) {
             message << 5;
             failure << QBLMessageString("text");
             failure.addBackTrace(QBL_HERE, "here", "tag");
             set << QBLMessageString("a");
             for (const std::size_t letter : {i % 26, i / 26 % 26, i / 676})
                 locales += static_cast<char>('a' + letter);
             locales += "_US ";
         }
         failure << message;
         work.of("XML", [&] { use(qblXml(failure)); });
         work.of("what", [&] { use(qblWhat(failure)); });
         work.of("escape", [&] { use(qblXmlEscape(std::string_view(text))); });
         work.of("getMessageN", [&] {
             for (unsigned i = 0; i < set.getMessageCount(); ++i) use(set.getMessageN(i));
         });
         work.of("transferMessages", [&] { other.transferMessages(set); });
         work.of("candidates",
                 [&] { use(QBLResourceFactory::getCandidates("base", locales.c_str())); });
     }},
    {"LookUps", Order::kLinearLog, 256,
     [](std::size_t n, Work& work) {
         std::map<unsigned, std::string> texts;
         for (unsigned i = 0; i < n; ++i) texts[i * 7] = "text";
         const TempTree tree;
         const std::string name = tree.file("texts.bmf", bmfBytes(texts));
         for (const int preload : {0, 1})
             work.of("catalogue", [&] {
                 QBLResourceBMF file(preload);
                 file.setResourceFileName(name);
                 char* text = nullptr;
                 if (file.open())
                     for (unsigned i = 0; i < n; ++i) use(file.getResource(i * 7, &text));
             });
         QBLObjectFactory factory;
         std::vector<char> ids(n);
         std::vector<QBLObjectFactoryItem*> items(n);
         const auto create = [](QBLObjectFactory* made) -> QBLObjectFactoryItem* {
             return new Item(made);
         };
         work.of("registerClass", [&] {
             for (char& id : ids) factory.registerClass(&id, create);
             for (char& id : ids) factory.unregisterClass(&id);
         });
         factory.registerClass(Item::s_id, create);
         work.of("createObject", [&] {
             for (auto& item : items) item = factory.createObject(Item::s_id);
             for (auto* item : items) item->release();
         });
     }},
    {"ManyFiles", Order::kLinearLog, 32,
     [](std::size_t n, Work& work) {
         const TempTree tree;
         std::list<std::string> names;
         for (std::size_t i = 0; i < n; ++i)
             tree.file("prefix " + std::to_string(i * 7919) + ".bmf", bmfBytes({{1, "text"}}));
         work.of("readDir",
                 [&] { use(QBLFmDir::readDir(tree.root(), &names, nullptr, nullptr, nullptr)); });
         work.of("catalogues", [&] {
             for (std::size_t i = 0; i < n; ++i) {
                 const std::string base = tree("prefix " + std::to_string(i * 7919));
                 I18NString out;
                 QBLMessage(base.c_str(), 1).format("en", nullptr, out);
             }
         });
     }},
    {"Paths", Order::kLinear, 1024,
     [](std::size_t n, Work& work) {
         const std::string path = "//" + repeated("\xC3\xA9", n) + repeated("/a\\", n);
         const std::string dots = repeated("./", n) + "x";
         QBLFmDirectory parent;
         std::string joined = "/", directory, file;
         work.of("joinPath", [&] {
             for (std::size_t i = 0; i < n; ++i) QBLFmDir::joinPath(joined, "dir");
         });
         work.of("splitPath", [&] { use(QBLFmDir::splitPath(path.c_str(), &directory, &file)); });
         work.of("skipRootPath", [&] { use(skipRootPath(path.c_str())); });
         work.of("resolve", [&] { QBLFmDir::resolveEffectivePath(directory); });
         work.of("openParent", [&] { use(parent.openParent(dots.c_str(), file)); });
         list(work, repeated("*a", n) + "b");
         list(work, repeated("*", n) + "?b");
         const TempTree tree;
         const std::string text = tree.file("text", repeated("a\u00E9", n) + repeated("\n", n));
         work.of("lines", [&] {
             for (const std::string_view line : QBLFmLines(text)) use(line.size());
         });
     }},
    {"DeepTree", Order::kLinear, 16,
     [](std::size_t n, Work& work) {
         const TempTree tree;
         const std::string path = tree(repeated("d/", n));
         work.of("create", [&] { use(QBLFmDir::createRecursiveDir(path.c_str())); });
         work.of("walk", [&] {
             for (const QBLFmEntry& entry : QBLFmEntries(tree.root(), QBLFmEntries::kRecursive))
                 use(entry.isDirectory());
         });
         work.of("remove", [&] { use(QBLFmDir::removeDir(tree("d").c_str())); });
     }},
    {"DataAndOptions", Order::kLinear, 2048,
     [](std::size_t n, Work& work) {
         const std::string words = repeated("a, ;", n), text = repeated("\x01 a\xFFtext", n);
         work.of("tokens", [&] {
             QBLUtStrTok tokens(words.c_str());
             for (std::string token; tokens.nextToken(token);) use(token);
         });
         std::string cluster = "-" + repeated("vx", n), word = "-o", value = "value";
         std::vector<char*> argv = {&word[0], &cluster[0]};
         for (std::size_t i = 0; i < n / 2; ++i) argv.insert(argv.end(), {&word[0], &value[0]});
         QBLUtGetOpt options;
         options.setPrintErrors(0);
         const auto count = static_cast<int>(argv.size());
         work.of("options", [&] {
             const char* name = nullptr;
             while (options.getOpt(count, argv.data(), "vo:", &name) != -1 || name != nullptr)
                 use(name);
         });
         const std::string nines = repeated("9", n), zeros = repeated("0", n);
         const std::string fraction = "." + zeros;
         for (const std::string& digits : {"0." + nines, nines, zeros + "1", zeros + fraction}) {
             const std::string interval = digits + " 10:00", time = "10:00:00." + digits;
             double real = 0;
             int number = 0;
             QBLInterval2 days;
             QBLTime2 clock;
             work.of("double", [&] { use(QBLTypeCast::string2double(&real, digits.c_str())); });
             work.of("integer", [&] { use(QBLTypeCast::string2int32(&number, digits.c_str())); });
             work.of("interval",
                     [&] { use(QBLTypeCast::string2DTinterval(&days, interval.c_str())); });
             work.of("time", [&] { use(QBLTypeCast::string2time(&clock, time.c_str())); });
         }
         const std::unique_ptr<char[]> token(QBLSquisher::squish(text.c_str()));
         const auto unsquish = [](const char* each) {
             use(std::unique_ptr<char[]>(QBLSquisher::unSquish(each)));
         };
         work.of("Base64", [&] { use(qblBase64Encode(text)); });
         work.of("squish",
                 [&] { use(std::unique_ptr<char[]>(QBLSquisher::squish(text.c_str()))); });
         work.of("unSquish", [&] { unsquish(token.get()); });
         work.of("unSquish letters", [&] { unsquish(repeated("A", n).c_str()); });
         QBLByteBuffer buffer(QBLByteBuffer::GROW_BY_HALF, 0, 0);
         work.of("write", [&] {
             for (std::size_t i = 0; i < n; ++i) buffer << 'a' << static_cast<int>(i);
         });
         work.of("printf", [&] { buffer.printf("<%s>", nines.c_str()); });
         QBLList<int> list;
         for (std::size_t i = 0; i < n; ++i) list.push_back(static_cast<int>(i));
         work.of("list", [&] {
             for (unsigned i = 0; i < n; ++i) use(list[i]);
             for (auto i = static_cast<unsigned>(n); i > 0; --i) use(list[i - 1]);
         });
     }},
    {"FarElements", Order::kQuadratic, 256,
     [](std::size_t n, Work& work) {
         QBLUtStrTok tokens(repeated("a ", n).c_str(), (repeated("b", n) + " ").c_str());
         work.of("tokens", [&] {
             for (std::string token; tokens.nextToken(token);) use(token);
         });
         QBLList<int> list;
         for (std::size_t i = 0; i < n; ++i) list.push_back(static_cast<int>(i));
         work.of("list", [&] {
             for (unsigned i = 0; i < n; ++i)
                 use(list[static_cast<unsigned>(n) / 4 * (i % 2 * 2 + 1)]);
         });
     }},
};

}  // namespace
