#include "ShowSchema.h"

#include <QJsonArray>
#include <QRegularExpression>
#include <QStringList>

#include "ShowKeys.h"

namespace stagehost {

namespace {

QString Key(const char* text) {
    return QLatin1String(text);
}

QJsonObject OfType(const char* type) {
    return {{Key("type"), Key(type)}};
}

QJsonObject SchemaOf(const QString& form);

QJsonObject AnyOf(const QStringList& forms) {
    QJsonArray schemas;
    for (const QString& form : forms)
        schemas.append(SchemaOf(form));
    return {{Key("anyOf"), schemas}};
}

QJsonObject OneOfTexts(const QString& form) {
    QJsonArray texts;
    for (const QString& text : form.mid(1, form.size() - 2).split(Key("\" \"")))
        texts.append(text);
    return {{Key("enum"), texts}};
}

QJsonObject Whole(const QString& form) {
    static const QRegularExpression limits(QStringLiteral("^whole\\((\\d+)(?:,(\\d+))?\\)$"));
    QJsonObject schema = OfType("integer");
    const auto match = limits.match(form);
    if (match.hasMatch())
        schema.insert(Key("minimum"), match.captured(1).toInt());
    if (match.lastCapturedIndex() == 2)
        schema.insert(Key("maximum"), match.captured(2).toInt());
    return schema;
}

QJsonObject SchemaOf(const QString& form) {
    const QString inside = form.mid(1, form.size() - 2);
    if (form.startsWith(QLatin1Char('[')))
        return {{Key("type"), Key("array")}, {Key("items"), SchemaOf(inside)}};
    if (form.startsWith(QLatin1Char('{')))
        return {{Key("type"), Key("object")}, {Key("additionalProperties"), SchemaOf(inside)}};
    if (form.contains(Key(" | ")))
        return AnyOf(form.split(Key(" | ")));
    if (form.startsWith(QLatin1Char('"')))
        return OneOfTexts(form);
    if (form.startsWith(Key("whole")))
        return Whole(form);
    if (form == Key("text"))
        return OfType("string");
    if (form == Key("number"))
        return OfType("number");
    if (form == Key("truth"))
        return OfType("boolean");
    if (form == Key("scalar"))
        return {{Key("type"), QJsonArray{Key("string"), Key("number"), Key("boolean")}}};
    return {{Key("$ref"), Key("#/$defs/") + form}};
}

QJsonObject SchemaOf(const ShowObjectKeys& object) {
    QJsonObject properties;
    QJsonArray needed;
    for (std::size_t place = 0; place < object.count; ++place) {
        const ShowKey& key = object.keys[place];
        QJsonObject schema = SchemaOf(Key(key.form));
        schema.insert(Key("description"), Key(key.meaning));
        properties.insert(Key(key.name), schema);
        if (key.needed)
            needed.append(Key(key.name));
    }
    QJsonObject schema{
        {Key("type"), Key("object")}, {Key("properties"), properties}, {Key("additionalProperties"), false}};
    if (!needed.isEmpty())
        schema.insert(Key("required"), needed);
    return schema;
}

} // namespace

QJsonObject ShowSchema() {
    QJsonObject objects;
    for (const ShowObjectKeys& object : kShowObjects)
        objects.insert(Key(object.name), SchemaOf(object));
    return {{Key("$schema"), Key("https://json-schema.org/draft/2020-12/schema")},
            {Key("title"), Key("A show of stagehost")},
            {Key("$ref"), Key("#/$defs/") + Key(kShowObjects[0].name)},
            {Key("$defs"), objects}};
}

} // namespace stagehost
