#include "MScriptDescription.h"

#include <QFile>
#include <QFileInfo>
#include <QScriptEngine>

#include "HostText.h"
#include "ScriptInfo.h"
#include "ScriptMembers.h"

namespace {

struct DescriptionField {
    const char* name; ///< in `Info`
    QString MScriptDescription::*field;
};

constexpr DescriptionField kDescriptionFields[] = {{"Title", &MScriptDescription::title},
                                                   {"Author", &MScriptDescription::author},
                                                   {"Version", &MScriptDescription::version},
                                                   {"Description", &MScriptDescription::description}};

} // namespace

std::unique_ptr<MScriptDescription> MScriptDescription::FromFile(const QString& path, QScriptEngine* engine,
                                                                 std::chrono::milliseconds limit) {
    const QFileInfo info(path);
    if (!info.exists() || engine == nullptr)
        return nullptr;
    auto record = std::make_unique<MScriptDescription>(OfFile(path));
    QFile file(path);
    if (file.open(QIODevice::ReadOnly))
        Parse(FromScriptBytes(file.readAll()), *engine, *record, limit);
    return record;
}

MScriptDescription MScriptDescription::OfFile(const QString& path) {
    const QFileInfo info(path);
    MScriptDescription record;
    record.fileName = info.fileName();
    record.title = info.baseName();
    return record;
}

std::unique_ptr<MScriptDescription> MScriptDescription::FromText(const QString& text, QScriptEngine* engine,
                                                                 std::chrono::milliseconds limit) {
    if (engine == nullptr)
        return nullptr;
    auto record = std::make_unique<MScriptDescription>();
    Parse(text, *engine, *record, limit);
    return record;
}

void MScriptDescription::Parse(const QString& text, QScriptEngine& engine, MScriptDescription& record,
                               std::chrono::milliseconds limit) {
    MScriptDescription read = record;
    LimitedRun run(engine, limit);
    const LimitedRun::Outcome outcome = run.Run([&] {
        engine.pushContext();
        const QScriptValue published = engine.evaluate(text, QStringLiteral(""), 1);
        engine.popContext();
        if (!published.isError() && !engine.hasUncaughtException())
            read.Take(published);
        engine.clearExceptions();
    });
    if (outcome == LimitedRun::Outcome::InTime)
        record = read;
}

void MScriptDescription::Take(const QScriptValue& published) {
    for (const ScriptMember& member : MembersOf(FindInfo(published)))
        for (const DescriptionField& row : kDescriptionFields)
            if (member.name == QLatin1String(row.name) && !member.value.isNull() && !member.value.isFunction())
                this->*row.field = QLatin1String("") + ScriptText(member.value);
}

void MScriptDescription::TakeSaid(const MScriptDescription& said) {
    for (const DescriptionField& row : kDescriptionFields)
        if (!(said.*row.field).isNull())
            this->*row.field = said.*row.field;
}

const QString& MScriptDescription::GetDisplayText() {
    displayText = title + QStringLiteral(" (") + fileName + QLatin1Char(')');
    return displayText;
}
