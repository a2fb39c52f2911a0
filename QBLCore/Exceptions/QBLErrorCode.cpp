#include "QBLCore/Exceptions/QBLErrorCode.hpp"

#include <string>

#include "QBLCore/Base/QBLImmortal.hpp"

namespace {

struct Meaning {
    int result;
    const char* text;
    std::errc condition;
};

// For results that correspond to no std::errc. Their condition, except the condition of
// TAVTHREAD_OK, is in the category "qbl.thread".
constexpr std::errc kNone{};
constexpr Meaning kMeanings[] = {
    {TAVTHREAD_OK, "success", kNone},
    {TAVTHREAD_BUSY, "the object is taken", std::errc::device_or_resource_busy},
    {TAVTHREAD_ERROR, "system error", kNone},
    {TAVTHREAD_NOMEM, "out of memory", std::errc::not_enough_memory},
    {TAVTHREAD_AGAIN, "a resource ran out", std::errc::resource_unavailable_try_again},
    {TAVTHREAD_DEADLOCK, "the call would deadlock", std::errc::resource_deadlock_would_occur},
    {TAVTHREAD_TIMEOUT, "the time ran out", std::errc::timed_out},
    {TAVTHREAD_NOTSUPPORTED, "not supported", std::errc::not_supported},
    {TAVTHREAD_INVALID, "invalid argument", std::errc::invalid_argument},
    {TAVTHREAD_BADATTR, "unknown attribute", std::errc::invalid_argument},
    {TAVTHREAD_NOTINIT, "the thread layer is not initialised", kNone},
};

const Meaning* meaningOf(int result) {
    for (const Meaning& meaning : kMeanings)
        if (meaning.result == result) return &meaning;
    return nullptr;
}

class ThreadCategory : public std::error_category {
public:
    const char* name() const noexcept override { return "qbl.thread"; }
    std::string message(int result) const override {
        const Meaning* meaning = meaningOf(result);
        return meaning != nullptr ? meaning->text : "unknown result " + std::to_string(result);
    }
    std::error_condition default_error_condition(int result) const noexcept override {
        const Meaning* meaning = meaningOf(result);
        if (meaning == nullptr || (meaning->condition == kNone && result != TAVTHREAD_OK))
            return std::error_condition(result, *this);
        return make_error_condition(meaning->condition);
    }
};

}  // namespace

const std::error_category& qblThreadCategory() noexcept { return qblImmortal<ThreadCategory>(); }
