#include <cerrno>
#include <memory>

#include "QBLCore/Messages/QBLTypedMessage.hpp"
#include "tests/faults/Rows.hpp"
#include "tests/support/BmfFile.hpp"
#include "tests/support/Library.hpp"

namespace fault {
namespace {

/// Two catalogues, which exist as long as the program runs.
const std::string& base() {
    static const std::string kBase = [] {
        tree().file("texts_de.bmf", bmfBytes({{1, "{0} von {1}: {2}"}, {2, "zwei"}}));
        tree().file("texts.bmf", bmfBytes({{1, "{0} of {1} items"}}));
        return tree()("texts");
    }();
    return kBase;
}

std::string print(const QBLMessageBase& message) {
    I18NString out;
    message.toString("de", nullptr, out, 1);
    message.toString("de", nullptr, out, 0);
    return out.toUtf8();
}
std::string print(const QBLMessageSet& set) {
    I18NString out;
    set.toString("de", nullptr, out, 1);
    return out.toUtf8() + " " + std::to_string(set.getMessageCount());
}
std::string print(const QBLMessageParm& parm) {
    I18NString out;
    parm.toString(nullptr, out, 1);
    return out.toUtf8();
}

const auto kPrint = [](const auto& object) { return print(object); };

template <class Message>
I18NString formatted(Message&& message, const char* locales) {
    I18NString out;
    message.format(locales, nullptr, out);
    return out;
}

QBLMessage filled() {
    QBLMessage message(base().c_str(), 1);
    message << "a text that is longer than any inline room" << 1234567 << I18NString("\u00E9");
    return message;
}

/// Copies, assigns, clones and shows a message.
template <class Message>
void addCopies(const char* name, const Message& other, Message (*make)()) {
    const auto with = [name](const char* operation, unsigned calls, auto run) {
        add(std::string(name) + operation, kOutOfMemory, calls, run);
    };
    const auto printed = [](const QBLMessageBase& message) {
        return calmly([&] { return print(message); });
    };
    with(".make", kNothing, [=] { return printed(make()); });
    with(".copy", kNothing, [=] {
        const Message from = calmly(make);
        return printed(Message(from));
    });
    with(".assign", kNothing, [=] {
        const Message from = calmly(make);
        Message to = calmly([&] { return other; });
        return changed(to, kPrint, [&](Message& m) { m = from; });
    });
    with(".clone", kNothing, [=] {
        const Message from = calmly(make);
        return printed(*std::unique_ptr<const QBLMessageBase>(from.clone()));
    });
    with(".format", kFallback, [=] {
        const Message message = calmly(make);
        return together(formatted(message, "de"), formatted(message, nullptr));
    });
    with(".toString", kFallback, [=] {
        const Message message = calmly(make);
        I18NString out;
        message.toString("de", nullptr, out, 1);
        return out;
    });
}

const bool kCopies = [] {
    addCopies<QBLMessage>("QBLMessage", QBLMessage("other", 9), filled);
    addCopies<QBLMessageString>("QBLMessageString", QBLMessageString("other"), [] {
        return QBLMessageString(I18NString("a text of some length"));
    });
    addCopies<QBLMessageFile>("QBLMessageFile", QBLMessageFile("other", 9), [] {
        QBLMessageFile message(QBLSeverityError, base().c_str(), 1);
        message << I18NString("\u00E9") << 7 << 8UL;
        return message;
    });
    addCopies<QBLMessageComponents>("QBLMessageComponents", QBLMessageComponents(9), [] {
        QBLMessageComponents message(QBLSeverityWarning, 7);
        message << "x" << QBLMessageParm(7UL, 1);
        return message;
    });
    addCopies<QBLTypedMessage>("QBLTypedMessage", QBLTypedMessage({"b", 2}, 2, {}), [] {
        return QBLTypedMessage({"a", 1}, 1, {QBLTypedText("text")});
    });
    addCopies<QBLErrnoMessage>("QBLErrnoMessage", QBLErrnoMessage(EPERM),
                               [] { return QBLErrnoMessage(ENOENT); });
    addCopies<QBLWin32Message>("QBLWin32Message", QBLWin32Message(QBLSeverityFatal, 6UL),
                               [] { return QBLWin32Message(5UL); });
    return true;
}();

std::unique_ptr<QBLMessageSet> makeSet() {
    auto set = std::make_unique<QBLMessageSet>();
    *set << filled() << QBLMessageString("second");
    return set;
}
const std::unique_ptr<const QBLMessageSet> kOtherSet = makeSet();

/// Makes a row that changes an object.
template <class Make, class Change>
void edit(const char* name, Make make, Change change) {
    const auto run = [make, change] {
        auto object = calmly(make);
        return changed(*object, kPrint, change);
    };
    add(name, kOutOfMemory, run);
}

template <class Change>
void ofSet(const char* name, Change change) {
    edit(name, makeSet, change);
}

void ofParm(const char* name, void (*change)(QBLMessageParm&)) {
    edit(
        name, [] { return std::make_unique<QBLMessageParm>("a text before"); }, change);
}

template <class Resource>
std::string textOf(Resource& resource) {
    char* text = nullptr;
    // open() does not examine the results of its reads: a text that was not read is empty.
    need(resource.getResource(2, &text) && text != nullptr && *text != '\0');
    return calmly([&] { return std::string(text); });
}
std::string textOf(QBLResource* resource) {
    need(resource != nullptr);
    const std::unique_ptr<QBLResource, void (*)(QBLResource*)> owner(
        resource, [](QBLResource* held) { QBLResourceFactory::release(held); });
    return textOf(*resource);
}

const QBLMessage kSource = filled();

const bool kRows = [] {
    edit(
        "QBLMessageComponents.add", [] { return std::make_unique<QBLMessage>(filled()); },
        [](QBLMessage& m) { m << I18NString("one more"); });
    edit(
        "QBLMessageComponents.copyParms", [] { return std::make_unique<QBLMessageComponents>(3); },
        [](QBLMessageComponents& m) { m.copyParms(kSource); });
    ofSet("QBLMessageSet.add", [](QBLMessageSet& s) { s << kSource; });
    ofSet("QBLMessageSet.addFront", [](QBLMessageSet& s) { s.addMessageFront(kSource); });
    ofSet("QBLMessageSet.addOwned", [](QBLMessageSet& s) { s.addMessage(kSource.clone()); });
    ofSet("QBLMessageSet.assign", [](QBLMessageSet& s) { s = *kOtherSet; });
    ofSet("QBLMessageSet.copy", [](QBLMessageSet& s) { s.copy(QBLMessageSet(*kOtherSet)); });
    ofSet("QBLMessageSet.transferMessages",
          [](QBLMessageSet& s) { s.transferMessages(*calmly(makeSet)); });
    add("QBLMessageSet.format", kOutOfMemory, kFallback,
        [] { return formatted(*kOtherSet, "de"); });
    ofParm("QBLMessageParm.assign", [](QBLMessageParm& p) { p = QBLMessageParm("another text"); });
    ofParm("QBLMessageParm.number", [](QBLMessageParm& p) { p.copy(QBLMessageParm(1LL << 40)); });
    ofParm("QBLMessageParm.unsigned",
           [](QBLMessageParm& p) { p.copy(QBLMessageParm(1ULL << 63)); });
    add("QBLMessage.constructors", kOutOfMemory, [] {
        static const I18NString kName(base());
        constexpr auto kError = QBLSeverityError;
        QBLMessageFile file(base().c_str());
        file.setMsgFile(kName);
        I18NString value;
        QBLMessageParm(7).getValue(value);
        return together(
            value, QBLMessage(kName).getMsgFile(), QBLMessage(kError, kName, 1).getMsgFile(),
            QBLMessage(kName, 1).getMsgFile(), QBLMessageFile(kName, 1).getMsgFile(),
            QBLMessageFile(kName).getMsgFile(), QBLMessageFile(kError, kName, 1).getMsgFile(),
            QBLMessageString(kError, kName).getSeverity(), QBLMessage("a").getMsgFile());
    });
    add("QBLMessageParm.clone", kOutOfMemory, [] {
        const std::unique_ptr<QBLMessageParm> parm(QBLMessageParm("cloned text").clone());
        I18NString out;
        parm->format(nullptr, out);
        QBLMessageParm(2.5).format(nullptr, out);
        QBLMessageParm(QBLMsgParmOpaque).format(nullptr, out);
        return out;
    });
    add("qblXmlEscape", kOutOfMemory | kBadAlloc, [] {
        return together(qblXmlEscape(kSource.getMsgFile()),
                        qblXmlEscape(std::string_view("<&> and \x01 and a longer rest")));
    });
    add("QBLResourceFactory.find", kBadAlloc | kOutOfMemory, kFallback,
        [] { return QBLResourceFactory::find(base(), "fr,de"); });
    add("QBLResourceFactory.getCandidates", kBadAlloc | kOutOfMemory,
        [] { return QBLResourceFactory::getCandidates(base(), "fr_CA,de"); });
    add("QBLResourceFactory.findAndGet", kOutOfMemory | kRefuses,
        [] { return textOf(QBLResourceFactory::findAndGet(base(), "de", 1)); });
    add("QBLResourceFactory.get", kOutOfMemory | kRefuses, [] {
        const std::string name = calmly([] { return base() + "_de.bmf"; });
        return textOf(QBLResourceFactory::get(name, "de", 0));
    });
    add("QBLResourceFile", kOutOfMemory | kRefuses, [] {
        QBLResourceFile file(base(), "de", 0);
        need(file.isOpen());
        return textOf(file);
    });
    add("QBLResourceBMF.open", kOutOfMemory | kRefuses, [] {
        const std::string name = calmly([] { return base() + "_de.bmf"; });
        QBLResourceBMF resource(1);
        calmly([&] { resource.setResourceFileName(name); });
        try {
            need(resource.open());
        } catch (const QBLOutOfMemoryError&) {
            if (resource.isOpen()) throw Broken{"stays open"};
            throw;
        }
    });
    add("QBLCatalogueSettings.directories", kOutOfMemory | kBadAlloc, [] {
        QBLCatalogueSettings::addDirectory("/a/directory/that/does/not/exist");
        return QBLCatalogueSettings::getDirectories().front();
    });
    add("QBLCatalogueSettings.locales", kOutOfMemory, [] {
        QBLCatalogueSettings::setDefaultLocales("fr_CA,de_AT,it_CH,rm");
        std::string locales =
            calmly([] { return std::string(QBLCatalogueSettings::getDefaultLocales()); });
        QBLCatalogueSettings::setDefaultLocales(nullptr);
        return locales;
    });
    return true;
}();

}  // namespace
}  // namespace fault
