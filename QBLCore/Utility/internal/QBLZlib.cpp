// Each thread that deflates keeps one stream in a key of the thread layer. A stream belongs to one
// thread alone and needs no lock. A run calls none of our functions: zlib allocates memory only
// when a stream starts. Each run begins with deflateReset(), which resets the stream completely,
// also after a failed run.
//
// The key's value in a thread has three states:
//   null       The thread has not deflated yet, or it could not store its stream.
//   a stream   qblDeflate() stores its stream after the stream has started. Before, a unique_ptr
//              owns the stream; afterwards the key does.
//   g_ending   deleteDeflater() stores this mark when the thread ends and its stream is deleted.
//              The mark stays: destructors of other keys may still deflate, but with a new stream
//              for each call, because a stream in the key might never be deleted.
// The system calls deleteDeflater() again for the mark in each round over the keys, and then drops
// the mark. The mark is static, so nothing leaks. The main thread's stream exists until the process
// ends. The child of a fork continues with its copy of the calling thread's stream.
//
// The first call creates the key, which is never destroyed. The library stays loaded (-z nodelete),
// so the system can always call deleteDeflater(). If several threads make the first call at the
// same time, each creates a key. A compare-exchange selects one key. The other threads destroy
// their keys, in which no thread has a value yet. If a call cannot create a key, it uses a
// temporary stream, and the next call tries again.
//
// Memory order: `s_made` is stored with release and loaded with acquire. A failed exchange also
// loads it with acquire. Every thread therefore sees the complete record of the key. Threads share
// no other data here.
//
// A mistake would leak memory, which x86-asan reports, or corrupt tokens. In QBLSquisherTest,
// .FailsCleanlyWhenMemoryRunsOut makes each allocation of a new thread fail,
// .ThreadsAndForksSquishIndependently runs four threads and a child process, and
// .TokensMatchZlibAndUnsquish compares with the result of zlib alone. No test deflates in the
// destructor of another key. A thread that does so for the first time in the system's last round
// leaks its stream.
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
    /// @return zlib's code; after a failure, the stream cannot be used
    int start() {
        m_stream.zalloc = &allocate;
        m_stream.zfree = &release;
        return deflateInit(&m_stream, Z_BEST_COMPRESSION);
    }
    Deflater() = default;
    // deflateEnd() has no effect on a stream that did not start.
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

/// The mark in the key of a thread whose stream is deleted. Destructors of other keys may still
/// squish, but must not store a stream that might never be deleted.
char g_ending;

void deleteDeflater(void* kept);

/// Returns the key of the threads' streams; null if it cannot be created.
TavThreadKey* keptKey() {
    static std::atomic<TavThreadKey*> s_made{nullptr};
    TavThreadKey* key = s_made.load(std::memory_order_acquire);
    if (key != nullptr || tavXThreadKeyCreate(&key, &deleteDeflater) != TAVTHREAD_OK) return key;
    TavThreadKey* others = nullptr;
    if (s_made.compare_exchange_strong(others, key, std::memory_order_acq_rel)) return key;
    tavXThreadKeyDestroy(key);
    return others;
}

// The system calls this function again for the mark, once in each of its 4 rounds over the keys.
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
