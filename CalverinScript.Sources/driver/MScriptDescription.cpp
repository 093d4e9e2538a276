#include "MScriptDescription.h"

#include <QFile>
#include <QFileInfo>
#include <QScriptEngine>

#include "HostText.h"
#include "ScriptInfo.h"
#include "ScriptMembers.h"

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

void MScriptDescription::TakeInTime(const QScriptValue& published, QScriptEngine& engine,
                                    std::chrono::milliseconds limit) {
    MScriptDescription read = *this;
    LimitedRun run(engine, limit);
    const LimitedRun::Outcome outcome = run.Run([&] {
        read.Take(published);
        engine.clearExceptions();
    });
    if (outcome == LimitedRun::Outcome::InTime)
        *this = read;
}

void MScriptDescription::Take(const QScriptValue& published) {
    struct Field {
        const char* name;
        QString MScriptDescription::*field;
    };
    static constexpr Field kFields[] = {{"Title", &MScriptDescription::title},
                                        {"Author", &MScriptDescription::author},
                                        {"Version", &MScriptDescription::version},
                                        {"Description", &MScriptDescription::description}};
    for (const ScriptMember& member : MembersOf(FindInfo(published)))
        for (const Field& field : kFields)
            if (member.name == QLatin1String(field.name) && !member.value.isNull() && !member.value.isFunction())
                this->*field.field = ScriptText(member.value);
}

const QString& MScriptDescription::GetDisplayText() {
    displayText = title + QStringLiteral(" (") + fileName + QLatin1Char(')');
    return displayText;
}
