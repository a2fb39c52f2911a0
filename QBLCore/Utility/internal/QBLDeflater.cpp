#include "QBLCore/Utility/internal/QBLDeflater.hpp"

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
        m_stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text));
        m_stream.avail_in = length;
        m_stream.next_out = out;
        m_stream.avail_out = room;
        const int code = deflate(&m_stream, Z_FINISH);
        size = room - m_stream.avail_out;
        return code == Z_STREAM_END ? Z_OK : code == Z_OK ? Z_BUF_ERROR : code;
    }

private:
    z_stream m_stream{};
};

void deleteDeflater(void* deflater) { delete static_cast<Deflater*>(deflater); }

/// The key of each thread's own; null as long as it cannot be made.
TavThreadKey* keptKey() {
    static std::atomic<TavThreadKey*> made{nullptr};
    TavThreadKey* key = made.load(std::memory_order_acquire);
    if (key != nullptr || tavXThreadKeyCreate(&key, &deleteDeflater) != TAVTHREAD_OK) return key;
    TavThreadKey* others = nullptr;
    if (made.compare_exchange_strong(others, key, std::memory_order_acq_rel)) return key;
    tavXThreadKeyDestroy(key);
    return others;
}

}  // namespace

int qblDeflate(const char* text, unsigned length, unsigned char* out, unsigned room,
               unsigned& size) {
    TavThreadKey* const key = keptKey();
    void* kept = nullptr;
    if (key != nullptr) tavXThreadGetSpecific(key, &kept);
    if (kept != nullptr) return static_cast<Deflater*>(kept)->run(text, length, out, room, size);

    std::unique_ptr<Deflater> fresh(new (std::nothrow) Deflater);
    if (!fresh) return Z_MEM_ERROR;
    if (const int code = fresh->start(); code != Z_OK) return code;
    const int code = fresh->run(text, length, out, room, size);
    if (key != nullptr && tavXThreadSetSpecific(key, fresh.get()) == TAVTHREAD_OK)
        static_cast<void>(fresh.release());
    return code;
}
