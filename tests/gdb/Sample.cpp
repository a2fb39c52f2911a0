// Creates objects for printers_test.sh to show in gdb.
#include <future>
#include <thread>

#include "QBLCore/Exceptions/QBLSystemError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/Messages/QBLMessage.hpp"
#include "QBLCore/Messages/QBLMessageSet.hpp"
#include "QBLCore/Messages/QBLMessageString.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"
#include "QBLCore/Types/QBLByteBuffer.hpp"
#include "QBLCore/Types/QBLVariant.hpp"
#include "TavThread/TavMutex.h"

extern "C" [[gnu::noinline]] void lookHere() { asm volatile(""); }

int main() {
    qblCoreInitialize();
    const I18NString empty, inlined("it's \"inline\""), wide(L"Stra\u00DFe \u4E2D\U0001F600");
    const I18NString heap("0123456789012345678901234567890123456789");
    const I18NString& reference = wide;
    I18NString back(wide), longer(heap + heap);
    back = "once Unicode";
    QBLList<I18NString> list;
    list.push_back(inlined);
    list.push_back(reference);
    QBLList<int> none;
    QBLMessageSet messages;
    messages << (QBLMessage("texts", 104) << 5 << "disk" << 0.5) << QBLMessageString("plain");
    QBLByteBuffer buffer;
    buffer << "bytes " << 12;
    QBLVariant variants[4];
    variants[0].setValue(-5L);
    variants[1].setValue("text", 0);
    variants[2].setValue(0.5);
    variants[2].setVarType(QBLVariant::QBLVariantString);
    QBLThreadMutex mutex(1);
    TavMutex* flat = nullptr;
    tavXMutexCreate(&flat, TavMutexAttrTrackOwner, TavMutexAttrEnd);
    tavXMutexLock(flat);
    std::promise<void> locked, looked;
    std::thread other([&] {
        QBLThreadGuard guard(mutex);
        locked.set_value();
        looked.get_future().wait();
    });
    locked.get_future().wait();
    try {
        try {
            QBL_THROW(QBLSystemError(2, "Cannot open \"x\"."));
        } catch (QBLThrowable& inner) {
            QBL_RETHROW(inner);
        }
    } catch (QBLThrowable& error) {
        const QBLError coded(QBLSeverityWarning, "E<5>", "text");
        const char* const nothing = nullptr;
        const QBLError uncoded(nothing, nothing);
        lookHere();
        looked.set_value();
        other.join();
        tavXMutexUnlock(flat);
        tavXMutexDestroy(flat);
        qblCoreTerminate();
        return error.getErrorCode() == 2 && heap.length() + longer.length() + back.length() > 0 ? 0
                                                                                                : 1;
    }
}
