#include "TypedValue.h"

#include <cstring>
#include <limits>

namespace {

/// One typed interface in front of a value.
template <typename Face>
class FaceOf : public Face {
public:
    explicit FaceOf(TypedValue& value)
        : m_value(value) {}
    virtual ~FaceOf() = default;
    KXPCode QueryInterface(const char* name, void** out) override { return m_value.QueryInterface(name, out); }
    KXPCode Release() override { return KXP_OK; }
    const char* GetName() override { return m_value.GetName(); }
    KXPCode SetProperty(const char* n, const char* v, std::uint32_t a, std::uint32_t b) override {
        return m_value.SetProperty(n, v, a, b);
    }
    const char* GetProperty(const char* n) override { return m_value.GetProperty(n); }
    void ReleaseString(char** t) override { m_value.ReleaseString(t); }
    std::uint32_t GetInstanceID() override { return m_value.GetInstanceID(); }
    std::int32_t GetIntValue() override { return m_value.GetIntValue(); }
    void SetIntValue(std::int32_t v, std::uint32_t a, std::uint32_t b) override { m_value.SetIntValue(v, a, b); }
    double GetRealValue() override { return m_value.GetRealValue(); }
    void SetRealValue(double v, std::uint32_t a, std::uint32_t b) override { m_value.SetRealValue(v, a, b); }
    char* GetValueAsString() override { return m_value.GetValueAsString(); }
    void SetValueFromString(const char* t, std::uint32_t a, std::uint32_t b) override {
        m_value.SetValueFromString(t, a, b);
    }
    std::uint32_t GetDataType() override { return m_value.GetDataType(); }

protected:
    TypedValue& m_value;
};

class IntegerFace : public FaceOf<IIntegerData> {
public:
    using FaceOf::FaceOf;
    std::int32_t GetMaxValue() override { return static_cast<std::int32_t>(m_value.maximum); }
    std::int32_t GetMinValue() override { return static_cast<std::int32_t>(m_value.minimum); }
};

class StringFace : public FaceOf<IStringData> {
public:
    using FaceOf::FaceOf;
    std::int32_t GetMaxLength() override { return m_value.maxLength; }
};

class RealFace : public FaceOf<IRealData> {
public:
    using FaceOf::FaceOf;
    double GetMaxValue() override { return m_value.maximum; }
    double GetMinValue() override { return m_value.minimum; }
    std::int32_t GetPrecision() override { return m_value.precision; }
};

class TimeFace : public FaceOf<ITimeData> {
public:
    using FaceOf::FaceOf;
    std::int32_t GetTimeCodeType() override { return m_value.timeCodeType; }
    KXPCode Reserved2() override { return KXP_OK; }
    KXPCode Reserved3() override { return KXP_OK; }
    std::int32_t GetFrameCount() override { return 0; }
};

class DateFace : public FaceOf<IDateData> {
public:
    using FaceOf::FaceOf;
};

class EnumFace : public FaceOf<IEnumData> {
public:
    using FaceOf::FaceOf;
    void SetCurrent(std::int32_t index, std::uint32_t a, std::uint32_t b) override { m_value.SetIntValue(index, a, b); }
    void AddItem(const char* text) override { m_value.items.emplace_back(text); }
    void ClearItems(std::uint32_t, std::uint32_t) override { m_value.items.clear(); }
};

} // namespace

struct TypedValue::Faces {
    explicit Faces(TypedValue& value)
        : integer(value)
        , text(value)
        , real(value)
        , time(value)
        , date(value)
        , enumeration(value) {}
    IntegerFace integer;
    StringFace text;
    RealFace real;
    TimeFace time;
    DateFace date;
    EnumFace enumeration;
};

TypedValue::TypedValue(const std::string& name, std::uint32_t type, const std::string& text)
    : plain::Value(name, type, text)
    , minimum(type == KXP_INTEGER_DATA ? std::numeric_limits<std::int32_t>::min() : -1.7e+308)
    , maximum(type == KXP_INTEGER_DATA ? std::numeric_limits<std::int32_t>::max() : 1.7e+308)
    , m_faces(std::make_unique<Faces>(*this)) {}

TypedValue::~TypedValue() = default;

KXPCode TypedValue::QueryInterface(const char* name, void** out) {
    if (name == nullptr || out == nullptr)
        return KXP_BAD_INTERFACE_ARG;
    const struct {
        std::uint32_t type;
        const char* name;
        void* face;
    } faces[] = {
        {KXP_INTEGER_DATA, "IIntegerData", static_cast<IIntegerData*>(&m_faces->integer)},
        {KXP_STRING_DATA, "IStringData", static_cast<IStringData*>(&m_faces->text)},
        {KXP_REAL_DATA, "IRealData", static_cast<IRealData*>(&m_faces->real)},
        {KXP_TIME_DATA, "ITimeData", static_cast<ITimeData*>(&m_faces->time)},
        {KXP_DATE_DATA, "IDateData", static_cast<IDateData*>(&m_faces->date)},
        {KXP_ENUM_DATA, "IEnumData", static_cast<IEnumData*>(&m_faces->enumeration)},
    };
    *out = nullptr;
    for (const auto& face : faces)
        if (face.type == GetDataType() && std::strcmp(face.name, name) == 0)
            *out = face.face;
    return *out != nullptr ? KXP_OK : KXPCode{KXP_NO_INTERFACE};
}
