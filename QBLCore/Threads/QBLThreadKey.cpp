#include "QBLCore/Threads/QBLThreadKey.hpp"

#include "QBLCore/Threads/shared/QBLLayerResult.hpp"
#include "TavThread/TavThreadKey.h"

namespace {

const char kCreate[] = "QBLThreadKey::QBLThreadKey: TavThread interface or unexpected error";
const char kNoMemory[] = "QBLThreadKey::QBLThreadKey: TavThread ran out of memory";
const char kSetValue[] = "QBLThreadKey::setValue: TavThread interface or unexpected error";
const char kSetNoMemory[] = "QBLThreadKey::setValue: out of memory";
const char kGetValue[] = "QBLThreadKey::getValue: TavThread interface or unexpected error";

}  // namespace

QBLThreadKey::QBLThreadKey(void (*destructor)(void*)) : m_pKey(nullptr) {
    settleCreate(tavXThreadKeyCreate(&m_pKey, destructor), QBL_HERE, kCreate, kNoMemory);
}

QBLThreadKey::~QBLThreadKey() { tavXThreadKeyDestroy(m_pKey); }

void QBLThreadKey::setValue(void* value) {
    settleCreate(tavXThreadSetSpecific(m_pKey, value), QBL_HERE, kSetValue, kSetNoMemory);
}

void* QBLThreadKey::getValue() {
    void* value = nullptr;
    settle(tavXThreadGetSpecific(m_pKey, &value), QBL_HERE, kGetValue);
    return value;
}
