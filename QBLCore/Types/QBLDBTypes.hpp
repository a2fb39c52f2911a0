#ifndef QBLCORE_TYPES_QBLDBTYPES_HPP
#define QBLCORE_TYPES_QBLDBTYPES_HPP

#include "QBLCore/Frame/QBLExport.h"

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

/// The library's own data types; they tag the values of variants too.
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

/// The built-in types of XML Schema. A name has the prefix "xs:", an enumerator only xs.
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

/// The catalogue of types: the names of SQL column types, data types and XML Schema types, and what
/// a type of one vocabulary becomes in another. The tables are fixed; docs/types.md shows them.
///
/// The mappings are not each other's inverse: xsBoolean becomes qblDTypeUInt16, for example, and
/// qblDTypeBoolean becomes xsBoolean. What has no counterpart becomes code 0. Code 15 has two
/// names, "qblDTypeDateTime", which getName() gives, and "qblDTypeTimestamp".
///
/// Nothing is kept of a name that was asked for, and nothing but get() can fail.
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

    /// The one catalogue of the process, made by the first call. It stays until the process ends.
    /// @throws QBLOutOfMemoryError, QBLThreadResourceError; a later call tries again
    static QBLDBTypes* get();
    QBLDBTypes(const QBLDBTypes&) = delete;
    QBLDBTypes& operator=(const QBLDBTypes&) = delete;

    /// Fills the catalogue, which get() has done; another call changes nothing.
    void init();
    /// @}

    /// @name From one vocabulary to another
    /// @{

    /// What a type becomes in another vocabulary; code 0 for a code that is in no table.
    XSType SqlColType2XSType(SqlColType type) const;
    QBLDBDatatype SqlColType2QBLDBDatatype(SqlColType type) const;
    SqlColType QBLDBDatatype2SqlColType(QBLDBDatatype type) const;
    XSType QBLDBDatatype2XSType(QBLDBDatatype type) const;
    SqlColType XSType2SqlColType(XSType type) const;
    QBLDBDatatype XSType2QBLDBDatatype(XSType type) const;
    /// @}

    /// @name Names
    /// @{

    /// @return a literal; null for a code that is in no table
    const char* getName(SqlColType type) const;
    const char* getName(QBLDBDatatype type) const;
    const char* getName(XSType type) const;

    /// The type of a name, which has to be the same in every letter.
    /// @return code 0 for a name that is in no table, and for null
    SqlColType getSqlColTypeCode(const char* name) const;
    QBLDBDatatype getQBLDBDatatypeCode(const char* name) const;
    XSType getXSTypeCode(const char* name) const;
    /// @}

private:
    QBLDBTypes() = default;

    // By code; parts of the library, not of the catalogue.
    const QBLSqlColTypeRow* m_pSqlColTypes = nullptr;
    const QBLDBDatatypeRow* m_pQBLDBDatatypes = nullptr;
    const QBLXSTypeRow* m_pXSTypes = nullptr;
};

#endif
