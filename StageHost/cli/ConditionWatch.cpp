#include "ConditionWatch.h"

#include <algorithm>

#include <QRegularExpression>

#include "BorderText.h"
#include "EnumValue.h"
#include "IData.h"
#include "JsonNode.h"
#include "MainWait.h"
#include "PlainNumbers.h"
#include "ValueFactory.h"

namespace stagehost {

namespace {

constexpr int kLookAgainMs = 50;

/// An empty value of the same type, to read texts with.
std::unique_ptr<HostValue> ScratchLike(HostValue& variable) {
    ValueSpec spec;
    spec.type = variable.Type();
    if (auto* time = QueryFace<ITimeData>(variable.Face(), "ITimeData"))
        spec.timeCodeType = time->GetTimeCodeType();
    return MakeValue(spec);
}

bool HasOrder(Comparison comparison) {
    return comparison != Comparison::Is && comparison != Comparison::IsNot && comparison != Comparison::Matches;
}

} // namespace

ConditionWatch::ConditionWatch(Host& host, Condition condition)
    : m_condition(std::move(condition)) {
    m_problem = WhyNoCondition(m_condition);
    if (m_problem.isEmpty())
        Find(host);
    const bool isOrdered = m_text && HasOrder(m_condition.comparison);
    if (isOrdered && !NumberOf(ToBorderText(m_condition.value)))
        m_problem =
            QStringLiteral("%1: only numbers, times, dates and items have an order, and %2 is none of them here")
                .arg(m_condition.Text(), Quoted(m_condition.value));
}

void ConditionWatch::Find(Host& host) {
    const std::string name = ToBorderText(m_condition.name);
    m_wakes = host.Model().Feed().Subscribe([](const ShowChange&) { MainWait::Wake(); });
    if (const auto first = host.Variables().Find(name)) {
        m_variable = [&host, name, first] {
            const auto now = host.Variables().Find(name);
            return now ? now : first;
        };
        m_text = [this] { return m_variable()->Text(); };
        return;
    }
    if (const auto resource = host.Model().FindResource(name))
        m_text = [resource] { return resource->Standing(); };
    else
        FindProperty(host);
}

/// "Overture.Status": the name up to the last point is the object's.
void ConditionWatch::FindProperty(Host& host) {
    const int point = m_condition.name.lastIndexOf(QLatin1Char('.'));
    const auto object = point < 0 ? nullptr : host.Model().FindAny(ToBorderText(m_condition.name.left(point)));
    const std::string property = ToBorderText(m_condition.name.mid(point + 1));
    if (!object)
        return;
    if (!object->Property(property)) {
        QStringList names;
        for (const auto& known : object->Properties())
            names += FromBorderText(known.name);
        m_problem = QStringLiteral("%1 has no property \"%2\"; there are: %3")
                        .arg(m_condition.name.left(point), FromBorderText(property), names.join(QStringLiteral(", ")));
        return;
    }
    m_text = [object, property] { return object->Property(property).value_or(std::string()); };
    QObject::connect(&m_looks, &QTimer::timeout, &m_looks, [] { MainWait::Wake(); });
    m_looks.start(kLookAgainMs);
}

QString ConditionWatch::Now() const {
    return FromBorderText(Text());
}

bool ConditionWatch::Holds() const {
    const std::string now = Text();
    if (m_condition.comparison == Comparison::Matches)
        return QRegularExpression(m_condition.value).match(FromBorderText(now)).hasMatch();
    const std::optional<int> order = Order(now);
    const bool isSame = order ? *order == 0 : now == ToBorderText(m_condition.value);
    switch (m_condition.comparison) {
    case Comparison::Is:
        return isSame;
    case Comparison::IsNot:
        return !isSame;
    case Comparison::Below:
        return order && *order < 0;
    case Comparison::AtMost:
        return order && *order <= 0;
    case Comparison::Above:
        return order && *order > 0;
    case Comparison::AtLeast:
        return order && *order >= 0;
    case Comparison::Matches:
        break;
    }
    return false;
}

std::optional<int> ConditionWatch::Order(const std::string& now) const {
    const auto left = NumberOf(now);
    const auto right = NumberOf(ToBorderText(m_condition.value));
    // A text is the same only by the letter; whether it is a number counts for its order alone.
    const auto variable = m_variable();
    const bool isText = variable && variable->Type() == KXP_STRING_DATA && !HasOrder(m_condition.comparison);
    if (!left || !right || isText)
        return std::nullopt;
    return *left < *right ? -1 : (*left > *right ? 1 : 0);
}

/// What a text stands for by the type: a number, the units of a time, the days of a date, the index of an item.
std::optional<double> ConditionWatch::NumberOf(const std::string& text) const {
    const auto variable = m_variable();
    const std::uint32_t type = variable ? variable->Type() : std::uint32_t{KXP_STRING_DATA};
    if (type == KXP_TIME_DATA || type == KXP_DATE_DATA) {
        const auto scratch = ScratchLike(*variable);
        return scratch->SetText(text) ? std::optional<double>(scratch->Int()) : std::nullopt;
    }
    if (const auto* list = dynamic_cast<const EnumValue*>(variable.get())) {
        const std::vector<std::string> items = list->Items();
        const auto item = std::find(items.begin(), items.end(), text);
        if (item != items.end())
            return static_cast<double>(item - items.begin());
    }
    return ParseNumber(text);
}

} // namespace stagehost
