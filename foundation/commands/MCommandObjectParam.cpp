#include "MCommandObjectParam.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

static_assert(sizeof(double) == 8, "a Float parameter is eight bytes");

void MCommandObjectParam::CopyHook(const MCommandObjectParam& /*other*/) {}

MCommandObjectParamBase::MCommandObjectParamBase(ParamType type, std::uint32_t size, const char* name)
    : m_type(type)
    , m_size(size) {
    if (name != nullptr)
        m_name = name;
}

void MCommandObjectParamBase::CopyFrom(const MCommandObjectParamBase& other) {
    if (this == &other)
        return;
    CopyHook(other);
    m_type = other.m_type;
    m_size = other.m_size;
    m_name = other.m_name;
}

MCommandObjectCharBufferParam::MCommandObjectCharBufferParam(const char* text, const char* name)
    : MCommandObjectParamBase(ParamType::CharBuffer, 0, name) {
    Store(text);
}

MCommandObjectCharBufferParam::MCommandObjectCharBufferParam(const MCommandObjectCharBufferParam& other)
    : MCommandObjectCharBufferParam(other.m_text.get(), other.GetName()) {}

MCommandObjectCharBufferParam& MCommandObjectCharBufferParam::operator=(const MCommandObjectCharBufferParam& other) {
    if (this != &other) {
        CopyFrom(other);
        Store(other.m_text.get());
    }
    return *this;
}

void MCommandObjectCharBufferParam::Store(const char* text) {
    const std::size_t size = text != nullptr ? std::strlen(text) + 1 : 0;
    m_text.reset(text != nullptr ? new char[size] : nullptr);
    if (text != nullptr)
        std::memcpy(m_text.get(), text, size);
    SetData(m_text.get());
    SetSize(static_cast<std::uint32_t>(size));
}

MCommandObjectBYTEBufferParam::MCommandObjectBYTEBufferParam(const void* data, std::uint32_t size, const char* name)
    : MCommandObjectParamBase(ParamType::ByteBuffer, size, name) {
    Store(data, size, size);
}

MCommandObjectBYTEBufferParam::MCommandObjectBYTEBufferParam(const MCommandObjectBYTEBufferParam& other)
    : MCommandObjectParamBase(ParamType::ByteBuffer, other.GetSize(), other.GetName()) {
    const unsigned char* bytes = other.m_bytes.get();
    const auto* end = bytes != nullptr ? std::find(bytes, bytes + other.GetSize(), 0) : bytes;
    Store(bytes, static_cast<std::uint32_t>(end - bytes), other.GetSize());
}

MCommandObjectBYTEBufferParam& MCommandObjectBYTEBufferParam::operator=(const MCommandObjectBYTEBufferParam& other) {
    if (this != &other) {
        CopyFrom(other);
        Store(other.m_bytes.get(), other.GetSize(), other.GetSize());
    }
    return *this;
}

void MCommandObjectBYTEBufferParam::Store(const void* data, std::uint32_t copied, std::uint32_t size) {
    m_bytes.reset(data != nullptr ? new unsigned char[std::max<std::size_t>(size, 1)]() : nullptr);
    if (data != nullptr && copied > 0)
        std::memcpy(m_bytes.get(), data, copied);
    SetData(m_bytes.get());
    SetSize(data != nullptr ? size : 0);
}

MCommandObjectVoidParam::MCommandObjectVoidParam(void* pointer, std::uint32_t size, const char* name)
    : MCommandObjectParamBase(ParamType::Void, size, name) {
    SetData(pointer);
}

MCommandObjectVoidParam::MCommandObjectVoidParam(const MCommandObjectVoidParam& other)
    : MCommandObjectVoidParam(other.GetData(), other.GetSize(), other.GetName()) {}

MCommandObjectVoidParam& MCommandObjectVoidParam::operator=(const MCommandObjectVoidParam& other) {
    CopyFrom(other);
    SetData(other.GetData());
    return *this;
}

namespace {

using Clone = std::unique_ptr<MCommandObjectParam> (*)(const MCommandObjectParam&);

template <class Param>
std::unique_ptr<MCommandObjectParam> CloneAs(const MCommandObjectParam& param) {
    const auto* source = dynamic_cast<const Param*>(&param);
    return source ? std::make_unique<Param>(*source) : nullptr;
}

// The type code less one is the index.
constexpr std::array<Clone, 9> kClones = {
    &CloneAs<MCommandObjectBYTEParam>,       &CloneAs<MCommandObjectCharParam>,
    &CloneAs<MCommandObjectIntParam>,        &CloneAs<MCommandObjectWORDParam>,
    &CloneAs<MCommandObjectDWORDParam>,      &CloneAs<MCommandObjectFloatParam>,
    &CloneAs<MCommandObjectCharBufferParam>, &CloneAs<MCommandObjectBYTEBufferParam>,
    &CloneAs<MCommandObjectVoidParam>,
};
static_assert(kClones.size() == static_cast<std::size_t>(ParamType::Void));

} // namespace

std::unique_ptr<MCommandObjectParam> CloneParam(const MCommandObjectParam* param) {
    if (param == nullptr || param->GetType() < 1 || param->GetType() > static_cast<std::int32_t>(kClones.size()))
        return nullptr;
    return kClones[static_cast<std::size_t>(param->GetType()) - 1](*param);
}
