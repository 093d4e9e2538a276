#pragma once

#include "IMInterface.h"

/// A typed value in the host's hands: a variable, or the value of a command's parameter.
///
/// The host serialises calls, so every operation may come on any thread. Each value
/// answers QueryInterface with the name of the interface of its type: "IIntegerData",
/// "IStringData", "IRealData", "ITimeData", "IDateData", "IEnumData".
class IData : public IMInterface {
public:
    /// The variable's full name; for a variable of a device "device.variable". Owned by the value, valid until it is
    /// renamed or gone.   [any]
    virtual const char* GetName() = 0;

    /// Sets a descriptor property. Both texts are copied; the two further arguments are reserved, always 0.
    /// @return 0 stored, 2 null name.   [any]
    virtual KXPCode SetProperty(const char* name, const char* value, std::uint32_t reserved1,
                                std::uint32_t reserved2) = 0;

    /// Reads a descriptor property. Not owned by the caller, valid until the property changes.
    /// @return the text, or null when there is none of that name.   [any]
    virtual const char* GetProperty(const char* name) = 0;

    /// Frees a text given by GetValueAsString of this object and clears the pointer. Null is ignored.   [any]
    virtual void ReleaseString(char** text) = 0;

    /// The host's number of this variable, 0 when it has none.   [any]
    virtual std::uint32_t GetInstanceID() = 0;

    /// The value as a whole number: the number, the index of an enumeration, 0 for text that is no number.   [any]
    virtual std::int32_t GetIntValue() = 0;

    /// Sets the value from a whole number. The two further arguments are reserved, always 0.   [any]
    virtual void SetIntValue(std::int32_t value, std::uint32_t reserved1, std::uint32_t reserved2) = 0;

    /// The value as a real number.   [any]
    virtual double GetRealValue() = 0;

    /// Sets the value from a real number. The two further arguments are reserved, always 0.   [any]
    virtual void SetRealValue(double value, std::uint32_t reserved1, std::uint32_t reserved2) = 0;

    /// The value as text, whatever its type.
    /// @return a text that the caller owns and gives back through ReleaseString of this object; may be null.   [any]
    virtual char* GetValueAsString() = 0;

    /// Sets the value from text, whatever its type. The text is copied; the two further arguments are
    /// reserved, always 0. [any]
    virtual void SetValueFromString(const char* text, std::uint32_t reserved1, std::uint32_t reserved2) = 0;

    /// The type code, see KXPDataType.   [any]
    virtual std::uint32_t GetDataType() = 0;

protected:
    ~IData() = default;
};

/// A whole number of 32 bits within bounds.
class IIntegerData : public IData {
public:
    /// Upper bound, inclusive.   [any]
    virtual std::int32_t GetMaxValue() = 0;
    /// Lower bound, inclusive.   [any]
    virtual std::int32_t GetMinValue() = 0;

protected:
    ~IIntegerData() = default;
};

/// A text.
class IStringData : public IData {
public:
    /// Maximum length in characters, -1 for no limit. Stands where the numbers have their upper bound.   [any]
    virtual std::int32_t GetMaxLength() = 0;

protected:
    ~IStringData() = default;
};

/// A real number within bounds.
class IRealData : public IData {
public:
    /// Upper bound, inclusive.   [any]
    virtual double GetMaxValue() = 0;
    /// Lower bound, inclusive.   [any]
    virtual double GetMinValue() = 0;
    /// Count of decimals in the text form.   [any]
    virtual std::int32_t GetPrecision() = 0;

protected:
    ~IRealData() = default;
};

/// A position in time.
class ITimeData : public IData {
public:
    /// The frame format of the time: one of the six time-code types, 4 for hundredths of a second.   [any]
    virtual std::int32_t GetTimeCodeType() = 0;
    virtual KXPCode Reserved2() = 0;
    virtual KXPCode Reserved3() = 0;
    /// The position as a count of frames of its time-code type. The value that a track command hands on.   [any]
    virtual std::int32_t GetFrameCount() = 0;

protected:
    ~ITimeData() = default;
};

/// A calendar date. It has no operations beyond IData's.
class IDateData : public IData {
protected:
    ~IDateData() = default;
};

/// One of a list of items. The whole-number value is the index of the current item, from 0.
class IEnumData : public IData {
public:
    /// Selects the item of that index; an index outside the list is ignored. The further arguments are
    /// reserved, always 0. [any]
    virtual void SetCurrent(std::int32_t index, std::uint32_t reserved1, std::uint32_t reserved2) = 0;
    /// Appends an item. The text is copied.   [any]
    virtual void AddItem(const char* text) = 0;
    /// Removes all items. The arguments are reserved, always 0.   [any]
    virtual void ClearItems(std::uint32_t reserved1, std::uint32_t reserved2) = 0;

protected:
    ~IEnumData() = default;
};
