#include "JsonNode.h"

#include <algorithm>
#include <cmath>

#include <QJsonArray>
#include <QJsonObject>
#include <QLocale>

#include "BorderText.h"
#include "NearNames.h"
#include "ShowKeys.h"

namespace stagehost {

QString Quoted(const QString& text) {
    return QLatin1Char('"') + text + QLatin1Char('"');
}

JsonNode::JsonNode(QJsonValue value, QString path, QStringList& complaints)
    : m_value(std::move(value))
    , m_path(std::move(path))
    , m_complaints(complaints) {}

QString JsonNode::Text() const {
    Expect(IsMissing() || m_value.isString(), QStringLiteral("expected text"));
    return TextWithoutNul();
}

QString JsonNode::TextWithoutNul() const {
    QString text = m_value.toString();
    Expect(!text.contains(QChar(QChar::Null)), QStringLiteral("has a NUL, which ends every text"));
    return text.remove(QChar(QChar::Null));
}

QString JsonNode::TextOr(const QString& missing) const {
    return IsMissing() ? missing : Text();
}

std::optional<double> JsonNode::Number() const {
    if (IsMissing() || !Expect(m_value.isDouble(), QStringLiteral("expected a number")))
        return std::nullopt;
    return m_value.toDouble();
}

std::optional<int> JsonNode::Whole(int lowest, int highest) const {
    if (IsMissing())
        return std::nullopt;
    const double number = m_value.toDouble(std::nan(""));
    const bool right = number == std::trunc(number) && number >= lowest && number <= highest;
    if (!Expect(right, QStringLiteral("expected a whole number from %1 to %2").arg(lowest).arg(highest)))
        return std::nullopt;
    return static_cast<int>(number);
}

QString JsonNode::Scalar() const {
    if (m_value.isDouble())
        return NumberText(m_value.toDouble());
    if (m_value.isBool())
        return m_value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    Expect(IsMissing() || m_value.isString(), QStringLiteral("expected text or a number"));
    return TextWithoutNul();
}

QJsonValue JsonNode::ScalarValue() const {
    const QString text = Scalar();
    return m_value.isString() ? QJsonValue(text) : m_value;
}

JsonNode JsonNode::Member(const QString& name) const {
    return {m_value.toObject().value(name), m_path.isEmpty() ? name : m_path + QLatin1Char('.') + name, m_complaints};
}

QStringList JsonNode::MemberNames() const {
    return m_value.toObject().keys();
}

void JsonNode::ForEach(const std::function<void(const JsonNode&)>& call) const {
    if (!Expect(IsMissing() || m_value.isArray(), QStringLiteral("expected a list")))
        return;
    for (const JsonNode& item : Items())
        call(item);
}

std::vector<JsonNode> JsonNode::Items() const {
    std::vector<JsonNode> nodes;
    const QJsonArray items = m_value.toArray();
    nodes.reserve(static_cast<std::size_t>(items.size()));
    for (int index = 0; index < items.size(); ++index)
        nodes.emplace_back(items.at(index), QStringLiteral("%1[%2]").arg(m_path).arg(index), m_complaints);
    return nodes;
}

std::string JsonNode::Border(const QString& text) const {
    bool lost = false;
    std::string border = ToBorderText(text, &lost);
    if (lost)
        Complain(QStringLiteral("has characters beyond Latin-1, which a host cannot carry"));
    return border;
}

bool JsonNode::ExpectObjectOfAny() const {
    return Expect(IsMissing() || IsObject(), QStringLiteral("expected an object"));
}

bool JsonNode::ExpectObject(const ShowKey* keys, std::size_t count) const {
    if (!ExpectObjectOfAny())
        return false;
    QStringList known;
    for (std::size_t place = 0; place < count; ++place)
        known += QLatin1String(keys[place].name);
    for (const QString& name : MemberNames()) {
        if (!known.contains(name))
            Member(name).Complain(QStringLiteral("unknown key") + NamesInstead(name, known));
    }
    return true;
}

void JsonNode::Complain(const QString& what) const {
    m_complaints += m_path.isEmpty() ? what : m_path + QStringLiteral(": ") + what;
}

void JsonNode::ComplainUnlessEmpty(const QString& what) const {
    if (!what.isEmpty())
        Complain(what);
}

bool JsonNode::Expect(bool right, const QString& what) const {
    if (!right)
        Complain(what);
    return right;
}

QString NumberText(double number) {
    constexpr double kExact = 9007199254740992.0; // 2^53
    const bool whole = number == std::trunc(number) && std::abs(number) < kExact;
    return whole ? QString::number(static_cast<qlonglong>(number))
                 : QString::number(number, 'g', QLocale::FloatingPointShortest);
}

} // namespace stagehost
