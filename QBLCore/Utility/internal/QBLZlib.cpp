// Each thread that deflates keeps one stream, in a key of the thread layer. A stream belongs to its
// thread alone and needs no lock. It does not call back while it runs: zlib takes its memory when a
// stream starts. deflateReset() at the beginning of each run makes a stream as new, also after a
// run that failed.
//
// The key's value in a thread has three states:
//   null       nothing is kept: at first, and as long as nothing could be.
//   a stream   qblDeflate() makes it one, once its stream has started and the key has taken it; up
//              to then a unique_ptr owns it, afterwards the key.
//   g_ending   deleteDeflater() makes it that when the thread ends and the stream is deleted. There
//              is no way back: destructors of other keys may still deflate, with a stream for each
//              call, which nobody might delete if the key kept it.
// The system calls deleteDeflater() again for the mark, as often as it goes round the keys, and
// then forgets it; the mark is static, so nothing leaks. The main thread's stream stays to the end
// of the process, and a fork's child goes on with the copy of the calling thread's.
//
// The key is made by the first call and never destroyed; the library stays loaded (-z nodelete), so
// that deleteDeflater() does too. Threads that come first together make one each: compare-exchange
// lets one win, and the others destroy theirs, in which nobody has a value yet. If no key can be
// made the call uses a stream of its own, and the next call tries again.
//
// Memory order: `s_made` is stored with release and loaded with acquire, also by the exchange that
// fails: the record of the key is complete. Nothing else is shared.
//
// A mistake leaks, which x86-asan reports, or spoils tokens: QBLSquisherTest
// .FailsCleanlyWithoutMemory makes each allocation of a new thread fail,
// .ThreadsAndForksSquishEachOnItsOwn runs four threads and a child, and
// .TokensAreWhatZlibMakesAndComeBack compares with zlib's own. No test deflates in the destructor
// of another key. A thread that does so for the first time in the system's last round leaks.
#include "QBLCore/Utility/internal/QBLZlib.hpp"

#include <zlib.h>

#include <atomic>
#include <memory>
#include <new>

#include "TavThread/TavThreadKey.h"

namespace {

voidpf allocate(voidpf, uInt count, uInt size) {
    return ::operator new(static_cast<std::size_t>(count) * size, std::nothrow);
}
void release(voidpf, voidpf memory) { ::operator delete(memory); }

void begin(z_stream& stream, const void* data, unsigned length, void* out, unsigned room) {
    stream.next_in = static_cast<Bytef*>(const_cast<void*>(data));
    stream.avail_in = length;
    stream.next_out = static_cast<Bytef*>(out);
    stream.avail_out = room;
}

class Deflater {
public:
    /// @return zlib's code of what failed; the stream then cannot be used
    int start() {
        m_stream.zalloc = &allocate;
        m_stream.zfree = &release;
        return deflateInit(&m_stream, Z_BEST_COMPRESSION);
    }
    Deflater() = default;
    // Does nothing to a stream that did not start.
    ~Deflater() { deflateEnd(&m_stream); }
    Deflater(const Deflater&) = delete;
    Deflater& operator=(const Deflater&) = delete;

    int run(const char* text, unsigned length, unsigned char* out, unsigned room, unsigned& size) {
        if (const int code = deflateReset(&m_stream); code != Z_OK) return code;
        begin(m_stream, text, length, out, room);
        const int code = deflate(&m_stream, Z_FINISH);
        size = room - m_stream.avail_out;
        return code == Z_STREAM_END ? Z_OK : code == Z_OK ? Z_BUF_ERROR : code;
    }

private:
    z_stream m_stream{};
};

/// Stands in the key of a thread whose stream is deleted: other keys' destructors may still squish,
/// and what they kept then nobody might delete.
char g_ending;

void deleteDeflater(void* kept);

/// The key of each thread's own; null as long as it cannot be made.
TavThreadKey* keptKey() {
    static std::atomic<TavThreadKey*> s_made{nullptr};
    TavThreadKey* key = s_made.load(std::memory_order_acquire);
    if (key != nullptr || tavXThreadKeyCreate(&key, &deleteDeflater) != TAVTHREAD_OK) return key;
    TavThreadKey* others = nullptr;
    if (s_made.compare_exchange_strong(others, key, std::memory_order_acq_rel)) return key;
    tavXThreadKeyDestroy(key);
    return others;
}

// Called again for the mark it leaves, as often as the system goes round the keys: 4 times.
void deleteDeflater(void* kept) {
    if (kept != &g_ending) delete static_cast<Deflater*>(kept);
    tavXThreadSetSpecific(keptKey(), &g_ending);
}

}  // namespace

int qblDeflate(const char* text, unsigned length, unsigned char* out, unsigned room,
               unsigned& size) {
    TavThreadKey* const key = keptKey();
    void* kept = nullptr;
    if (key != nullptr) tavXThreadGetSpecific(key, &kept);
    if (kept != nullptr && kept != &g_ending)
        return static_cast<Deflater*>(kept)->run(text, length, out, room, size);

    std::unique_ptr<Deflater> fresh(new (std::nothrow) Deflater);
    if (!fresh) return Z_MEM_ERROR;
    if (const int code = fresh->start(); code != Z_OK) return code;
    const int code = fresh->run(text, length, out, room, size);
    if (key != nullptr && kept == nullptr &&
        tavXThreadSetSpecific(key, fresh.get()) == TAVTHREAD_OK)
        static_cast<void>(fresh.release());
    return code;
}

int qblInflate(const unsigned char* data, unsigned length, char* out, unsigned room,
               unsigned& size) {
    z_stream stream{};
    stream.zalloc = &allocate;
    stream.zfree = &release;
    if (const int code = inflateInit(&stream); code != Z_OK) return code;
    begin(stream, data, length, out, room);
    const int code = inflate(&stream, Z_FINISH);
    size = room - stream.avail_out;
    inflateEnd(&stream);
    if (code == Z_STREAM_END) return Z_OK;
    const bool cutOff = code == Z_BUF_ERROR && (stream.avail_out != 0 || room == 0);
    return cutOff || code == Z_NEED_DICT ? Z_DATA_ERROR : code;
}
