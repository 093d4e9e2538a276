#include "ValueCheck.h"

#include <algorithm>

#include "BorderText.h"
#include "JsonNode.h"
#include "LevelsText.h"
#include "PlainNumbers.h"
#include "ValueFactory.h"
#include "WholeNumber.h"

namespace stagehost {

namespace {

constexpr const char* kStates[] = {"Open", "Closed"};

template <typename Named>
const Named* FindNamed(const std::vector<Named>& all, const std::string& name) {
    const auto found = std::find_if(all.begin(), all.end(), [&](const Named& one) { return one.name == name; });
    return found == all.end() ? nullptr : &*found;
}

QString NotTaken(const std::string& value) {
    return QStringLiteral("does not take ") + Quoted(FromBorderText(value));
}

QString Outside(const ChannelPlan& channel, const QString& value) {
    return QStringLiteral("takes %1 to %2, not %3").arg(channel.minimum).arg(channel.maximum).arg(value);
}

bool IsWithin(const ChannelPlan& channel, std::int32_t value) {
    return value >= channel.minimum && value <= channel.maximum;
}

QString WhyNotOfChannel(const ChannelPlan& channel, const std::string& value) {
    const auto number = ParseWholeNumber(value);
    if (!number)
        return NotTaken(value);
    return IsWithin(channel, *number) ? QString() : Outside(channel, FromBorderText(value));
}

QString WhyNotOfUniverse(const std::string& levels) {
    DmxFrame frame;
    return ReadLevels(levels, frame) ? QString() : NotTaken(levels);
}

QString WhyVariableNeverIs(const ValueSpec& spec, const std::string& value) {
    const auto own = MakeValue(spec);
    if (!own->SetText(value))
        return QStringLiteral("never is ") + Quoted(FromBorderText(value));
    const auto number = ParseNumber(value);
    const bool isNumber = spec.type == KXP_INTEGER_DATA || spec.type == KXP_REAL_DATA || spec.type == KXP_ENUM_DATA;
    const bool isClock = spec.type == KXP_TIME_DATA || spec.type == KXP_DATE_DATA; // written in several ways
    if (own->Text() == value || isClock || (isNumber && number && own->Real() == *number))
        return {};
    return QStringLiteral("never is %1, but %2")
        .arg(Quoted(FromBorderText(value)), Quoted(FromBorderText(own->Text())));
}

} // namespace

QString ValueCheck::WhyNotSet(const QString& name, const std::string& value) const {
    if (const ValueSpec* variable = FindVariable(name))
        return MakeValue(*variable)->SetText(value) ? QString() : NotTaken(value);
    if (const ChannelPlan* channel = FindChannel(name))
        return WhyNotOfChannel(*channel, value);
    const ResourceSpec* resource = FindResource(name);
    if (resource == nullptr)
        return {};
    return std::holds_alternative<DmxInPlan>(resource->plan) ? WhyNotOfUniverse(value)
                                                             : QStringLiteral("has nothing that can be set");
}

QString ValueCheck::WhyNotRamped(const QString& name, std::int32_t to) const {
    const ChannelPlan* channel = FindChannel(name);
    return channel == nullptr || IsWithin(*channel, to) ? QString() : Outside(*channel, QString::number(to));
}

QString ValueCheck::WhyNeverIs(const QString& name, const std::string& value) const {
    if (const ValueSpec* variable = FindVariable(name))
        return WhyVariableNeverIs(*variable, value);
    if (const ChannelPlan* channel = FindChannel(name))
        return WhyNotOfChannel(*channel, value);
    if (FindResource(name) == nullptr || value == kStates[0] || value == kStates[1])
        return {};
    return QStringLiteral("is %1 or %2, never %3")
        .arg(Quoted(QLatin1String(kStates[0])), Quoted(QLatin1String(kStates[1])), Quoted(FromBorderText(value)));
}

QString ValueCheck::WhyNeverHolds(const Condition& condition) const {
    if (condition.comparison == Comparison::Is || condition.comparison == Comparison::IsNot)
        return WhyNeverIs(condition.name, ToBorderText(condition.value));
    return {};
}

const ValueSpec* ValueCheck::FindVariable(const QString& name) const {
    return FindNamed(m_show.variables, ToBorderText(name));
}

const ResourceSpec* ValueCheck::FindResource(const QString& name) const {
    return FindNamed(m_show.resources, ToBorderText(name));
}

const ChannelPlan* ValueCheck::FindChannel(const QString& name) const {
    const ResourceSpec* resource = FindResource(name.section(QLatin1Char('.'), 0, 0));
    const auto* channels = resource == nullptr ? nullptr : std::get_if<ChannelsPlan>(&resource->plan);
    if (channels == nullptr || !name.contains(QLatin1Char('.')))
        return nullptr;
    const std::string own = ToBorderText(name.section(QLatin1Char('.'), 1));
    for (const auto& ofOneType : *channels) {
        if (const ChannelPlan* channel = FindNamed(ofOneType, own))
            return channel;
    }
    return nullptr;
}

} // namespace stagehost
