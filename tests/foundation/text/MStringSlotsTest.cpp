#include <array>
#include <cstdint>
#include <tuple>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include "MString.h"

namespace {

template <class Result, class... Arguments>
using Of = Result (MString::*)(Arguments...);
template <class Result, class... Arguments>
using OfConst = Result (MString::*)(Arguments...) const;

using Text = const char*;
using Int = std::int32_t;
using Same = MString&;
using Other = const MString&;

/// Every virtual operation but the destructor, in the order of its slots.
const auto kOperations = std::make_tuple(
    &MString::Clear, Of<void, Text>(&MString::Append), Of<void, Text, Int>(&MString::Append),
    Of<void, char>(&MString::Append), Of<void, Other>(&MString::Append), &MString::GetFormatLength, &MString::Compact,
    &MString::Clone, &MString::c_str, &MString::GetLength, //
    Of<Same, Other>(&MString::operator=), Of<Same, Text>(&MString::operator=), Of<Same, Other>(&MString::operator+=),
    Of<Same, double>(&MString::operator+=), Of<Same, Int>(&MString::operator+=), Of<Same, char>(&MString::operator+=),
    Of<Same, Text>(&MString::operator+=), OfConst<MString, Other>(&MString::operator+),
    OfConst<MString, double>(&MString::operator+), OfConst<MString, Int>(&MString::operator+),
    OfConst<MString, Text>(&MString::operator+), //
    OfConst<bool, Text>(&MString::operator==), OfConst<bool, Other>(&MString::operator==),
    OfConst<bool, Text>(&MString::operator!=), OfConst<bool, Other>(&MString::operator!=), &MString::operator<,
    &MString::operator>=, &MString::IsNotLess, &MString::IsNotGreaterOrEqual, //
    OfConst<Text, Int>(&MString::CharPointerAt), &MString::GetBuffer, &MString::IsNotEmpty,
    Of<char*, Int>(&MString::CharPointerAt), //
    OfConst<Int, Text, Int>(&MString::Find), OfConst<Int, Text>(&MString::Find),
    OfConst<Int, char, Int, bool>(&MString::FindChar), OfConst<Int, char, bool>(&MString::FindChar), //
    &MString::Reserve, &MString::Insert, &MString::Remove, &MString::ReplaceAll, &MString::Replace, &MString::ToUpper,
    &MString::ToLower, &MString::ToInt, &MString::ToDouble, //
    Of<Int, bool>(&MString::Trim), Of<Int, bool>(&MString::TrimLeft), Of<Int, bool>(&MString::TrimRight),
    Of<Int, char>(&MString::Trim), Of<Int, char>(&MString::TrimLeft), Of<Int, char>(&MString::TrimRight), //
    &MString::Mid, &MString::Reverse, &MString::Duplicate, &MString::Format, &MString::Assign, &MString::LoadResource,
    &MString::IsNumeric, //
    Of<Same, Text>(&MString::ChainAppend), Of<Same, Text, Int>(&MString::ChainAppend), &MString::ChainInsert,
    &MString::ChainRemove, &MString::ChainReplaceAll, &MString::ChainReplace, &MString::ChainToUpper,
    &MString::ChainToLower, Of<Same, bool>(&MString::ChainTrim), Of<Same, bool>(&MString::ChainTrimLeft),
    Of<Same, bool>(&MString::ChainTrimRight), Of<Same, char>(&MString::ChainTrim),
    Of<Same, char>(&MString::ChainTrimLeft), Of<Same, char>(&MString::ChainTrimRight), &MString::ChainReverse);

constexpr std::size_t kCount = std::tuple_size_v<decltype(kOperations)>;
static_assert(kCount + 1 == 75, "with the destructor");

/// The place of a virtual operation among those of its class, from 0, by the platform's C++ ABI: a pointer to it holds
/// 1 plus its place in bytes.
template <class Operation>
std::size_t Slot(Operation operation) {
    static_assert(std::is_member_function_pointer_v<Operation>);
    std::uintptr_t place = 0;
    static_assert(sizeof(operation) >= sizeof(place));
    __builtin_memcpy(&place, &operation, sizeof(place));
    return (place - 1) / sizeof(void*);
}

template <std::size_t... kPlaces>
std::array<std::size_t, sizeof...(kPlaces)> Slots(std::index_sequence<kPlaces...>) {
    return {Slot(std::get<kPlaces>(kOperations))...};
}

} // namespace

TEST(MStringSlots, TheSeventyFiveVirtualOperationsStandInTheirOrder) {
    static_assert(std::has_virtual_destructor_v<MString>);
    constexpr std::size_t kDestructor = 7;        // its place in the order
    constexpr std::size_t kDestructorEntries = 2; // the ABI keeps a second one, for delete
    const auto slots = Slots(std::make_index_sequence<kCount>());
    for (std::size_t i = 0; i < slots.size(); ++i)
        EXPECT_EQ(slots[i], i < kDestructor ? i : i + kDestructorEntries) << "operation " << i;
}
