// Objects to look at in a debugger.
#include "QBLCore/Exceptions/QBLSystemError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Frame/QBLList.hpp"
#include "i18n/cpp/i18n_string.hpp"

extern "C" [[gnu::noinline]] void lookHere() { asm volatile(""); }

int main() {
    const I18NString empty, inlined("it's \"inline\""), wide(L"Stra\u00DFe \u4E2D\U0001F600");
    const I18NString heap("0123456789012345678901234567890123456789");
    const I18NString& reference = wide;
    I18NString back(wide), longer(heap + heap);
    back = "once Unicode";
    QBLList<I18NString> list;
    list.push_back(inlined);
    list.push_back(reference);
    QBLList<int> none;
    try {
        try {
            QBL_THROW(QBLSystemError(2, "Cannot open \"x\"."));
        } catch (QBLThrowable& inner) {
            QBL_RETHROW(inner);
        }
    } catch (QBLThrowable& error) {
        lookHere();
        return error.getErrorCode() == 2 && heap.length() + longer.length() + back.length() > 0 ? 0
                                                                                                : 1;
    }
}
