#include "QBLCore/Types/QBLVariant.hpp"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <string>
#include <typeindex>

#include "QBLCore/Types/QBLVariantValues.hpp"

namespace {

/// Returns the value as text, from a buffer of this size; appends ", cut" if it was truncated.
std::string shown(const QBLVariant& variant, unsigned long size = 40) {
    std::string text(size + 1, '#');
    const bool whole = variant.getValue(&text[0], size);
    EXPECT_EQ('#', text[size]) << "written after the end of the buffer";
    return size == 0 ? "" : text.c_str() + std::string(whole ? "" : ", cut");
}

}  // namespace

TEST(QBLVariantTest, ReturnsAValueOnlyAsItsOwnType) {
    QBLVariant variants[7];
    EXPECT_TRUE(variants[1].setValue(LONG_MIN) && variants[2].setValue(ULONG_MAX));
    EXPECT_TRUE(variants[3].setValue(-1.5) && variants[4].setValue("text", 3));
    EXPECT_TRUE(variants[5].setValue(reinterpret_cast<void*>(0xab0U)));
    variants[6].setVarType(QBLVariant::QBLVariantType(6));
    const unsigned long sizes[] = {0, sizeof(long), sizeof(long), 8, 3, sizeof(void*), 0};
    const std::string lowest = std::to_string(LONG_MIN), highest = std::to_string(ULONG_MAX);
    const std::string texts[] = {"<unknown>", lowest, highest,    "-1.500000e+00",
                                 "tex",       "ab0",  "<invalid>"};
    for (unsigned int type = 0; type < 7; ++type) {
        const QBLVariant& variant = variants[type];
        const std::string& text = texts[type];
        EXPECT_TRUE(variant.getVarType() == type && variant.valueSize() == sizes[type]) << type;
        EXPECT_EQ(text, shown(variant, text.size() + 1));
        EXPECT_EQ(text.substr(0, text.size() - 1) + ", cut", shown(variant, text.size()));
        shown(variant, 0);
        long l = 77;
        unsigned long u = 77;
        double d = 77;
        void* p = &d;
        char* s = reinterpret_cast<char*>(&d);
        EXPECT_TRUE(variant.getValue(l) == (type == 1) && l == (type == 1 ? LONG_MIN : 77));
        EXPECT_TRUE(variant.getValue(u) == (type == 2) && u == (type == 2 ? ULONG_MAX : 77));
        EXPECT_TRUE(variant.getValue(d) == (type == 3) && d == (type == 3 ? -1.5 : 77)) << type;
        EXPECT_TRUE(variant.getValue(p) == (type == 5) && (p == &d) == (type != 5)) << type;
        EXPECT_TRUE(variant.getValue(s) == (type == 4) && (s != nullptr) == (type == 4)) << type;
        QBLVariant copy(variant);
        EXPECT_EQ(text, shown(copy));
        EXPECT_TRUE((copy == variant) == (type <= 5) && variant == variant) << type;
        copy.setValueSize(7);
        EXPECT_TRUE(copy != variant) << type;
    }
}

TEST(QBLVariantTest, VisitsTheValueWithItsType) {
    QBLVariant variant;
    const auto type = [&variant] {
        return variant.visit([](auto value) { return std::type_index(typeid(value)); });
    };
    EXPECT_TRUE(type() == typeid(std::monostate));
    EXPECT_TRUE(variant.setValue(-3L) && type() == typeid(long));
    EXPECT_TRUE(variant.get<long>() == -3 && !variant.get<unsigned long>());
    EXPECT_TRUE(variant.setValue(3UL) && type() == typeid(unsigned long));
    EXPECT_TRUE(variant.setValue(1.5) && type() == typeid(double));
    EXPECT_TRUE(variant.setValue(static_cast<void*>(&variant)) && type() == typeid(void*));
    variant.setValue("four", 3);
    variant.setValueSize(900);
    EXPECT_TRUE(type() == typeid(std::string_view));
    EXPECT_EQ("fou", variant.get<std::string_view>());
    variant.setValue(nullptr, 0);
    EXPECT_EQ(nullptr, variant.get<std::string_view>().value().data());
    variant.setVarType(QBLVariant::QBLVariantType(6));
    EXPECT_TRUE(type() == typeid(std::monostate));
}

TEST(QBLVariantTest, EqualsOnlyTheSameTypeSizeAndValue) {
    QBLVariant all[11];
    EXPECT_TRUE(all[0].setValue(5L) && all[1].setValue(6L) && all[2].setValue(5UL));
    EXPECT_TRUE(all[3].setValue(6UL) && all[4].setValue(0.5) && all[5].setValue(1.5));
    EXPECT_TRUE(all[6].setValue(std::nan("")) && all[7].setValue(static_cast<void*>(all)));
    EXPECT_TRUE(all[8].setValue(nullptr) && all[9].setValue("a", 0) && all[10].setValue("b", 0));
    for (QBLVariant& each : all) each.setValueSize(8);
    for (const QBLVariant& a : all)
        for (const QBLVariant& b : all) EXPECT_EQ(&a == &b, a == b) << &a - all << &b - all;
    EXPECT_FALSE(all[6] == QBLVariant(all[6])) << "NaN is not equal to itself";
}

TEST(QBLVariantTest, KeepsItsStringForAnySizeTag) {
    QBLVariant variant, none;
    EXPECT_TRUE(none.setValue(5L) && none.setValue(nullptr, 5));
    EXPECT_FALSE(none.getValue(static_cast<char*>(nullptr), 5));
    EXPECT_FALSE(variant.setValue("", 0));
    EXPECT_TRUE(variant == none && shown(variant, 1).empty());
    EXPECT_TRUE(variant.setValue("abc", 0));
    const struct {
        unsigned long size;
        const char *text, *inTwo, *copied;
    } table[] = {{0, "", "", ""},
                 {1, "abc", "a", "a"},
                 {3, "abc", "a, cut", "abc"},
                 {1000, "abc, cut", "a, cut", "abc, cut"}};
    for (const auto& row : table) {
        variant.setValueSize(row.size);
        const QBLVariant copy(variant);
        EXPECT_EQ(row.text, shown(variant)) << row.size;
        EXPECT_EQ(row.inTwo, shown(variant, 2)) << row.size;
        EXPECT_EQ(row.copied, shown(copy)) << row.size;
        EXPECT_EQ(row.size >= 3, copy == variant) << row.size;
    }
    variant.setValueSize(ULONG_MAX);
    EXPECT_TRUE(QBLVariant(variant) == QBLVariant()) << "a size that cannot be allocated";
    EXPECT_FALSE(QBLVariant(variant).setValue("text", ULONG_MAX));
    char* own = nullptr;
    EXPECT_TRUE(variant.getValue(own) && variant.setValue(own + 1, 0));
    EXPECT_EQ("bc", shown(variant = *&variant)) << "assigned to itself";
    variant.clear();
    EXPECT_EQ(2U, variant.valueSize());
    EXPECT_TRUE(variant.setValue(0x12345L));
    variant.setVarType(QBLVariant::QBLVariantString);
    EXPECT_TRUE(variant.getValue(own) && own == nullptr)
        << "the variant has a number, not a string";
    EXPECT_TRUE(variant.setValue("kept", 0) && variant.getValue(own));
    variant.setValue(static_cast<void*>(own));
    variant.clear();
    EXPECT_STREQ("kept", own) << "the variant does not free a pointer value";
    delete[] own;
}
