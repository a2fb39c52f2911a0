#ifndef QBLCORE_TYPES_INTERNAL_QBLDBTYPETABLES_HPP
#define QBLCORE_TYPES_INTERNAL_QBLDBTYPETABLES_HPP

#include "QBLCore/Types/QBLDBTypes.hpp"

// The type catalogue, one table for each set of types. The first row of a code has its name and its
// mappings; a later row with the same code only adds a name. After a change, build the target
// types_page, which rewrites docs/types.md.

struct QBLSqlColTypeRow {
    SqlColType code;
    const char* name;
    XSType xsType;
    QBLDBDatatype datatype;
};

struct QBLDBDatatypeRow {
    QBLDBDatatype code;
    const char* name;
    SqlColType sqlColType;
    XSType xsType;
};

struct QBLXSTypeRow {
    XSType code;
    const char* name;
    SqlColType sqlColType;
    QBLDBDatatype datatype;
};

// The number of codes of each set: the last enumerator plus 1.
constexpr int kSqlColTypeCodes = sqlInterval2 + 1;
constexpr int kQBLDBDatatypeCodes = qblDTypeInterval2 + 1;
constexpr int kXSTypeCodes = xsPositiveInteger + 1;

constexpr QBLSqlColTypeRow kSqlColTypes[] = {
    {sqlUnknownType, "sqlUnknownType", xsAnyType, qblDTypeUnknown},
    {sqlChar, "sqlChar", xsString, qblDTypeString},
    {sqlVarChar, "sqlVarChar", xsString, qblDTypeString},
    {sqlLongVarChar, "sqlLongVarChar", xsString, qblDTypeString},
    {sqlSmallInt, "sqlSmallInt", xsShort, qblDTypeInt16},
    {sqlInteger, "sqlInteger", xsInt, qblDTypeInt32},
    {sqlDecimal, "sqlDecimal", xsDecimal, qblDTypeDecimal},
    {sqlFloat, "sqlFloat", xsFloat, qblDTypeFloat},
    {sqlDouble, "sqlDouble", xsDouble, qblDTypeDouble},
    {sqlBinary, "sqlBinary", xsBase64Binary, qblDTypeBinary},
    {sqlVarBinary, "sqlVarBinary", xsBase64Binary, qblDTypeVarBinary},
    {sqlQuad, "sqlQuad", xsLong, qblDTypeInt64},
    {sqlDate, "sqlDate", xsDate, qblDTypeDate},
    {sqlTime, "sqlTime", xsTime, qblDTypeTime},
    {sqlDateTime, "sqlDateTime", xsDateTime, qblDTypeDateTime},
    {sqlInterval, "sqlInterval", xsDuration, qblDTypeDTInterval},
    {sqlDbKey, "sqlDbKey", xsBase64Binary, qblDTypeBinary},
    {sqlBlob, "sqlBlob", xsBase64Binary, qblDTypeBlob},
    {sqlText, "sqlText", xsString, qblDTypeTextBlob},
    {sqlBlobArray, "sqlBlobArray", xsBase64Binary, qblDTypeBlob},
    {sqlChapter, "sqlChapter", xsBase64Binary, qblDTypeBlob},
    {sqlBoolean, "sqlBoolean", xsBoolean, qblDTypeBoolean},
    {sqlTimeTZ, "sqlTimeTZ", xsTime, qblDTypeTimeTZ},
    {sqlTimestampTZ, "sqlTimestampTZ", xsDateTime, qblDTypeTimestampTZ},
    {sqlIntervalYM, "sqlIntervalYM", xsDuration, qblDTypeYMInterval},
    {sqlNChar, "sqlNChar", xsString, qblDTypeNChar},
    {sqlNVarChar, "sqlNVarChar", xsString, qblDTypeNVarChar},
    {sqlNumeric, "sqlNumeric", xsDecimal, qblDTypeNumeric},
    {sqlDate2, "sqlDate2", xsDate, qblDTypeDate2},
    {sqlTime2, "sqlTime2", xsTime, qblDTypeTime2},
    {sqlTimestamp2, "sqlTimestamp2", xsDateTime, qblDTypeTimestamp2},
    {sqlInterval2, "sqlInterval2", xsDuration, qblDTypeInterval2},
};

constexpr QBLDBDatatypeRow kQBLDBDatatypes[] = {
    {qblDTypeUnknown, "qblDTypeUnknown", sqlUnknownType, xsAnyType},
    {qblDTypeString, "qblDTypeString", sqlVarChar, xsString},
    {qblDTypeInt8, "qblDTypeInt8", sqlSmallInt, xsByte},
    {qblDTypeUInt8, "qblDTypeUInt8", sqlSmallInt, xsUnsignedByte},
    {qblDTypeInt16, "qblDTypeInt16", sqlSmallInt, xsShort},
    {qblDTypeUInt16, "qblDTypeUInt16", sqlInteger, xsUnsignedShort},
    {qblDTypeInt32, "qblDTypeInt32", sqlInteger, xsInt},
    {qblDTypeUInt32, "qblDTypeUInt32", sqlQuad, xsUnsignedInt},
    {qblDTypeInt64, "qblDTypeInt64", sqlQuad, xsLong},
    {qblDTypeUInt64, "qblDTypeUInt64", sqlDecimal, xsUnsignedLong},
    {qblDTypeFloat, "qblDTypeFloat", sqlFloat, xsFloat},
    {qblDTypeDouble, "qblDTypeDouble", sqlDouble, xsDouble},
    {qblDTypeDecimal, "qblDTypeDecimal", sqlDecimal, xsDecimal},
    {qblDTypeDate, "qblDTypeDate", sqlDate, xsDate},
    {qblDTypeTime, "qblDTypeTime", sqlTime, xsTime},
    {qblDTypeDateTime, "qblDTypeDateTime", sqlDateTime, xsDateTime},
    {qblDTypeDTInterval, "qblDTypeDTInterval", sqlInterval, xsDuration},
    {qblDTypeYMInterval, "qblDTypeYMInterval", sqlIntervalYM, xsDuration},
    {qblDTypeBlob, "qblDTypeBlob", sqlBlob, xsBase64Binary},
    {qblDTypeRowIterator, "qblDTypeRowIterator", sqlInteger, xsInt},
    {qblDTypeDimIterator, "qblDTypeDimIterator", sqlInteger, xsInt},
    {qblDTypeMasterDataset, "qblDTypeMasterDataset", sqlInteger, xsInt},
    {qblDTypeVariant, "qblDTypeVariant", sqlUnknownType, xsAnyType},
    {qblDTypeBinary, "qblDTypeBinary", sqlBinary, xsBase64Binary},
    {qblDTypeVarBinary, "qblDTypeVarBinary", sqlVarBinary, xsBase64Binary},
    {qblDTypeMemberUniqueName, "qblDTypeMemberUniqueName", sqlChar, xsNormalizedString},
    {qblDTypeMemberCaption, "qblDTypeMemberCaption", sqlChar, xsNormalizedString},
    {qblDTypeDimensionUniqueName, "qblDTypeDimensionUniqueName", sqlChar, xsNormalizedString},
    {qblDTypeParentUniqueName, "qblDTypeParentUniqueName", sqlChar, xsNormalizedString},
    {qblDTypeDescription, "qblDTypeDescription", sqlChar, xsNormalizedString},
    {qblDTypeHierarchyUniqueName, "qblDTypeHierarchyUniqueName", sqlChar, xsNormalizedString},
    {qblDTypeParentLevel, "qblDTypeParentLevel", sqlChar, xsNormalizedString},
    {qblDTypeLevelUniqueName, "qblDTypeLevelUniqueName", sqlChar, xsNormalizedString},
    {qblDTypeLevelNumber, "qblDTypeLevelNumber", sqlInteger, xsInt},
    {qblDTypeLevelLabel, "qblDTypeLevelLabel", sqlChar, xsNormalizedString},
    {qblDTypeFormattedValue, "qblDTypeFormattedValue", sqlChar, xsNormalizedString},
    {qblDTypeFont, "qblDTypeFont", sqlChar, xsNormalizedString},
    {qblDTypeForeColor, "qblDTypeForeColor", sqlInteger, xsUnsignedInt},
    {qblDTypeBackColor, "qblDTypeBackColor", sqlInteger, xsUnsignedInt},
    {qblDTypeFontFlags, "qblDTypeFontFlags", sqlInteger, xsUnsignedInt},
    {qblDTypeOrdinal, "qblDTypeOrdinal", sqlQuad, xsUnsignedLong},
    {qblDTypeNestedDim, "qblDTypeNestedDim", sqlInteger, xsInt},
    {qblDTypeNumberOfParents, "qblDTypeNumberOfParents", sqlInteger, xsInt},
    {qblDTypeMemberType, "qblDTypeMemberType", sqlChar, xsNormalizedString},
    {qblDTypeHasChildren, "qblDTypeHasChildren", sqlSmallInt, xsBoolean},
    {qblDTypeExternalBuffer, "qblDTypeExternalBuffer", sqlVarChar, xsString},
    {qblDTypeTextBlob, "qblDTypeTextBlob", sqlText, xsString},
    {qblDTypeMIME, "qblDTypeMIME", sqlBlob, xsBase64Binary},
    {qblDTypeURL, "qblDTypeURL", sqlChar, xsAnyURI},
    {qblDTypeCurrency, "qblDTypeCurrency", sqlChar, xsNormalizedString},
    {qblDTypeMeasureItem, "qblDTypeMeasureItem", sqlChar, xsNormalizedString},
    {qblDTypeBoolean, "qblDTypeBoolean", sqlBoolean, xsBoolean},
    {qblDTypeTimeTZ, "qblDTypeTimeTZ", sqlTimeTZ, xsTime},
    {qblDTypeTimestamp, "qblDTypeTimestamp", sqlDateTime, xsDateTime},
    {qblDTypeTimestampTZ, "qblDTypeTimestampTZ", sqlTimestampTZ, xsDateTime},
    {qblDTypeNumeric, "qblDTypeNumeric", sqlNumeric, xsDecimal},
    {qblDTypeNChar, "qblDTypeNChar", sqlNChar, xsString},
    {qblDTypeNVarChar, "qblDTypeNVarChar", sqlNVarChar, xsString},
    {qblDTypeDate2, "qblDTypeDate2", sqlDate2, xsDate},
    {qblDTypeTime2, "qblDTypeTime2", sqlTime2, xsTime},
    {qblDTypeTimestamp2, "qblDTypeTimestamp2", sqlTimestamp2, xsDateTime},
    {qblDTypeInterval2, "qblDTypeInterval2", sqlInterval2, xsDuration},
};

constexpr QBLXSTypeRow kXSTypes[] = {
    {xsAnyType, "xs:anyType", sqlUnknownType, qblDTypeUnknown},
    {xsString, "xs:string", sqlVarChar, qblDTypeString},
    {xsBoolean, "xs:boolean", sqlSmallInt, qblDTypeUInt16},
    {xsDecimal, "xs:decimal", sqlDecimal, qblDTypeDecimal},
    {xsFloat, "xs:float", sqlFloat, qblDTypeFloat},
    {xsDouble, "xs:double", sqlDouble, qblDTypeDouble},
    {xsDuration, "xs:duration", sqlInterval, qblDTypeDTInterval},
    {xsDateTime, "xs:dateTime", sqlDateTime, qblDTypeDateTime},
    {xsTime, "xs:time", sqlTime, qblDTypeTime},
    {xsDate, "xs:date", sqlDate, qblDTypeDate},
    {xsGYearMonth, "xs:gYearMonth", sqlUnknownType, qblDTypeUnknown},
    {xsGYear, "xs:gYear", sqlUnknownType, qblDTypeUnknown},
    {xsGMonthDay, "xs:gMonthDay", sqlUnknownType, qblDTypeUnknown},
    {xsGDay, "xs:gDay", sqlUnknownType, qblDTypeUnknown},
    {xsGMonth, "xs:gMonth", sqlUnknownType, qblDTypeUnknown},
    {xsHexBinary, "xs:hexBinary", sqlBlob, qblDTypeBlob},
    {xsBase64Binary, "xs:base64Binary", sqlBlob, qblDTypeBlob},
    {xsAnyURI, "xs:anyURI", sqlVarChar, qblDTypeString},
    {xsQName, "xs:QName", sqlVarChar, qblDTypeString},
    {xsNOTATION, "xs:NOTATION", sqlVarChar, qblDTypeString},
    {xsNormalizedString, "xs:normalizedString", sqlVarChar, qblDTypeString},
    {xsToken, "xs:token", sqlVarChar, qblDTypeString},
    {xsLanguage, "xs:language", sqlVarChar, qblDTypeString},
    {xsNMTOKEN, "xs:NMTOKEN", sqlVarChar, qblDTypeString},
    {xsNMTOKENS, "xs:NMTOKENS", sqlVarChar, qblDTypeString},
    {xsName, "xs:Name", sqlVarChar, qblDTypeString},
    {xsNCName, "xs:NCName", sqlVarChar, qblDTypeString},
    {xsID, "xs:ID", sqlVarChar, qblDTypeString},
    {xsIDREF, "xs:IDREF", sqlVarChar, qblDTypeString},
    {xsIDREFS, "xs:IDREFS", sqlVarChar, qblDTypeString},
    {xsENTITY, "xs:ENTITY", sqlVarChar, qblDTypeString},
    {xsENTITIES, "xs:ENTITIES", sqlVarChar, qblDTypeString},
    {xsInteger, "xs:integer", sqlInteger, qblDTypeInt32},
    {xsNonPositiveInteger, "xs:nonPositiveInteger", sqlInteger, qblDTypeInt32},
    {xsNegativeInteger, "xs:negativeInteger", sqlInteger, qblDTypeInt32},
    {xsLong, "xs:long", sqlQuad, qblDTypeInt64},
    {xsInt, "xs:int", sqlInteger, qblDTypeInt32},
    {xsShort, "xs:short", sqlSmallInt, qblDTypeInt16},
    {xsByte, "xs:byte", sqlSmallInt, qblDTypeInt8},
    {xsNonNegativeInteger, "xs:nonNegativeInteger", sqlInteger, qblDTypeUInt32},
    {xsUnsignedLong, "xs:unsignedLong", sqlDecimal, qblDTypeUInt64},
    {xsUnsignedInt, "xs:unsignedInt", sqlQuad, qblDTypeUInt32},
    {xsUnsignedShort, "xs:unsignedShort", sqlInteger, qblDTypeUInt16},
    {xsUnsignedByte, "xs:unsignedByte", sqlSmallInt, qblDTypeUInt8},
    {xsPositiveInteger, "xs:positiveInteger", sqlQuad, qblDTypeUInt32},
};

#endif
