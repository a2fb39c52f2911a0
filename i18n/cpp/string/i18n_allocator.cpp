#include "i18n/cpp/i18n_allocator.h"

#include <cstdlib>

#include "i18n/cpp/i18n_error_codes.h"

char* I18N_STRINGBUFFER_ALLOCATOR_CALLBACK(void*, char* block, int size, int* error) {
    int ignored;
    int& result = error != nullptr ? *error : ignored;
    result = I18N_OK;
    if (size > 0) {
        char* resized = static_cast<char*>(std::realloc(block, static_cast<std::size_t>(size)));
        if (resized == nullptr) result = I18N_NOMEM;
        return resized;
    }
    if (size == 0)
        std::free(block);
    else
        result = I18N_ARGUMENT;
    return nullptr;
}
