#pragma once

#include <cstdint>
#include <vector>

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

class IData;

/// @file
/// What a script publishes, as plain values.

/// Name and value of one property that a script gave, in the order of the script. Names are unique.
using ScriptProperties = QList<QPair<QString, QString>>;

/// One variable that a script publishes or binds.
struct MScriptVariable {
    IData* data = nullptr; ///< the host's value, not owned; null until bound
    QString name;
    QString type;                                 ///< "IntegerData" and the like, or empty
    QString valueType = QStringLiteral("String"); ///< "Integer", "Real" or "String"
    QString value;
    QString defaultScriptValue;
    bool useDefaultScriptValue = true;
    std::uint32_t instanceId = 0; ///< the host's number, 0 when it has none
    ScriptProperties properties;
    QStringList enumItems;
};

/// Directions of a parameter, with the text that definitions use.
enum class ParamDirection { In, Out };

/// One parameter of a user command.
struct MScriptCommandParam {
    QString name;
    ParamDirection direction = ParamDirection::In;
    QString type = QStringLiteral("StringData");
    ScriptProperties properties;
    QStringList items;
};

/// One user command.
struct MScriptCommand {
    static constexpr std::int32_t kNoId = -1;

    QString name; ///< of the script function
    QList<MScriptCommandParam> params;
    bool active = true;
    std::int32_t id = kNoId;
    std::int32_t previousId = kNoId;
    ScriptProperties properties;

    bool operator==(const MScriptCommand& other) const { return name == other.name && id == other.id; }
};

/// One value of the setup form.
struct MScriptSetting {
    QString name;
    QString type;
    QString value;
    int widget = 0; ///< kind of the form's field, see WidgetKindOf
    ScriptProperties properties;
    QStringList items;
};

using ScriptVariables = std::vector<MScriptVariable>;
using ScriptCommands = std::vector<MScriptCommand>;
using ScriptSettings = std::vector<MScriptSetting>;
