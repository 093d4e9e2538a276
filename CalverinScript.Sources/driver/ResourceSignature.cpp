#include "ResourceSignature.h"

#include <QScriptEngine>

#include "DriverTables.h"

namespace {

struct ResourceKind {
    std::int32_t family;
    std::int32_t subtype;
    std::int32_t channelType;
};
constexpr ResourceKind kResourceKinds[] = {
    {1, 3, -1}, // Serial
    {2, 1, -1}, // DMXIn
    {2, 2, -1}, // DMXOut
    {5, 3, 1},  // DigitalIn
    {5, 3, 0},  // DigitalOut
    {5, 3, 3},  // AnalogIn
    {5, 3, 2},  // AnalogOut
};
static_assert(std::size(kResourceKinds) == kLastResourceWidget - kFirstResourceWidget + 1,
              "one for each kind of field");

std::int32_t NumberOf(const QScriptValue& object, const char* name) {
    const QScriptValue value = object.property(QLatin1String(name));
    return value.isNumber() ? value.toInt32() : -1;
}

} // namespace

ResourceSignature ReadResourceSignature(const QScriptValue& value, QScriptEngine& engine) {
    QScriptValue object = value;
    const QScriptValue json = engine.globalObject().property(QStringLiteral("JSON"));
    QScriptValue parse = json.property(QStringLiteral("parse"));
    if (value.isString() && parse.isFunction())
        object = parse.call(json, QScriptValueList{QScriptValue(value.toString())});
    engine.clearExceptions();
    ResourceSignature signature;
    if (!object.isObject())
        return signature;
    const QScriptValue type = object.property(QStringLiteral("Type"));
    signature.type = type.isString() ? type.toString() : QLatin1String("");
    signature.resourceId = NumberOf(object, "ResourceID");
    signature.channelIndex = NumberOf(object, "ChannelIndex");
    return signature;
}

bool operator==(const ResourceRequest& left, const ResourceRequest& right) {
    const bool isChannel = left.channelType >= 0;
    return left.widget == right.widget && left.resourceId == right.resourceId &&
           (!isChannel || left.channelIndex == right.channelIndex);
}

std::optional<ResourceRequest> RequestOf(const ResourceSignature& signature) {
    for (int widget = kFirstResourceWidget; widget <= kLastResourceWidget; ++widget) {
        if (signature.type != QLatin1String(WidgetName(widget)))
            continue;
        const ResourceKind& kind = kResourceKinds[widget - kFirstResourceWidget];
        return ResourceRequest{widget,           kind.family,          kind.subtype,
                               kind.channelType, signature.resourceId, signature.channelIndex};
    }
    return std::nullopt;
}

std::vector<ResourceRequest> FindResources(const ScriptSettings& settings) {
    QScriptEngine engine; // of its own: a script may have replaced what reads the texts
    std::vector<ResourceRequest> requests;
    for (const MScriptSetting& setting : settings) {
        if (setting.widget < kFirstResourceWidget || setting.widget > kLastResourceWidget)
            continue;
        ResourceSignature signature = ReadResourceSignature(QScriptValue(setting.value), engine);
        if (signature.type.isEmpty())
            signature.type = QLatin1String(WidgetName(setting.widget));
        if (const std::optional<ResourceRequest> request = RequestOf(signature))
            requests.push_back(*request);
    }
    return requests;
}
