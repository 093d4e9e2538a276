#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

/// The type codes of parameters.
enum class ParamType : std::int32_t {
    None = 0, ///< no parameter
    Byte = 1,
    Char,
    Int,
    Word,
    Dword,
    Float, ///< a double of 8 bytes, in spite of its name
    CharBuffer,
    ByteBuffer,
    Void,
};

/// One parameter of a command, as its readers see it. What is returned is borrowed from the parameter.
class MCommandObjectParam {
public:
    virtual ~MCommandObjectParam() = default;
    virtual std::int32_t GetType() const = 0;  ///< a ParamType
    virtual void* GetData() const = 0;         ///< the payload; may be null
    virtual std::uint32_t GetSize() const = 0; ///< of the payload, in bytes
    virtual const char* GetName() const = 0;   ///< null when it has none

protected:
    /// Called before other is copied into this one. Does nothing here.
    virtual void CopyHook(const MCommandObjectParam& other);
};

/// What all parameters have: type, place of the payload, size and name. Whoever derives owns the payload.
class MCommandObjectParamBase : public MCommandObjectParam {
public:
    std::int32_t GetType() const override { return static_cast<std::int32_t>(m_type); }
    void* GetData() const override { return m_data; }
    std::uint32_t GetSize() const override { return m_size; }
    const char* GetName() const override { return m_name ? m_name->c_str() : nullptr; }

    /// Takes over type, size and name of other, after CopyHook; not the payload. Nothing happens for the object itself.
    virtual void CopyFrom(const MCommandObjectParamBase& other);

    MCommandObjectParamBase(const MCommandObjectParamBase&) = delete;
    MCommandObjectParamBase& operator=(const MCommandObjectParamBase&) = delete;

protected:
    MCommandObjectParamBase(ParamType type, std::uint32_t size, const char* name);

    void SetData(void* data) { m_data = data; }
    void SetSize(std::uint32_t size) { m_size = size; }

private:
    ParamType m_type;
    void* m_data = nullptr;
    std::uint32_t m_size;
    std::optional<std::string> m_name;
};

/// A parameter that holds one number of type T.
template <class T, ParamType kType>
class MCommandObjectScalarParam : public MCommandObjectParamBase {
public:
    using Value = T;
    static constexpr ParamType kTypeCode = kType;

    explicit MCommandObjectScalarParam(T value, const char* name = nullptr)
        : MCommandObjectParamBase(kType, sizeof(T), name)
        , m_value(value) {
        SetData(&m_value);
    }
    MCommandObjectScalarParam(const MCommandObjectScalarParam& other)
        : MCommandObjectScalarParam(other.m_value, other.GetName()) {}
    virtual MCommandObjectScalarParam& operator=(const MCommandObjectScalarParam& other) {
        CopyFrom(other);
        m_value = other.m_value;
        return *this;
    }

private:
    T m_value;
};

using MCommandObjectBYTEParam = MCommandObjectScalarParam<std::uint8_t, ParamType::Byte>;
using MCommandObjectCharParam = MCommandObjectScalarParam<std::int8_t, ParamType::Char>;
using MCommandObjectIntParam = MCommandObjectScalarParam<std::int32_t, ParamType::Int>;
using MCommandObjectWORDParam = MCommandObjectScalarParam<std::uint16_t, ParamType::Word>;
using MCommandObjectDWORDParam = MCommandObjectScalarParam<std::uint32_t, ParamType::Dword>;
using MCommandObjectFloatParam = MCommandObjectScalarParam<double, ParamType::Float>;

/// A text, copied. The size counts the terminator; a null text has no data and size 0.
class MCommandObjectCharBufferParam : public MCommandObjectParamBase {
public:
    explicit MCommandObjectCharBufferParam(const char* text, const char* name = nullptr);
    MCommandObjectCharBufferParam(const MCommandObjectCharBufferParam& other);
    virtual MCommandObjectCharBufferParam& operator=(const MCommandObjectCharBufferParam& other);

private:
    void Store(const char* text);
    std::unique_ptr<char[]> m_text;
};

/// Raw bytes, copied. Without data the size is 0.
///
/// A copy-constructed parameter has the bytes up to the first zero byte alone,
/// with zero bytes behind them up to the same size; assignment copies every byte.
/// Command scripts depend on neither, so the difference stands as it always was.
class MCommandObjectBYTEBufferParam : public MCommandObjectParamBase {
public:
    MCommandObjectBYTEBufferParam(const void* data, std::uint32_t size, const char* name = nullptr);
    MCommandObjectBYTEBufferParam(const MCommandObjectBYTEBufferParam& other);
    virtual MCommandObjectBYTEBufferParam& operator=(const MCommandObjectBYTEBufferParam& other);

private:
    void Store(const void* data, std::uint32_t copied, std::uint32_t size);
    std::unique_ptr<unsigned char[]> m_bytes;
};

/// A pointer that somebody else owns, with a size that the parameter only reports. Copies point to the same place.
class MCommandObjectVoidParam : public MCommandObjectParamBase {
public:
    MCommandObjectVoidParam(void* pointer, std::uint32_t size, const char* name = nullptr);
    MCommandObjectVoidParam(const MCommandObjectVoidParam& other);
    virtual MCommandObjectVoidParam& operator=(const MCommandObjectVoidParam& other);
};

/// A copy of a parameter, made by the copy constructor of the class that its type code names. Null for a null parameter
/// and for one whose class is not of the family.
std::unique_ptr<MCommandObjectParam> CloneParam(const MCommandObjectParam* param);
