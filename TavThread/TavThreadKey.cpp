#include "TavThread/TavThreadKey.h"

#include <new>

#include "TavThread/TavTrace.h"
#include "TavThread/internal/TavSystem.hpp"
#include "TavThread/shared/TavContain.hpp"

struct TavThreadKey {
    pthread_key_t native;
    void* traceObj;  // of the thread that created the key
};

extern "C" {

int tavXThreadKeyCreate(TavThreadKey** out, void (*destructor)(void*)) {
    if (out == nullptr) return TAVTHREAD_INVALID;
    *out = nullptr;
    TavThreadKey* key = new (std::nothrow) TavThreadKey{0, tavXThreadGetTraceObj()};
    if (key == nullptr) return TAVTHREAD_NOMEM;
    if (const int err = tavRetry([=] { return pthread_key_create(&key->native, destructor); })) {
        delete key;
        return tavThread_MapError(err);
    }
    *out = key;
    return TAVTHREAD_OK;
}

int tavXThreadKeyDestroy(TavThreadKey* key) {
    if (key == nullptr) return TAVTHREAD_INVALID;
    const int rc = tavThread_MapError(tavRetry([key] { return pthread_key_delete(key->native); }));
    delete key;
    return rc;
}

int tavXThreadSetSpecific(TavThreadKey* key, const void* value) {
    if (key == nullptr) return TAVTHREAD_INVALID;
    return tavThread_MapError(tavRetry([=] { return pthread_setspecific(key->native, value); }));
}

int tavXThreadGetSpecific(TavThreadKey* key, void** value) {
    if (key == nullptr || value == nullptr) return TAVTHREAD_INVALID;
    *value = pthread_getspecific(key->native);
    return TAVTHREAD_OK;
}

int tavXThreadOnce(pthread_once_t* once, void (*routine)(void)) {
    if (once == nullptr || routine == nullptr) return TAVTHREAD_INVALID;
    int err = 0;
    const bool ended =
        tavContain([&] { err = tavRetry([=] { return pthread_once(once, routine); }); });
    return ended ? tavThread_MapError(err) : TAVTHREAD_ERROR;
}

}  // extern "C"
