#include <QJsonArray>

#include "BorderText.h"
#include "Commands.h"
#include "DataTypes.h"
#include "ExitCodes.h"
#include "Output.h"
#include "ScriptSession.h"

namespace stagehost {

namespace {

using Variables = std::vector<std::shared_ptr<HostValue>>;

MaybeFailure Choose(Session& session, const QStringList& names, Variables& chosen) {
    if (names.isEmpty())
        chosen = session.TheHost().Variables().All();
    for (const QString& name : names) {
        const auto variable = session.TheHost().Variables().Find(ToBorderText(name));
        if (!variable)
            return session.NoVariable(name);
        chosen.push_back(variable);
    }
    return std::nullopt;
}

QString TypeName(const HostValue& variable) {
    return QLatin1String(FindDataType(variable.Type())->showName);
}

void PrintTable(const Variables& variables) {
    QVector<QStringList> rows{
        {QStringLiteral("ID"), QStringLiteral("Variable"), QStringLiteral("Type"), QStringLiteral("Value")}};
    for (const auto& variable : variables)
        rows.push_back({QString::number(variable->InstanceId()), FromBorderText(variable->Name()), TypeName(*variable),
                        OneLine(FromBorderText(variable->Text()))});
    Print(Table(rows, {}));
}

void PrintVariables(const Options& options, const Variables& variables) {
    if (!options.json)
        return PrintTable(variables);
    QJsonArray list;
    for (const auto& variable : variables)
        list.append(QJsonObject{{QStringLiteral("id"), static_cast<double>(variable->InstanceId())},
                                {QStringLiteral("name"), FromBorderText(variable->Name())},
                                {QStringLiteral("type"), TypeName(*variable)},
                                {QStringLiteral("value"), FromBorderText(variable->Text())},
                                {QStringLiteral("number"), variable->Real()}});
    PrintJson({{QStringLiteral("variables"), list}});
}

MaybeFailure OpenAndChoose(Session& session, const Options& options, const Show& show, Variables& chosen) {
    if (auto failure = session.OpenWithPeers(show))
        return failure;
    if (auto failure = session.Start())
        return failure;
    return Choose(session, options.arguments.mid(1), chosen);
}

} // namespace

int ShowVariables(const Options& options) {
    Show show;
    if (auto failure = ReadShowOrScript(options.arguments.first(), show))
        return Fail(options.json, *failure);
    Session session(options);
    Variables chosen;
    auto failure = OpenAndChoose(session, options, show, chosen);
    if (failure)
        session.TellWhereItHangs(*failure);
    if (failure)
        return session.Close(Fail(options.json, *failure));
    PrintVariables(options, chosen);
    return session.Close(kExitOk);
}

} // namespace stagehost
