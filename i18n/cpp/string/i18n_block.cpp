#include "i18n/cpp/string/i18n_block.hpp"

#include <climits>
#include <cstdlib>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"
#include "TavThread/shared/TavContain.hpp"
#include "i18n/cpp/i18n_error_codes.h"

namespace {

const char kAllocator[] = "The specified allocator callback failed to allocate memory.";
const char kMalloc[] = "malloc failed to allocate memory.";
const char kRealloc[] = "realloc failed to reallocate memory.";

}  // namespace

void I18NBlock::resize(I18NStringAllocator from, void* of, char*& block, std::int64_t size) {
    const char* const failure = block == nullptr ? kMalloc : kRealloc;
    if (size > INT_MAX) qblThrowNoMemory(QBL_HERE, failure);
    if (from == nullptr) {
        const auto bytes = static_cast<std::size_t>(size);
        void* const resized = block == nullptr ? std::malloc(bytes) : std::realloc(block, bytes);
        if (resized == nullptr) qblThrowNoMemory(QBL_HERE, failure);
        block = static_cast<char*>(resized);
        return;
    }
    QBL_ALLOC_TRY
    int error = I18N_OK;
    const bool fresh = block == nullptr;
    char* const resized = from(of, block, static_cast<int>(size), &error);
    // If the allocator returns both a block and an error, the block has the old contents.
    if (resized != nullptr) block = resized;
    if (resized != nullptr && error == I18N_OK) return;
    if (fresh) {
        free(from, of, block);
        block = nullptr;
    }
    qblThrowNoMemory(QBL_HERE, kAllocator);
    QBL_ALLOC_CATCH
}

void I18NBlock::free(I18NStringAllocator from, void* of, void* block) {
    if (block == nullptr) return;
    if (from == nullptr) return std::free(block);
    int ignored = I18N_OK;
    tavContain([&] { from(of, static_cast<char*>(block), 0, &ignored); });
}
