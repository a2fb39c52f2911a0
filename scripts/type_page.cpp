// Prints the page docs/types.md from the library's type tables. The target types_page writes the
// output to the file.

#include <cstddef>
#include <cstdio>

#include "QBLCore/Types/internal/QBLDBTypeTables.hpp"

namespace {

template <class Row, std::size_t kRows, class Code>
const char* nameOf(const Row (&rows)[kRows], Code code) {
    for (const Row& row : rows)
        if (row.code == code) return row.name;
    return "none";
}

void section(const char* title, const char* first, const char* second) {
    std::printf("\n## %s\n\n| code | name | %s | %s |\n|---|---|---|---|\n", title, first, second);
}

void line(int code, const char* name, const char* first, const char* second) {
    std::printf("| %d | `%s` | `%s` | `%s` |\n", code, name, first, second);
}

}  // namespace

int main() {
    std::printf(
        "# Types\n\n"
        "`QBLDBTypes` maps between three sets of types: SQL column types, data types of the "
        "library,\nand XML Schema types. `scripts/type_page.cpp` generates this page from the "
        "library's tables.\n\n"
        "The mappings are not inverse to each other. A type without a counterpart maps to code 0. "
        "If a\ncode has two names, a mapping from the code gives the first name.\n");
    section("SQL column types, SqlColType", "to `XSType`", "to `QBLDBDatatype`");
    for (const QBLSqlColTypeRow& row : kSqlColTypes)
        line(row.code, row.name, nameOf(kXSTypes, row.xsType),
             nameOf(kQBLDBDatatypes, row.datatype));
    section("Data types, QBLDBDatatype", "to `SqlColType`", "to `XSType`");
    for (const QBLDBDatatypeRow& row : kQBLDBDatatypes)
        line(row.code, row.name, nameOf(kSqlColTypes, row.sqlColType),
             nameOf(kXSTypes, row.xsType));
    section("XML Schema types, XSType", "to `SqlColType`", "to `QBLDBDatatype`");
    for (const QBLXSTypeRow& row : kXSTypes)
        line(row.code, row.name, nameOf(kSqlColTypes, row.sqlColType),
             nameOf(kQBLDBDatatypes, row.datatype));
}
