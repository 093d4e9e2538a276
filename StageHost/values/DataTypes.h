#pragma once

#include <cstdint>
#include <string_view>

#include "KXPTypes.h"

namespace stagehost {

/// One of the data types that exist as values: its names on all sides.
struct DataType {
    std::uint32_t code;           ///< what IData::GetDataType gives
    const char* showName;         ///< in show files and output: "Integer"
    const char* elementName;      ///< in definition texts: "IntegerData"
    const char* interfaceName;    ///< answered by QueryInterface: "IIntegerData"
    const char* contentAttribute; ///< where the definition keeps the first content: "Value"
};

inline constexpr DataType kDataTypes[] = {
    {KXP_PRIVATE_DATA, "Private", "PrivateData", "IPrivateData", "Value"},
    {KXP_INTEGER_DATA, "Integer", "IntegerData", "IIntegerData", "Value"},
    {KXP_STRING_DATA, "String", "StringData", "IStringData", "String"},
    {KXP_TIME_DATA, "Time", "TimeData", "ITimeData", "Time"},
    {KXP_ENUM_DATA, "Enum", "EnumData", "IEnumData", "Current"},
    {KXP_DATE_DATA, "Date", "DateData", "IDateData", "Value"},
    {KXP_REAL_DATA, "Real", "RealData", "IRealData", "Value"},
};
static_assert(sizeof(kDataTypes) / sizeof(kDataTypes[0]) == 7, "types 6 and 8 have no values");

/// The row of a code, of a definition's element or of a show file's type name; null when there is none.   [any]
const DataType* FindDataType(std::uint32_t code);
const DataType* FindDataTypeOfElement(std::string_view elementName);
const DataType* FindDataTypeOfShow(std::string_view showName);

} // namespace stagehost
