#include <cctype>
#include <list>
#include <string>
#include <vector>

#include "QBLCore/Exceptions/QBLException.hpp"
#include "QBLCore/Exceptions/QBLWhat.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/FileManagement/QBLFmDirectory.hpp"
#include "QBLCore/FileManagement/QBLFmEntries.hpp"
#include "QBLCore/FileManagement/QBLFmLines.hpp"
#include "QBLCore/FileManagement/skipRootPath.hpp"
#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/Messages/QBLMessageFile.hpp"
#include "QBLCore/Messages/QBLMessageString.hpp"
#include "QBLCore/Messages/QBLXmlEscape.hpp"
#include "QBLCore/ObjectFactory/QBLObjectFactoryItem.hpp"
#include "QBLCore/Resources/QBLResourceBMF.hpp"
#include "QBLCore/Resources/QBLResourceFactory.hpp"
#include "QBLCore/Types/QBLByteBuffer.hpp"
#include "QBLCore/Types/QBLTypeCast.hpp"
#include "QBLCore/Utility/QBLBase64.hpp"
#include "QBLCore/Utility/QBLSquisher.hpp"
#include "QBLCore/Utility/QBLUtCrc32.hpp"
#include "QBLCore/Utility/QBLUtGetOpt.hpp"
#include "QBLCore/Utility/QBLUtStrTok.hpp"
#include "bench/cost/Work.hpp"
#include "tests/support/BmfFile.hpp"
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
    work.of([&] { message.format("en", nullptr, out); });
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
    work.of(
        [&] { use(QBLFmDir::readDir(tree.root(), &names, pattern.c_str(), nullptr, nullptr)); });
}

const cost::Rows kRows{
    {"FormatManyArguments", Order::kLinear, 512,
     [](std::size_t n, Work& work) {
         format(work, repeated("{0} '{'{9} ''", n));
         format(work, repeated("{0,number}", n / 8));
     }},
    {"FormatDeepPattern", Order::kLinear, 2048,
     [](std::size_t n, Work& work) {
         format(work, repeated("{0,select,other{", n));
         format(work, repeated("{0 , \t ", n) + repeated("{", n) + repeated("}", n));
         format(work, "{0,plural," + repeated(" =1{a}", n) + "other{#}}");
         format(work, "{0,number,::" + repeated("./0 ", n) + "}");
     }},
    {"FormatAllParameters", Order::kLinear, 256,
     [](std::size_t n, Work& work) {
         Failure failure(1);
         QBLMessageComponents message(1);
         for (std::size_t i = 0; i < n; ++i) {
             message << 5;
             failure << QBLMessageString("text");
             failure.addBackTrace(QBL_HERE, "here", "tag");
         }
         failure << message;
         work.of([&] { use(qblXml(failure) + qblWhat(failure)); });
     }},
    {"MessagesByNumber", Order::kLinear, 512,
     [](std::size_t n, Work& work) {
         QBLMessageSet set;
         for (std::size_t i = 0; i < n; ++i) set << QBLMessageString("a");
         work.of([&] {
             for (unsigned i = 0; i < set.getMessageCount(); ++i) use(set.getMessageN(i));
             QBLMessageSet other(set);
             other.transferMessages(set);
         });
     }},
    {"XmlEscape", Order::kLinear, 2048,
     [](std::size_t n, Work& work) {
         const std::string text = "\u0301" + repeated("&<\"\xFF\u0301\x01", n);
         work.of([&] { use(qblXmlEscape(std::string_view(text))); });
     }},
    {"CatalogueTexts", Order::kLinearLog, 256,
     [](std::size_t n, Work& work) {
         std::map<unsigned, std::string> texts;
         for (unsigned i = 0; i < n; ++i) texts[i * 7] = "text";
         const TempTree tree;
         const std::string name = tree.file("texts.bmf", bmfBytes(texts));
         for (const int preload : {0, 1})
             work.of([&] {
                 QBLResourceBMF file(preload);
                 file.setResourceFileName(name);
                 char* text = nullptr;
                 if (file.open())
                     for (unsigned i = 0; i < n; ++i) use(file.getResource(i * 7, &text));
             });
     }},
    {"CatalogueCandidates", Order::kLinear, 64,
     [](std::size_t n, Work& work) {
         std::string locales;
         for (std::size_t i = 0; i < n; ++i)
             locales += {static_cast<char>('a' + i % 26),
                         static_cast<char>('a' + i / 26 % 26),
                         static_cast<char>('a' + i / 676),
                         '_',
                         'U',
                         'S',
                         ' '};
         work.of([&] { use(QBLResourceFactory::getCandidates("base", locales.c_str())); });
     }},
    {"CatalogueCache", Order::kLinearLog, 16,
     [](std::size_t n, Work& work) {
         const TempTree tree;
         for (std::size_t i = 0; i < n; ++i)
             tree.file("t" + std::to_string(i) + ".bmf", bmfBytes({{1, "text"}}));
         work.of([&] {
             for (std::size_t i = 0; i < n; ++i) {
                 const QBLMessage message(tree("t" + std::to_string(i)).c_str(), 1);
                 I18NString out;
                 message.format("en", nullptr, out);
             }
         });
     }},
    {"JoinPaths", Order::kLinear, 512,
     [](std::size_t n, Work& work) {
         work.of([&] {
             std::string path = "/";
             for (std::size_t i = 0; i < n; ++i) QBLFmDir::joinPath(path, "dir");
         });
     }},
    {"SplitPath", Order::kLinear, 2048,
     [](std::size_t n, Work& work) {
         const std::string path = "//" + repeated("\xC3\xA9", n) + repeated("/a\\", n);
         std::string directory, file;
         work.of([&] {
             use(QBLFmDir::splitPath(path.c_str(), &directory, &file));
             use(skipRootPath(path.c_str()));
             QBLFmDir::resolveEffectivePath(directory);
         });
     }},
    {"OpenParent", Order::kLinear, 2048,
     [](std::size_t n, Work& work) {
         const std::string path = repeated("./", n) + "x";
         QBLFmDirectory parent;
         std::string name;
         work.of([&] { use(parent.openParent(path.c_str(), name)); });
     }},
    {"CreateDirectories", Order::kLinear, 16,
     [](std::size_t n, Work& work) {
         const TempTree tree;
         const std::string path = tree(repeated("d/", n));
         work.of([&] { use(QBLFmDir::createRecursiveDir(path.c_str())); });
     }},
    {"WalkDeepTree", Order::kLinear, 16,
     [](std::size_t n, Work& work) {
         const TempTree tree;
         QBLFmDir::createRecursiveDir(tree(repeated("d/", n)).c_str());
         work.of([&] {
             for (const QBLFmEntry& entry : QBLFmEntries(tree.root(), QBLFmEntries::kRecursive))
                 use(entry.isDirectory());
             use(QBLFmDir::removeDir(tree("d").c_str()));
         });
     }},
    {"ListByStars", Order::kLinear, 256,
     [](std::size_t n, Work& work) {
         list(work, repeated("*a", n) + "b");
         list(work, repeated("*", n) + "?b");
     }},
    {"ListManyNames", Order::kLinearLog, 32,
     [](std::size_t n, Work& work) {
         const TempTree tree;
         for (std::size_t i = 0; i < n; ++i) tree.file("common prefix " + std::to_string(i * 7919));
         std::list<std::string> names;
         work.of([&] { use(QBLFmDir::readDir(tree.root(), &names, nullptr, nullptr, nullptr)); });
     }},
    {"ReadLines", Order::kLinear, 8192,
     [](std::size_t n, Work& work) {
         const TempTree tree;
         const std::string name = tree.file("text", repeated("a\u00E9", n) + repeated("\n", n));
         work.of([&] {
             for (const std::string_view line : QBLFmLines(name)) use(line.size());
         });
     }},
    {"Tokens", Order::kLinear, 2048,
     [](std::size_t n, Work& work) {
         const std::string text = repeated("a, ;", n);
         work.of([&] {
             QBLUtStrTok tokens(text.c_str());
             for (std::string token; tokens.nextToken(token);) use(token);
         });
     }},
    {"TokensManySeparators", Order::kQuadratic, 256,
     [](std::size_t n, Work& work) {
         QBLUtStrTok tokens(repeated("a ", n).c_str(), (repeated("b", n) + " ").c_str());
         work.of([&] {
             for (std::string token; tokens.nextToken(token);) use(token);
         });
     }},
    {"Options", Order::kLinear, 1024,
     [](std::size_t n, Work& work) {
         std::string cluster = "-" + repeated("vx", n), word = "-o", value = "value";
         std::vector<char*> argv = {&word[0], &cluster[0]};
         for (std::size_t i = 0; i < n / 2; ++i) argv.insert(argv.end(), {&word[0], &value[0]});
         QBLUtGetOpt options;
         options.setPrintErrors(0);
         work.of([&] {
             const char* name = nullptr;
             while (options.getOpt(static_cast<int>(argv.size()), argv.data(), "vo:", &name) !=
                        -1 ||
                    name != nullptr)
                 use(name);
         });
     }},
    {"CastDigits", Order::kLinear, 4096,
     [](std::size_t n, Work& work) {
         const std::string nines = repeated("9", n), real = "0." + nines, zeros = repeated("0", n);
         const std::string small = std::string(zeros).append(".").append(zeros).append("5");
         work.of([&] {
             double value = 0;
             int number = 0;
             QBLInterval2 interval;
             QBLTime2 time;
             for (const std::string& text : {real, nines, zeros + "1", small}) {
                 use(QBLTypeCast::string2double(&value, text.c_str()));
                 use(QBLTypeCast::string2int32(&number, text.c_str()));
                 use(QBLTypeCast::string2DTinterval(&interval,
                                                    std::string(text).append(" 10:00").c_str()));
                 use(QBLTypeCast::string2time(&time, ("10:00:00." + text).c_str()));
             }
         });
     }},
    {"Base64AndTokens", Order::kLinear, 2048,
     [](std::size_t n, Work& work) {
         const std::string text = repeated("\x01 a\xFFtext", n);
         work.of([&] {
             use(qblBase64Encode(text));
             const std::unique_ptr<char[]> token(QBLSquisher::squish(text.c_str()));
             use(std::unique_ptr<char[]>(QBLSquisher::unSquish(token.get())));
             use(std::unique_ptr<char[]>(QBLSquisher::unSquish(repeated("A", n).c_str())));
         });
     }},
    {"ByteBuffer", Order::kLinear, 2048,
     [](std::size_t n, Work& work) {
         const std::string text = repeated("a", n);
         work.of([&] {
             QBLByteBuffer buffer(QBLByteBuffer::GROW_BY_HALF, 0, 0);
             for (std::size_t i = 0; i < n; ++i) buffer << 'a' << static_cast<int>(i);
             buffer.printf("<%s>", text.c_str());
         });
     }},
    {"ListByNumber", Order::kLinear, 512,
     [](std::size_t n, Work& work) {
         QBLList<int> list;
         for (std::size_t i = 0; i < n; ++i) list.push_back(static_cast<int>(i));
         work.of([&] {
             for (unsigned i = 0; i < n; ++i) use(list[i]);
             for (auto i = static_cast<unsigned>(n); i > 0; --i) use(list[i - 1]);
         });
     }},
    {"ListByAnyNumber", Order::kQuadratic, 256,
     [](std::size_t n, Work& work) {
         QBLList<int> list;
         for (std::size_t i = 0; i < n; ++i) list.push_back(static_cast<int>(i));
         work.of([&] {
             for (unsigned i = 0; i < n; ++i)
                 use(list[static_cast<unsigned>(n) / 4 * (i % 2 * 2 + 1)]);
         });
     }},
    {"FactoryClasses", Order::kLinearLog, 128,
     [](std::size_t n, Work& work) {
         QBLObjectFactory factory;
         std::vector<char> ids(n);
         const auto create = [](QBLObjectFactory* made) -> QBLObjectFactoryItem* {
             return new Item(made);
         };
         work.of([&] {
             for (char& id : ids) factory.registerClass(&id, create);
             for (char& id : ids) factory.unregisterClass(&id);
             factory.registerClass(Item::s_id, create);
             std::vector<QBLObjectFactoryItem*> items;
             for (std::size_t i = 0; i < n; ++i) items.push_back(factory.createObject(Item::s_id));
             for (QBLObjectFactoryItem* item : items) item->release();
         });
     }},
};

}  // namespace
