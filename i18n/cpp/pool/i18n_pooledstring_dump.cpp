#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <ext/stdio_filebuf.h>
#include <ostream>

#include "QBLCore/Base/QBLCloseQuietly.hpp"
#include "QBLCore/Base/QBLOpenRegular.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Utility/QBLUtSystemInfo.hpp"
#include "TavThread/shared/TavContain.hpp"
#include "i18n/cpp/pool/i18n_pool_bucket.hpp"

namespace {

using Entry = I18NPooledStringEntry;

/// Opens the file for dumps, to append to it; returns -1 on failure. The name of the file is
/// predictable. So this function refuses a file that belongs to another user or that another user
/// could read.
int openDumpFile() {
    char name[48];
    std::snprintf(name, sizeof name, "I18NPooledStringDump%lu.log",
                  QBLUtSystemInfo::getProcessId());
    QBLFileStatus status;
    const int fd = qblOpenRegular(name, O_WRONLY | O_CREAT | O_APPEND, status, 0600);
    if (fd < 0 || (status.user() == geteuid() && (status.mode() & 07177) == 0)) return fd;
    qblCloseQuietly(fd);
    return -1;
}

int capped(std::int64_t sum) { return static_cast<int>(std::min<std::int64_t>(sum, INT_MAX)); }

/// Writes with a format of printf(); for short texts only.
template <class... Arguments>
void print(std::ostream& out, const char* format, Arguments... arguments) {
    char line[80];
    const int length = std::snprintf(line, sizeof line, format, arguments...);
    out.write(line, length);
}

}  // namespace

struct I18NPooledString::I18NPooledStringPool::Totals {
    std::int64_t entries = 0;
    std::int64_t unheld = 0;
    std::int64_t size = 0;
    std::int64_t holders = 0;
};

template <class Body>
void I18NPooledString::I18NPooledStringPool::eachBucket(Body body) {
    for (unsigned i = 0; i < kBuckets; ++i) {
        QBLThreadGuard guard(m_locks[i % kLocks]);
        body(m_pBuckets[i], i);
    }
}

void I18NPooledString::I18NPooledStringPool::purge() {
    if (s_dumpToFile) dumpToFile();
    eachBucket([](Bucket& bucket, unsigned) {
        bucket.removeIf([](Entry& entry) { return entry.retire(); });
    });
    i18n_places::trim();
}

void I18NPooledString::I18NPooledStringPool::clear() noexcept {
    eachBucket([](Bucket& bucket, unsigned) {
        bucket.removeIf([](Entry& entry) {
            entry.detach();
            return true;
        });
    });
    for (int i = 0; i < 2; ++i) i18n_places::trim();
}

// A failed dump does not make the purge fail.
void I18NPooledString::I18NPooledStringPool::dumpToFile() {
    const int fd = openDumpFile();
    if (fd < 0) {
        std::fputs("I18NPooledStringDump.log failed to open.\n", stderr);
        return;
    }
    bool written = false;
    const bool done = tavContain([&] {
        __gnu_cxx::stdio_filebuf<char> file(fd, std::ios::out);
        if (!file.is_open()) qblCloseQuietly(fd);  // memory is exhausted
        std::ostream out(&file);
        dump(out);
        written = !out.flush().fail();
    });
    if (!done || !written) std::fputs("I18NPooledStringDump.log failed to be written.\n", stderr);
}

void I18NPooledString::I18NPooledStringPool::dump(std::ostream& out) {
    Totals sum;
    eachBucket([&](Bucket& bucket, unsigned number) {
        out << "====== begin bucket ======\n";
        for (Entry* e = bucket.first; e != nullptr; e = e->next) {
            const int holders = static_cast<int>(e->holders());
            print(out, "hashCode-> %#010x refCount-> % 10d data-> ", e->hashCode, holders);
            out << e->string() << '\n';
            ++sum.entries;
            sum.unheld += holders == 0 ? 1 : 0;
            sum.holders += holders;
        }
        out << "==========================\n";
        print(out, "bucket % 4d contains %d entries\n", static_cast<int>(number),
              static_cast<int>(bucket.count));
        out << "======= end bucket =======\n";
    });
    out << "======= begin summary =======\n";
    print(out, "Total number of entries %d\nEntries to be deleted %d\n", capped(sum.entries),
          capped(sum.unheld));
    print(out, "Total reference count %d\n", capped(sum.holders));
    out << "======= end summary =======\n";
}

I18NPooledString::I18NPooledStringPool::Totals I18NPooledString::I18NPooledStringPool::totals() {
    Totals sum;
    eachBucket([&sum](Bucket& bucket, unsigned) {
        sum.entries += bucket.count;
        for (Entry* e = bucket.first; e != nullptr; e = e->next) {
            sum.size += e->string().size();
            sum.holders += e->holders();
        }
    });
    return sum;
}

int I18NPooledString::I18NPooledStringPool::count() { return capped(totals().entries); }

int I18NPooledString::I18NPooledStringPool::size() { return capped(totals().size); }

int I18NPooledString::I18NPooledStringPool::getTotalRefCount() { return capped(totals().holders); }
