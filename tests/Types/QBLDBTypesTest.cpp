#include "QBLCore/Types/QBLDBTypes.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Types/internal/QBLDBTypeTables.hpp"
#include "tests/faults/Injector.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/Workers.hpp"

namespace {

/// Expects that each code has its own name, and that a name with one letter changed is unknown.
template <class Type>
void expectNames(int count, Type (QBLDBTypes::*code)(const char*) const) {
    const QBLDBTypes& types = *QBLDBTypes::get();
    for (int i = 0; i < count; ++i) {
        std::string name = types.getName(static_cast<Type>(i));
        EXPECT_EQ(i, (types.*code)(name.c_str())) << name;
        for (char& c : name) {
            ++c;
            EXPECT_EQ(0, (types.*code)(name.c_str())) << name;
            --c;
        }
        EXPECT_EQ(0, (types.*code)((name + "x").c_str()));
    }
    for (const int outside : {-1, count, 0x7FFFFFFF, -0x7FFFFFFF - 1})
        EXPECT_EQ(nullptr, types.getName(static_cast<Type>(outside)));
    for (const char* unknown : {"", "x", "xs:", "xs:a", "none of these"})
        EXPECT_EQ(0, (types.*code)(unknown));
    EXPECT_EQ(0, (types.*code)(nullptr));
}

}  // namespace

TEST(QBLDBTypesTest, CreationCanBeRetriedAfterFailedAllocations) {
    const int status = inChild([] {
        bool made = false;
        const long failures = fault::eachAllocation([&made] {
            try {
                made = QBLDBTypes::get() != nullptr;
            } catch (const QBLOutOfMemoryError&) {
            }
        });
        return made && failures > 0 && QBLDBTypes::get() == QBLDBTypes::get() ? 0 : 1;
    });
    EXPECT_EQ(0, status);
}

TEST(QBLDBTypesTest, IsCreatedOnceByConcurrentFirstCalls) {
    Gate gate;
    std::atomic<QBLDBTypes*> one{nullptr};
    Workers workers(8, [&] {
        gate.wait();
        QBLDBTypes *mine = QBLDBTypes::get(), *other = nullptr;
        EXPECT_TRUE(one.compare_exchange_strong(other, mine) || other == mine);
        for (int i = 0; i < 1000; ++i)
            EXPECT_TRUE(mine->getSqlColTypeCode("none") == 0 &&
                        mine->getXSTypeCode("xs:gDay") == xsGDay &&
                        mine->XSType2SqlColType(xsToken) == sqlVarChar);
    });
    gate.open();
}

TEST(QBLDBTypesTest, FindsEveryNameAndNoOther) {
    expectNames<SqlColType>(kSqlColTypeCodes, &QBLDBTypes::getSqlColTypeCode);
    expectNames<QBLDBDatatype>(kQBLDBDatatypeCodes, &QBLDBTypes::getQBLDBDatatypeCode);
    expectNames<XSType>(kXSTypeCodes, &QBLDBTypes::getXSTypeCode);
    EXPECT_EQ(15, QBLDBTypes::get()->getQBLDBDatatypeCode("qblDTypeTimestamp"));
    for (int i = 0; i < 2; ++i) {
        const auto name = std::make_unique<std::string>("a name that is freed after the lookup");
        EXPECT_EQ(0, QBLDBTypes::get()->getXSTypeCode(name->c_str()));
    }
}

// Checks only a few mappings: docs/types.md lists all, and a test compares it with the tables.
TEST(QBLDBTypesTest, MapsIrregularTypes) {
    const QBLDBTypes& types = *QBLDBTypes::get();
    EXPECT_EQ(xsDuration, types.SqlColType2XSType(sqlInterval2));
    EXPECT_EQ(qblDTypeInterval2, types.SqlColType2QBLDBDatatype(sqlInterval2));
    EXPECT_STREQ("qblDTypeDateTime", types.getName(qblDTypeTimestamp));
    EXPECT_EQ(sqlUnknownType, types.QBLDBDatatype2SqlColType(qblDTypeVariant));
    EXPECT_EQ(xsBoolean, types.QBLDBDatatype2XSType(qblDTypeHasChildren));
    EXPECT_EQ(qblDTypeUInt16, types.XSType2QBLDBDatatype(xsBoolean));
    EXPECT_EQ(sqlUnknownType, types.XSType2SqlColType(xsGDay));
    EXPECT_EQ(sqlQuad, types.XSType2SqlColType(xsPositiveInteger));
    EXPECT_EQ(0, types.XSType2SqlColType(static_cast<XSType>(45)));
    EXPECT_EQ(0, types.QBLDBDatatype2XSType(static_cast<QBLDBDatatype>(-1)));
}
