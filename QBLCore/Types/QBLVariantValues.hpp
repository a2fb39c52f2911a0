#ifndef QBLCORE_TYPES_QBLVARIANTVALUES_HPP
#define QBLCORE_TYPES_QBLVARIANTVALUES_HPP

#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

#include "QBLCore/Types/QBLVariant.hpp"

/// @file
/// Defines QBLVariant::get() and QBLVariant::visit(). They are in a header of their own because
/// QBLVariant.hpp includes no header of the standard library.
///
/// Threads: as for QBLVariant.
///
///     if (const auto port = variant.get<long>()) connect(*port);
///     variant.visit([](const auto& value) { print(value); });

/// Returns the value if the variant has exactly this type: long, unsigned long, double,
/// std::string_view or void*. A view refers to the variant's own string; see getValue(char*&). The
/// view of a null string has a null pointer.
/// @return nothing if the variant has another type
template <class Value>
auto QBLVariant::get() const {
    if constexpr (std::is_same_v<Value, std::string_view>) {
        char* text = nullptr;
        if (!getValue(text)) return std::optional<Value>();
        return std::optional<Value>(text != nullptr ? Value(text) : Value());
    } else {
        static_assert(std::is_same_v<Value, long> || std::is_same_v<Value, unsigned long> ||
                          std::is_same_v<Value, double> || std::is_same_v<Value, void*>,
                      "a QBLVariant holds long, unsigned long, double, a text or void*");
        Value value{};
        return getValue(value) ? std::optional<Value>(value) : std::nullopt;
    }
}

/// @param visitor  must accept each of the five types, and std::monostate, which stands for
///     QBLVariantUnknown and for a tag that is not in QBLVariantType. All results have one type.
template <class Visitor>
decltype(auto) QBLVariant::visit(Visitor&& visitor) const {
    switch (getVarType()) {
        case QBLVariantLong:
            return std::forward<Visitor>(visitor)(*get<long>());
        case QBLVariantUnsignedLong:
            return std::forward<Visitor>(visitor)(*get<unsigned long>());
        case QBLVariantDouble:
            return std::forward<Visitor>(visitor)(*get<double>());
        case QBLVariantString:
            return std::forward<Visitor>(visitor)(*get<std::string_view>());
        case QBLVariantPointer:
            return std::forward<Visitor>(visitor)(*get<void*>());
        default:
            return std::forward<Visitor>(visitor)(std::monostate());
    }
}

#endif
