#include "SettingRule.h"

#include <cmath>

#include <QStringList>

#include "BorderText.h"
#include "DataTypes.h"
#include "PlainNumbers.h"
#include "ValueFactory.h"
#include "XmlElement.h"

namespace stagehost {

namespace {

constexpr int kCheckBox = 8; // the number of the field in `Widget`

struct TypeWord {
    std::uint32_t type;
    const char* word;
};

constexpr TypeWord kTypeWords[] = {{KXP_INTEGER_DATA, "a whole number"},
                                   {KXP_REAL_DATA, "a number"},
                                   {KXP_TIME_DATA, "a time, HH:MM:SS/FF"},
                                   {KXP_DATE_DATA, "a date, DD/MM/YYYY"}};

QString TypeWordOf(std::uint32_t type) {
    for (const auto& row : kTypeWords) {
        if (row.type == type)
            return QLatin1String(row.word);
    }
    return QStringLiteral("a text");
}

std::optional<int> WholeOf(const XmlElement& setting, const char* attribute) {
    bool isNumber = false;
    const int number = setting.Attribute(attribute).toInt(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

ValueSpec SpecOf(const XmlElement& setting) {
    const DataType* type = FindDataTypeOfElement(setting.Attribute("Type").toStdString());
    ValueSpec spec;
    spec.type = type == nullptr ? KXP_STRING_DATA : type->code;
    spec.name = ToBorderText(setting.Attribute("Name"));
    spec.minimum = ParseNumber(ToBorderText(setting.Attribute("MinValue")));
    spec.maximum = ParseNumber(ToBorderText(setting.Attribute("MaxValue")));
    spec.maxLength = WholeOf(setting, "MaxLength").value_or(spec.maxLength);
    spec.timeCodeType = WholeOf(setting, "TimeCodeType").value_or(spec.timeCodeType);
    if (const XmlElement* strings = setting.Child("EnumStrings")) {
        for (const auto& item : strings->children)
            spec.items.push_back(ToBorderText(item.Attribute("Name")));
    }
    return spec;
}

QString LimitText(double limit) {
    return QString::number(limit, 'g', 15);
}

bool IsNumber(const ValueSpec& spec) {
    return spec.type == KXP_INTEGER_DATA || spec.type == KXP_REAL_DATA;
}

QString RangeWords(const ValueSpec& spec) {
    if (spec.minimum && spec.maximum)
        return QStringLiteral("%1 to %2").arg(LimitText(*spec.minimum), LimitText(*spec.maximum));
    if (spec.minimum)
        return QStringLiteral("%1 or more").arg(LimitText(*spec.minimum));
    return spec.maximum ? QStringLiteral("%1 or less").arg(LimitText(*spec.maximum)) : QString();
}

} // namespace

SettingRule::SettingRule(const XmlElement& setting)
    : m_spec(SpecOf(setting))
    , m_isCheckBox(WholeOf(setting, "Widget") == kCheckBox && m_spec.type == KXP_INTEGER_DATA) {}

QString SettingRule::ComplaintAbout(const QString& text) const {
    bool lost = false;
    const std::string value = ToBorderText(Plain(text), &lost);
    if (lost)
        return QStringLiteral("has characters beyond Latin-1, which a host cannot carry");
    QString complaint = FromBorderText(stagehost::ComplaintAbout(m_spec, value));
    if (complaint.startsWith(QLatin1String("does not take")))
        return QStringLiteral("takes %1, not \"%2\"").arg(Taken(), text);
    const double number = IsNumber(m_spec) ? ParseNumber(value).value_or(0) : 0;
    if (complaint.isEmpty() && m_spec.type == KXP_INTEGER_DATA && number != std::trunc(number))
        return QStringLiteral("takes whole numbers, not %1").arg(text);
    return complaint;
}

QString SettingRule::Stored(const QString& text) const {
    const QString plain = Plain(text);
    const auto value = MakeValue(m_spec);
    value->SetText(ToBorderText(plain));
    if (m_spec.type == KXP_ENUM_DATA || m_spec.type == KXP_INTEGER_DATA)
        return QString::number(value->Int());
    return m_spec.type == KXP_REAL_DATA ? plain.trimmed() : plain;
}

QString SettingRule::Shown(const QString& stored) const {
    if (m_spec.type != KXP_ENUM_DATA)
        return stored;
    const auto value = MakeValue(m_spec);
    value->SetInt(stored.toInt());
    return FromBorderText(value->Text());
}

QString SettingRule::Words() const {
    return QStringLiteral("%1 (%2)").arg(FromBorderText(m_spec.name), Taken());
}

QString SettingRule::Taken() const {
    if (m_isCheckBox)
        return QStringLiteral("true or false");
    if (m_spec.type == KXP_ENUM_DATA) {
        QStringList items;
        for (const auto& item : m_spec.items)
            items += FromBorderText(item);
        return items.join(QLatin1Char('|'));
    }
    const QString range = IsNumber(m_spec) ? RangeWords(m_spec) : QString();
    return range.isEmpty() ? TypeWordOf(m_spec.type) : range;
}

QString SettingRule::Plain(const QString& text) const {
    if (!m_isCheckBox || (text != QLatin1String("true") && text != QLatin1String("false")))
        return text;
    return text == QLatin1String("true") ? QStringLiteral("1") : QStringLiteral("0");
}

} // namespace stagehost
