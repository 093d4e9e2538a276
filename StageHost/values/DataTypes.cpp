#include "DataTypes.h"

#include <algorithm>
#include <iterator>

namespace stagehost {

namespace {

template <typename Matches>
const DataType* FindRow(Matches matches) {
    const auto* row = std::find_if(std::begin(kDataTypes), std::end(kDataTypes), matches);
    return row == std::end(kDataTypes) ? nullptr : row;
}

} // namespace

const DataType* FindDataType(std::uint32_t code) {
    return FindRow([code](const DataType& row) { return row.code == code; });
}

const DataType* FindDataTypeOfElement(std::string_view elementName) {
    return FindRow([elementName](const DataType& row) { return elementName == row.elementName; });
}

const DataType* FindDataTypeOfShow(std::string_view showName) {
    return FindRow([showName](const DataType& row) { return showName == row.showName; });
}

} // namespace stagehost
