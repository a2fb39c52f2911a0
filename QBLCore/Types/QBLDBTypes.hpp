#ifndef QBLCORE_TYPES_QBLDBTYPES_HPP
#define QBLCORE_TYPES_QBLDBTYPES_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// The types of SQL columns.
enum SqlColType : int {
    sqlUnknownType = 0,
    sqlChar,
    sqlVarChar,
    sqlLongVarChar,
    sqlSmallInt,
    sqlInteger,
    sqlDecimal,
    sqlFloat,
    sqlDouble,
    sqlBinary,
    sqlVarBinary,
    sqlQuad,
    sqlDate,
    sqlTime,
    sqlDateTime,
    sqlInterval,
    sqlDbKey,
    sqlBlob,
    sqlText,
    sqlBlobArray,
    sqlChapter,
    sqlBoolean,
    sqlTimeTZ,
    sqlTimestampTZ,
    sqlIntervalYM,
    sqlNChar,
    sqlNVarChar,
    sqlNumeric,
    sqlDate2,
    sqlTime2,
    sqlTimestamp2,
    sqlInterval2
};

/// The library's own data types.
enum QBLDBDatatype : int {
    qblDTypeUnknown = 0,
    qblDTypeString,
    qblDTypeInt8,
    qblDTypeUInt8,
    qblDTypeInt16,
    qblDTypeUInt16,
    qblDTypeInt32,
    qblDTypeUInt32,
    qblDTypeInt64,
    qblDTypeUInt64,
    qblDTypeFloat,
    qblDTypeDouble,
    qblDTypeDecimal,
    qblDTypeDate,
    qblDTypeTime,
    qblDTypeDateTime,
    qblDTypeDTInterval,
    qblDTypeYMInterval,
    qblDTypeBlob,
    qblDTypeRowIterator,
    qblDTypeDimIterator,
    qblDTypeMasterDataset,
    qblDTypeVariant,
    qblDTypeBinary,
    qblDTypeVarBinary,
    qblDTypeMemberUniqueName,
    qblDTypeMemberCaption,
    qblDTypeDimensionUniqueName,
    qblDTypeParentUniqueName,
    qblDTypeDescription,
    qblDTypeHierarchyUniqueName,
    qblDTypeParentLevel,
    qblDTypeLevelUniqueName,
    qblDTypeLevelNumber,
    qblDTypeLevelLabel,
    qblDTypeFormattedValue,
    qblDTypeFont,
    qblDTypeForeColor,
    qblDTypeBackColor,
    qblDTypeFontFlags,
    qblDTypeOrdinal,
    qblDTypeNestedDim,
    qblDTypeNumberOfParents,
    qblDTypeMemberType,
    qblDTypeHasChildren,
    qblDTypeExternalBuffer,
    qblDTypeTextBlob,
    qblDTypeMIME,
    qblDTypeURL,
    qblDTypeCurrency,
    qblDTypeMeasureItem,
    qblDTypeBoolean,
    qblDTypeTimeTZ,
    qblDTypeTimestampTZ,
    qblDTypeNumeric,
    qblDTypeNChar,
    qblDTypeNVarChar,
    qblDTypeDate2,
    qblDTypeTime2,
    qblDTypeTimestamp2,
    qblDTypeInterval2,
    qblDTypeTimestamp = qblDTypeDateTime
};

/// The built-in types of XML Schema. The names of the types begin with "xs:". The enumerators begin
/// with "xs".
enum XSType : int {
    xsAnyType = 0,
    xsString,
    xsBoolean,
    xsDecimal,
    xsFloat,
    xsDouble,
    xsDuration,
    xsDateTime,
    xsTime,
    xsDate,
    xsGYearMonth,
    xsGYear,
    xsGMonthDay,
    xsGDay,
    xsGMonth,
    xsHexBinary,
    xsBase64Binary,
    xsAnyURI,
    xsQName,
    xsNOTATION,
    xsNormalizedString,
    xsToken,
    xsLanguage,
    xsNMTOKEN,
    xsNMTOKENS,
    xsName,
    xsNCName,
    xsID,
    xsIDREF,
    xsIDREFS,
    xsENTITY,
    xsENTITIES,
    xsInteger,
    xsNonPositiveInteger,
    xsNegativeInteger,
    xsLong,
    xsInt,
    xsShort,
    xsByte,
    xsNonNegativeInteger,
    xsUnsignedLong,
    xsUnsignedInt,
    xsUnsignedShort,
    xsUnsignedByte,
    xsPositiveInteger
};

struct QBLSqlColTypeRow;
struct QBLDBDatatypeRow;
struct QBLXSTypeRow;

/// Maps between three sets of types: SQL column types, data types of the library, and XML Schema
/// types. Also maps between types and their names. The tables are fixed; docs/types.md shows them.
///
/// The mappings are not inverse to each other: for example, xsBoolean maps to qblDTypeUInt16, but
/// qblDTypeBoolean maps to xsBoolean. A type without a counterpart maps to code 0. Data type 15 has
/// two names: "qblDTypeDateTime", which getName() returns, and "qblDTypeTimestamp".
///
/// The catalogue keeps no pointers to names that callers pass. Of all operations, only get() can
/// fail.
///
/// Threads: any thread may call any operation at any time.
///
///     const QBLDBTypes* types = QBLDBTypes::get();
///     types->getName(types->SqlColType2XSType(sqlBlob));  // "xs:base64Binary"
///     types->getSqlColTypeCode("sqlVarChar");             // sqlVarChar
class QBL_API QBLDBTypes {
public:
    /// @name The catalogue
    /// @{

    /// Returns the catalogue of the process. The first call creates the catalogue, which is never
    /// destroyed.
    /// @throws QBLOutOfMemoryError, QBLThreadResourceError; after an error, the next call tries
    ///     again
    static QBLDBTypes* get();
    QBLDBTypes(const QBLDBTypes&) = delete;
    QBLDBTypes& operator=(const QBLDBTypes&) = delete;

    /// Fills the catalogue. get() already calls init(); further calls have no effect.
    void init();
    /// @}

    /// @name Mappings
    /// @{

    /// Maps a type to a type of another set. Returns code 0 for a code that is not in the table.
    XSType SqlColType2XSType(SqlColType type) const;
    QBLDBDatatype SqlColType2QBLDBDatatype(SqlColType type) const;
    SqlColType QBLDBDatatype2SqlColType(QBLDBDatatype type) const;
    XSType QBLDBDatatype2XSType(QBLDBDatatype type) const;
    SqlColType XSType2SqlColType(XSType type) const;
    QBLDBDatatype XSType2QBLDBDatatype(XSType type) const;
    /// @}

    /// @name Names
    /// @{

    /// @return the name, a string literal; null for a code that is not in the table
    const char* getName(SqlColType type) const;
    const char* getName(QBLDBDatatype type) const;
    const char* getName(XSType type) const;

    /// Returns the type with this name. Names are case-sensitive.
    /// @return code 0 for an unknown name or null
    SqlColType getSqlColTypeCode(const char* name) const;
    QBLDBDatatype getQBLDBDatatypeCode(const char* name) const;
    XSType getXSTypeCode(const char* name) const;
    /// @}

private:
    QBLDBTypes() = default;

    // Tables indexed by code. They are static data of the library.
    const QBLSqlColTypeRow* m_pSqlColTypes = nullptr;
    const QBLDBDatatypeRow* m_pQBLDBDatatypes = nullptr;
    const QBLXSTypeRow* m_pXSTypes = nullptr;
};

#endif
