#include "JsonNode.h"

#include <algorithm>
#include <cmath>

#include <QJsonArray>
#include <QJsonObject>
#include <QLocale>

#include "BorderText.h"

namespace stagehost {

QString Quoted(const QString& text) {
    return QLatin1Char('"') + text + QLatin1Char('"');
}

JsonNode::JsonNode(QJsonValue value, QString path, QStringList& complaints)
    : value_(std::move(value))
    , path_(std::move(path))
    , complaints_(complaints) {}

QString JsonNode::Text() const {
    Expect(IsMissing() || value_.isString(), QStringLiteral("expected text"));
    return value_.toString();
}

QString JsonNode::TextOr(const QString& missing) const {
    return IsMissing() ? missing : Text();
}

std::optional<double> JsonNode::Number() const {
    if (IsMissing() || !Expect(value_.isDouble(), QStringLiteral("expected a number")))
        return std::nullopt;
    return value_.toDouble();
}

std::optional<int> JsonNode::Whole(int lowest, int highest) const {
    if (IsMissing())
        return std::nullopt;
    const double number = value_.toDouble(std::nan(""));
    const bool right = number == std::trunc(number) && number >= lowest && number <= highest;
    if (!Expect(right, QStringLiteral("expected a whole number from %1 to %2").arg(lowest).arg(highest)))
        return std::nullopt;
    return static_cast<int>(number);
}

QString JsonNode::Scalar() const {
    if (value_.isDouble())
        return NumberText(value_.toDouble());
    if (value_.isBool())
        return value_.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    Expect(IsMissing() || value_.isString(), QStringLiteral("expected text or a number"));
    return value_.toString();
}

JsonNode JsonNode::Member(const QString& name) const {
    return {value_.toObject().value(name), path_.isEmpty() ? name : path_ + QLatin1Char('.') + name, complaints_};
}

QStringList JsonNode::MemberNames() const {
    return value_.toObject().keys();
}

void JsonNode::ForEach(const std::function<void(const JsonNode&)>& call) const {
    if (!Expect(IsMissing() || value_.isArray(), QStringLiteral("expected a list")))
        return;
    for (const JsonNode& item : Items())
        call(item);
}

std::vector<JsonNode> JsonNode::Items() const {
    std::vector<JsonNode> nodes;
    const QJsonArray items = value_.toArray();
    nodes.reserve(static_cast<std::size_t>(items.size()));
    for (int index = 0; index < items.size(); ++index)
        nodes.emplace_back(items.at(index), QStringLiteral("%1[%2]").arg(path_).arg(index), complaints_);
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

bool JsonNode::ExpectObject(std::initializer_list<const char*> names) const {
    if (!ExpectObjectOfAny())
        return false;
    for (const QString& name : MemberNames()) {
        const bool known =
            std::any_of(names.begin(), names.end(), [&](const char* other) { return name == QLatin1String(other); });
        if (!known)
            Member(name).Complain(QStringLiteral("unknown key"));
    }
    return true;
}

void JsonNode::Complain(const QString& what) const {
    complaints_ += path_.isEmpty() ? what : path_ + QStringLiteral(": ") + what;
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
