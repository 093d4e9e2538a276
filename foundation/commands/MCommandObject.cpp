#include "MCommandObject.h"

#include <algorithm>
#include <limits>

namespace {

constexpr std::int32_t kCapacityStep = 8;
constexpr std::int32_t kMostReserved = 4096; // what lies beyond is allocated when it is used

std::int32_t RoundedUp(std::int32_t count) {
    constexpr std::int32_t kLast = std::numeric_limits<std::int32_t>::max() / kCapacityStep * kCapacityStep;
    return count > kLast ? kLast : (count + kCapacityStep - 1) / kCapacityStep * kCapacityStep;
}

} // namespace

MCommandObject::MCommandObject(void* owner, std::int32_t id, std::int32_t subId, ICommandObjectHandler* handler,
                               void* userData) {
    Reset(owner, id, subId, nullptr, kDefaultCapacity, handler, userData);
    if (m_handler != nullptr)
        m_handler->OnCommandCreated(m_userData);
}

MCommandObject::MCommandObject(const MCommandObject& other) {
    CopyFrom(other);
}

MCommandObject::~MCommandObject() {
    if (m_handler != nullptr)
        m_handler->OnCommandDestroyed(m_userData);
}

MCommandObject& MCommandObject::operator=(const MCommandObject& other) {
    if (this != &other)
        CopyFrom(other);
    return *this;
}

bool MCommandObject::operator==(const MCommandObject& other) const {
    return this == &other;
}

void MCommandObject::CopyFrom(const MCommandObject& other) {
    Reset(other.m_owner, other.m_id, other.m_subId, other.m_name.c_str(), other.m_capacity, nullptr, nullptr);
    for (const auto& param : other.m_params) {
        if (auto copy = CloneParam(param.get()))
            m_params.push_back(std::move(copy));
    }
    m_capacity = std::max(m_capacity, RoundedUp(static_cast<std::int32_t>(m_params.size())));
}

void MCommandObject::Init(void* owner, std::int32_t id, std::int32_t subId, const char* name, std::int32_t capacity,
                          ICommandObjectHandler* handler, void* userData) {
    Reset(owner, id, subId, name, capacity, handler, userData);
}

void MCommandObject::Reset(void* owner, std::int32_t id, std::int32_t subId, const char* name, std::int32_t capacity,
                           ICommandObjectHandler* handler, void* userData) {
    m_params.clear();
    m_owner = owner;
    m_id = id;
    m_subId = subId;
    m_name = name != nullptr ? std::string(name) : std::string(); // a copy first: name may be this command's own
    m_handler = handler;
    m_userData = userData;
    m_timeoutMs = 0;
    m_retries = 0;
    m_capacity = std::max(capacity, 0);
    m_params.reserve(static_cast<std::size_t>(std::min(m_capacity, kMostReserved)));
}

void MCommandObject::ReserveParams(std::int32_t count) {
    if (count <= m_capacity)
        return;
    m_capacity = RoundedUp(count);
    m_params.reserve(static_cast<std::size_t>(std::min(m_capacity, kMostReserved)));
}

void MCommandObject::Clear() {
    m_params.clear();
    m_params.shrink_to_fit();
    m_capacity = 0;
    m_name.clear();
}

std::int32_t MCommandObject::AddParamCopy(const MCommandObjectParam* param) {
    return AddParam(CloneParam(param).release());
}

std::int32_t MCommandObject::AddParam(MCommandObjectParam* param) {
    if (param == nullptr)
        return -1;
    std::unique_ptr<MCommandObjectParam> owned(param);
    ReserveParams(GetParamCount() + 2);
    m_params.push_back(std::move(owned));
    return GetParamCount() - 1;
}

MCommandObjectParam* MCommandObject::GetParam(std::int32_t index) const {
    return index >= 0 && index < GetParamCount() ? m_params[static_cast<std::size_t>(index)].get() : nullptr;
}

void MCommandObject::SetName(const char* name) {
    m_name = name != nullptr ? std::string(name) : std::string();
}
const char* MCommandObject::GetName() const {
    return m_name.c_str();
}
void* MCommandObject::GetOwner() const {
    return m_owner;
}
std::int32_t MCommandObject::GetId() const {
    return m_id;
}
std::int32_t MCommandObject::GetSubId() const {
    return m_subId;
}
std::uint32_t MCommandObject::GetTimeout() const {
    return m_timeoutMs;
}
void MCommandObject::SetTimeout(std::uint32_t milliseconds) {
    m_timeoutMs = milliseconds;
}
std::int32_t MCommandObject::IncrementRetries() {
    return ++m_retries;
}
std::int32_t MCommandObject::GetParamCount() const {
    return static_cast<std::int32_t>(m_params.size());
}

std::int32_t MCommandObject::AddVoidParam(void* pointer, std::uint32_t size, const char* name) {
    return AddParam(new MCommandObjectVoidParam(pointer, size, name));
}

std::int32_t MCommandObject::AddBYTEBufferParam(const void* data, std::uint32_t size, const char* name) {
    return AddParam(new MCommandObjectBYTEBufferParam(data, size, name));
}

std::int32_t MCommandObject::AddCharBufferParam(const char* text, const char* name) {
    return AddParam(new MCommandObjectCharBufferParam(text, name));
}

std::int32_t MCommandObject::AddFloatParam(double value, const char* name) {
    return AddParam(new MCommandObjectFloatParam(value, name));
}

std::int32_t MCommandObject::AddDWORDParam(std::uint32_t value, const char* name) {
    return AddParam(new MCommandObjectDWORDParam(value, name));
}

std::int32_t MCommandObject::AddWORDParam(std::uint16_t value, const char* name) {
    return AddParam(new MCommandObjectWORDParam(value, name));
}

std::int32_t MCommandObject::AddIntParam(std::int32_t value, const char* name) {
    return AddParam(new MCommandObjectIntParam(value, name));
}

std::int32_t MCommandObject::AddCharParam(std::int8_t value, const char* name) {
    return AddParam(new MCommandObjectCharParam(value, name));
}

std::int32_t MCommandObject::AddBYTEParam(std::uint8_t value, const char* name) {
    return AddParam(new MCommandObjectBYTEParam(value, name));
}

std::int32_t MCommandObject::GetParamType(std::int32_t index) const {
    const MCommandObjectParam* param = GetParam(index);
    return param != nullptr ? param->GetType() : static_cast<std::int32_t>(ParamType::None);
}

void* MCommandObject::GetParamData(std::int32_t index) const {
    const MCommandObjectParam* param = GetParam(index);
    return param != nullptr ? param->GetData() : nullptr;
}

std::uint32_t MCommandObject::GetParamSize(std::int32_t index) const {
    const MCommandObjectParam* param = GetParam(index);
    return param != nullptr ? param->GetSize() : 0;
}

void* MCommandObject::GetParamRaw(std::int32_t index, std::uint32_t* outSize, std::int32_t* outType) const {
    if (outSize != nullptr)
        *outSize = GetParamSize(index);
    if (outType != nullptr)
        *outType = GetParamType(index);
    return GetParamData(index);
}

const MCommandObjectParam* MCommandObject::Typed(std::int32_t index, ParamType type) const {
    const MCommandObjectParam* param = GetParam(index);
    return param != nullptr && param->GetType() == static_cast<std::int32_t>(type) ? param : nullptr;
}

template <class Param>
typename Param::Value MCommandObject::Scalar(std::int32_t index) const {
    const MCommandObjectParam* param = Typed(index, Param::kTypeCode);
    const auto* value = param ? static_cast<const typename Param::Value*>(param->GetData()) : nullptr;
    return value ? *value : typename Param::Value{};
}

std::uint8_t MCommandObject::GetBYTEParam(std::int32_t index) const {
    return Scalar<MCommandObjectBYTEParam>(index);
}
std::int8_t MCommandObject::GetCharParam(std::int32_t index) const {
    return Scalar<MCommandObjectCharParam>(index);
}
std::int32_t MCommandObject::GetIntParam(std::int32_t index) const {
    return Scalar<MCommandObjectIntParam>(index);
}
std::uint16_t MCommandObject::GetWORDParam(std::int32_t index) const {
    return Scalar<MCommandObjectWORDParam>(index);
}
std::uint32_t MCommandObject::GetDWORDParam(std::int32_t index) const {
    return Scalar<MCommandObjectDWORDParam>(index);
}
double MCommandObject::GetFloatParam(std::int32_t index) const {
    return Scalar<MCommandObjectFloatParam>(index);
}

const char* MCommandObject::GetCharBufferParam(std::int32_t index) const {
    return static_cast<const char*>(Pointer(index, ParamType::CharBuffer, nullptr));
}

void* MCommandObject::GetBYTEBufferParam(std::int32_t index, std::uint32_t* outSize) const {
    return Pointer(index, ParamType::ByteBuffer, outSize);
}

void* MCommandObject::GetVoidParam(std::int32_t index, std::uint32_t* outSize) const {
    return Pointer(index, ParamType::Void, outSize);
}

void* MCommandObject::Pointer(std::int32_t index, ParamType type, std::uint32_t* outSize) const {
    const MCommandObjectParam* param = Typed(index, type);
    if (outSize != nullptr)
        *outSize = param != nullptr ? param->GetSize() : 0;
    return param != nullptr ? param->GetData() : nullptr;
}
