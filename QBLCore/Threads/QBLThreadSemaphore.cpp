#include "QBLCore/Threads/QBLThreadSemaphore.hpp"

#include <climits>

#include "QBLCore/Threads/shared/QBLLayerResult.hpp"
#include "TavThread/TavSemaphore.h"
#include "TavThread/shared/TavSemaphoreRecord.hpp"

namespace {

const char kCreate[] =
    "QBLThreadSemaphore::QBLThreadSemaphore: TavThread interface or unexpected error";
const char kNoMemory[] = "QBLThreadSemaphore::QBLThreadSemaphore: TavThread ran out of memory";
const char kWait[] = "QBLThreadSemaphore::wait: TavThread interface or unexpected error";
const char kTryWait[] = "QBLThreadSemaphore::tryWait: TavThread interface or unexpected error";
const char kTimedWait[] = "QBLThreadSemaphore::timedWait: TavThread interface or unexpected error";
const char kBoundedWait[] =
    "QBLThreadSemaphore::boundedWait: TavThread interface or unexpected error";
const char kPost[] = "QBLThreadSemaphore::post: TavThread interface or unexpected error";

// Out of line, so that an offer without a waiting thread saves no registers.
[[gnu::noinline]] void offerGeneral(TavSemaphore* semaphore) {
    settle(tavSemaphoreOfferGeneral(semaphore), QBL_HERE, kPost);
}

}  // namespace

QBLThreadSemaphore::QBLThreadSemaphore(unsigned long initial) : m_pSemaphore(nullptr) {
    initialize(initial);
}

QBLThreadSemaphore::~QBLThreadSemaphore() { tavXSemaphoreDestroy(m_pSemaphore); }

void QBLThreadSemaphore::initialize(unsigned long initial) {
    // If the count is too large, passes a count that the layer refuses.
    const unsigned int count = initial < UINT_MAX ? static_cast<unsigned int>(initial) : UINT_MAX;
    TavSemaphore* made = nullptr;
    settleCreate(tavXSemaphoreCreate(&made, count, TavSemaphoreAttrEnd), QBL_HERE, kCreate,
                 kNoMemory);
    if (m_pSemaphore != nullptr) tavXSemaphoreDestroy(m_pSemaphore);
    m_pSemaphore = made;
}

void QBLThreadSemaphore::wait() { settle(tavXSemaphoreWait(m_pSemaphore), QBL_HERE, kWait); }

bool QBLThreadSemaphore::tryWait() {
    return settleTry(tavSemaphoreTryWaitFast(m_pSemaphore), QBL_HERE, kTryWait);
}

bool QBLThreadSemaphore::timedWait(unsigned long ms) {
    return settleTimed(tavXSemaphoreTimedWait(m_pSemaphore, layerTimeout(ms)), QBL_HERE,
                       kTimedWait);
}

bool QBLThreadSemaphore::boundedWait(unsigned long ms) {
    if (tavSemaphoreTakePlain(m_pSemaphore)) return true;
    return settleTimed(tavXSemaphoreBoundedWait(m_pSemaphore, layerTimeout(ms)), QBL_HERE,
                       kBoundedWait);
}

void QBLThreadSemaphore::post(int n) {
    settle(n == 1 ? tavSemaphorePostFast(m_pSemaphore) : tavXSemaphorePostN(m_pSemaphore, n),
           QBL_HERE, kPost);
}

void QBLThreadSemaphore::offer() {
    TavSemaphore* const semaphore = m_pSemaphore;
    if (!tavSemaphoreOfferPlain(semaphore)) offerGeneral(semaphore);
}

bool QBLThreadSemaphore::claim() { return tavSemaphoreClaim(m_pSemaphore); }

bool QBLThreadSemaphore::claimOrEnlist() {
    if (tavSemaphoreClaim(m_pSemaphore)) return true;
    tavSemaphoreEnlist(m_pSemaphore);
    return false;
}

bool QBLThreadSemaphore::delist() { return tavSemaphoreDelist(m_pSemaphore); }

bool QBLThreadSemaphore::isReady() const {
    return m_pSemaphore->ready.load(std::memory_order_relaxed) != 0;
}
