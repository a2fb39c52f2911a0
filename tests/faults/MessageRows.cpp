#include <cerrno>
#include <memory>
#include <string>

#include "QBLCore/Messages/QBLErrnoMessage.hpp"
#include "QBLCore/Messages/QBLMessage.hpp"
#include "QBLCore/Messages/QBLMessageFile.hpp"
#include "QBLCore/Messages/QBLMessageSet.hpp"
#include "QBLCore/Messages/QBLMessageString.hpp"
#include "QBLCore/Messages/QBLWin32Message.hpp"
#include "QBLCore/Messages/QBLXmlEscape.hpp"
#include "QBLCore/Resources/QBLCatalogueSettings.hpp"
#include "QBLCore/Resources/QBLResourceBMF.hpp"
#include "QBLCore/Resources/QBLResourceFactory.hpp"
#include "QBLCore/Resources/QBLResourceFile.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "tests/faults/Rows.hpp"
#include "tests/support/BmfFile.hpp"
#include "tests/support/TempTree.hpp"

namespace {

using faults::calmly;
using faults::changed;
using faults::kFallback;
using faults::kOutOfMemory;
using faults::need;

/// Two catalogues, which exist as long as the program runs.
const std::string& base() {
    static const TempTree kTree;
    static const std::string kBase = [] {
        kTree.file("texts_de.bmf", bmfBytes({{1, "{0} von {1}: {2}"}, {2, "zwei"}}));
        kTree.file("texts.bmf", bmfBytes({{1, "{0} of {1} items"}}));
        return kTree("texts");
    }();
    return kBase;
}

std::string xmlOf(const QBLMessageBase& message) {
    I18NString out;
    message.toString("de", nullptr, out, 1);
    message.toString("de", nullptr, out, 0);
    return out.toUtf8();
}
std::string xmlOf(const QBLMessageSet& set) {
    I18NString out;
    set.toString("de", nullptr, out, 1);
    return out.toUtf8() + " " + std::to_string(set.getMessageCount());
}
std::string xmlOf(const QBLMessageParm& parm) {
    I18NString out;
    parm.toString(nullptr, out, 1);
    return out.toUtf8();
}

template <class Make>
std::string shown(Make make) {
    const auto object = make();
    return calmly([&] { return xmlOf(object); });
}

template <class Message>
std::string formatted(Message&& message, const char* locales) {
    I18NString out;
    message.format(locales, nullptr, out);
    return calmly([&] { return out.toUtf8(); });
}

QBLMessage filled() {
    QBLMessage message(base().c_str(), 1);
    message << "a text that is longer than any inline room" << 1234567 << I18NString("\u00E9");
    return message;
}

/// Copies, assigns and clones a message.
template <class Message>
void addCopies(const char* name, Message (*make)(), Message (*makeOther)()) {
    const std::string prefix(name);
    faults::rows().push_back({prefix + ".make", kOutOfMemory, [make] { return shown(make); }});
    faults::rows().push_back({prefix + ".copy", kOutOfMemory, [make] {
                                  const Message from = calmly(make);
                                  return shown([&] { return Message(from); });
                              }});
    faults::rows().push_back({prefix + ".assign", kOutOfMemory, [make, makeOther] {
                                  const Message from = calmly(make);
                                  Message to = calmly(makeOther);
                                  return changed(
                                      to, [](const Message& m) { return xmlOf(m); },
                                      [&](Message& m) { m = from; });
                              }});
    faults::rows().push_back({prefix + ".clone", kOutOfMemory, [make] {
                                  const Message from = calmly(make);
                                  const std::unique_ptr<const QBLMessageBase> copy(from.clone());
                                  return calmly([&] { return xmlOf(*copy); });
                              }});
    faults::rows().push_back({prefix + ".format", kOutOfMemory,
                              [make] {
                                  const Message message = calmly(make);
                                  const std::string german = formatted(message, "de"),
                                                    english = formatted(message, nullptr);
                                  return calmly([&] { return german + english; });
                              },
                              kFallback});
    faults::rows().push_back({prefix + ".toString", kOutOfMemory,
                              [make] {
                                  const Message message = calmly(make);
                                  I18NString out;
                                  message.toString("de", nullptr, out, 1);
                                  return calmly([&] { return out.toUtf8(); });
                              },
                              kFallback});
}

const bool kCopies = [] {
    addCopies<QBLMessage>("QBLMessage", filled, [] { return QBLMessage("other", 9); });
    addCopies<QBLMessageString>(
        "QBLMessageString", [] { return QBLMessageString(I18NString("a text of some length")); },
        [] { return QBLMessageString("other"); });
    addCopies<QBLMessageFile>(
        "QBLMessageFile",
        [] {
            QBLMessageFile message(QBLSeverityError, base().c_str(), 1);
            message << I18NString("\u00E9") << 7 << 8UL;
            return message;
        },
        [] { return QBLMessageFile("other", 9); });
    addCopies<QBLMessageComponents>(
        "QBLMessageComponents",
        [] {
            QBLMessageComponents message(QBLSeverityWarning, 7);
            message << "x" << QBLMessageParm(7UL, 1);
            return message;
        },
        [] { return QBLMessageComponents(9); });
    addCopies<QBLErrnoMessage>(
        "QBLErrnoMessage", [] { return QBLErrnoMessage(ENOENT); },
        [] { return QBLErrnoMessage(EPERM); });
    addCopies<QBLWin32Message>(
        "QBLWin32Message", [] { return QBLWin32Message(5UL); },
        [] { return QBLWin32Message(QBLSeverityFatal, 6UL); });
    return true;
}();

std::string parametersOf(const QBLMessageComponents& message) { return xmlOf(message); }

QBLMessageSet* makeSet() {
    auto* const set = new QBLMessageSet();
    *set << filled() << QBLMessageString("second");
    return set;
}

template <class Change>
std::string changedSet(Change change) {
    const std::unique_ptr<QBLMessageSet> set(calmly(makeSet));
    return changed(
        *set, [](const QBLMessageSet& s) { return xmlOf(s); }, change);
}

std::string changedParm(void (*change)(QBLMessageParm&)) {
    QBLMessageParm parm = calmly([] { return QBLMessageParm("a text before the change"); });
    return changed(
        parm, [](const QBLMessageParm& p) { return xmlOf(p); }, change);
}

std::string textOf(QBLResource* resource) {
    need(resource != nullptr);
    const std::unique_ptr<QBLResource, void (*)(QBLResource*)> owner(
        resource, [](QBLResource* held) { QBLResourceFactory::release(held); });
    char* text = nullptr;
    // open() does not examine the results of its reads: a text that was not read is empty.
    need(resource->getResource(2, &text) && text != nullptr && *text != '\0');
    return calmly([&] { return std::string(text); });
}

const QBLMessage kOther = filled();

const faults::Rows kRows{
    {"QBLMessageComponents.add", kOutOfMemory,
     [] {
         QBLMessage message = calmly(filled);
         return changed(message, parametersOf, [](QBLMessage& m) { m << I18NString("one more"); });
     }},
    {"QBLMessageComponents.copyParms", kOutOfMemory,
     [] {
         QBLMessageComponents message = calmly([] { return QBLMessageComponents(3); });
         return changed(message, parametersOf,
                        [](QBLMessageComponents& m) { m.copyParms(kOther); });
     }},
    {"QBLMessageSet.add", kOutOfMemory,
     [] { return changedSet([](QBLMessageSet& s) { s << kOther; }); }},
    {"QBLMessageSet.addFront", kOutOfMemory,
     [] { return changedSet([](QBLMessageSet& s) { s.addMessageFront(kOther); }); }},
    {"QBLMessageSet.addOwned", kOutOfMemory,
     [] { return changedSet([](QBLMessageSet& s) { s.addMessage(kOther.clone()); }); }},
    {"QBLMessageSet.assign", kOutOfMemory,
     [] {
         const std::unique_ptr<QBLMessageSet> other(calmly(makeSet));
         return changedSet([&](QBLMessageSet& s) { s = *other; });
     }},
    {"QBLMessageSet.copy", kOutOfMemory,
     [] {
         const std::unique_ptr<QBLMessageSet> other(calmly(makeSet));
         const QBLMessageSet copy(*other);
         return changedSet([&](QBLMessageSet& s) { s.copy(copy); });
     }},
    {"QBLMessageSet.transferMessages", kOutOfMemory,
     [] {
         const std::unique_ptr<QBLMessageSet> other(calmly(makeSet));
         return changedSet([&](QBLMessageSet& s) { s.transferMessages(*other); });
     }},
    {"QBLMessageSet.format", kOutOfMemory,
     [] {
         const std::unique_ptr<QBLMessageSet> set(calmly(makeSet));
         return formatted(*set, "de");
     },
     kFallback},
    {"QBLMessageParm.assign", kOutOfMemory,
     [] { return changedParm([](QBLMessageParm& p) { p = QBLMessageParm("another text"); }); }},
    {"QBLMessageParm.number", kOutOfMemory,
     [] { return changedParm([](QBLMessageParm& p) { p.copy(QBLMessageParm(1LL << 40)); }); }},
    {"QBLMessageParm.unsigned", kOutOfMemory,
     [] { return changedParm([](QBLMessageParm& p) { p.copy(QBLMessageParm(1ULL << 63)); }); }},
    {"QBLMessageParm.clone", kOutOfMemory,
     [] {
         const std::unique_ptr<QBLMessageParm> parm(QBLMessageParm("cloned text").clone());
         I18NString out;
         parm->format(nullptr, out);
         QBLMessageParm(2.5).format(nullptr, out);
         QBLMessageParm(QBLMsgParmOpaque).format(nullptr, out);
         return calmly([&] { return out.toUtf8(); });
     }},
    {"qblXmlEscape", kOutOfMemory | faults::kBadAlloc,
     [] {
         const I18NString text = qblXmlEscape(kOther.getMsgFile());
         const std::string utf8 = qblXmlEscape(std::string_view("<&> and \x01 and a longer rest"));
         return calmly([&] { return text.toUtf8().substr(0, 5) + utf8; });
     }},
    {"QBLResourceFactory.find", faults::kBadAlloc | kOutOfMemory,
     [] {
         const std::string& texts = base();
         const std::string found = QBLResourceFactory::find(texts, "fr,de");
         return calmly([&] { return std::string(found); });
     },
     kFallback},
    {"QBLResourceFactory.getCandidates", faults::kBadAlloc | kOutOfMemory,
     [] {
         const std::string& texts = base();
         const auto names = QBLResourceFactory::getCandidates(texts, "fr_CA,de");
         return calmly([&] {
             std::string all;
             for (const std::string& name : names) all += name + " ";
             return all;
         });
     }},
    {"QBLResourceFactory.findAndGet", kOutOfMemory | faults::kRefuses,
     [] {
         const std::string& texts = base();
         return textOf(QBLResourceFactory::findAndGet(texts, "de", 1));
     }},
    {"QBLResourceFactory.get", kOutOfMemory | faults::kRefuses,
     [] {
         const std::string name = calmly([] { return base() + "_de.bmf"; });
         return textOf(QBLResourceFactory::get(name, "de", 0));
     }},
    {"QBLResourceFile", kOutOfMemory | faults::kRefuses,
     [] {
         const std::string& texts = base();
         QBLResourceFile file(texts, "de", 0);
         need(file.isOpen());
         char* text = nullptr;
         need(file.getResource(2, &text) && text != nullptr && *text != '\0');
         return calmly([&] { return std::string(text); });
     }},
    {"QBLCatalogueSettings.directories", kOutOfMemory | faults::kBadAlloc,
     [] {
         QBLCatalogueSettings::addDirectory("/a/directory/that/does/not/exist");
         const auto paths = QBLCatalogueSettings::getDirectories();
         return calmly([&] { return paths.front(); });
     }},
    {"QBLCatalogueSettings.locales", kOutOfMemory,
     [] {
         QBLCatalogueSettings::setDefaultLocales("fr_CA,de_AT,it_CH,rm");
         std::string locales =
             calmly([] { return std::string(QBLCatalogueSettings::getDefaultLocales()); });
         QBLCatalogueSettings::setDefaultLocales(nullptr);
         return locales;
     }},
};

}  // namespace
