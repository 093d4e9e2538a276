#pragma once

#include <map>
#include <memory>
#include <random>
#include <vector>

#include <QJsonObject>

#include "CounterpartEnd.h"
#include "Voice.h"

namespace stagehost {

/// What such a script sees, as a TypeScript declaration file.   [any]
QString CounterpartDeclarations();

/// A device that is not there, played by a script: its endpoints, its timers, what a show has it do.
/// docs/counterparts.md tells what the script sees.   [host main]
class Counterpart {
public:
    /// @param seed of what it draws by chance. @param listen where its first endpoint shall be reached.
    /// @param options that the script may ask for. @param voice must outlive this object.
    Counterpart(const Voice& voice, quint64 seed, LinePlace listen, std::map<QString, QString> options);
    ~Counterpart();

    /// The endpoints of an edition before: they go on where the script opens such of the same names. Before Load.
    using Ends = std::vector<std::unique_ptr<CounterpartEnd>>;
    void TakeOver(Ends ends) { m_former = std::move(ends); }
    /// Gives them to the next edition, with all lines closed. Not while the script runs; to be deleted at once.
    Ends GiveEnds();
    /// Whether the script runs just now, and has let an event in.
    bool IsInside() const { return m_door.IsInside(); }

    /// Loads the script and opens what it opens. @return what is wrong; nothing when it is ready, which has been told.
    std::optional<ScriptFailure> Load(const QString& text, const QString& file);

    /// What a line of standard input says, JSON or words.
    static QJsonObject ReadOrder(const QByteArray& line);
    /// Does it: now, or behind the script that runs. A failure is told.
    void Do(const QJsonObject& order);

private:
    struct Timer;
    using Native = QScriptValue (Counterpart::*)(QScriptContext& context);
    struct Row {
        const char* name;
        QScriptValue (*call)(QScriptContext* context, QScriptEngine* engine, void* self);
    };
    template <Native native>
    static QScriptValue CallNative(QScriptContext* context, QScriptEngine* engine, void* self);
    static const Row kRows[];

    void LoadPrelude();
    QString WhyNotReady() const;
    void TellReady(const QString& file) const;

    QScriptValue NativeOpen(QScriptContext& context);
    QScriptValue NativeSay(QScriptContext& context);
    QScriptValue NativeClose(QScriptContext& context);
    QScriptValue NativeReads(QScriptContext& context);
    QScriptValue NativeWork(QScriptContext& context);
    QScriptValue NativeMisbehave(QScriptContext& context);
    QScriptValue NativeTimer(QScriptContext& context);
    QScriptValue NativeCancel(QScriptContext& context);
    QScriptValue NativeNote(QScriptContext& context);
    QScriptValue NativeOption(QScriptContext& context);
    QScriptValue NativeRandom(QScriptContext& context);
    QScriptValue NativeNear(QScriptContext& context);

    FramingRule ReadRule(const QScriptValue& rule);
    CounterpartEnd::News NewsOf(int id);
    CounterpartEnd& EndOf(QScriptContext& context);
    std::unique_ptr<CounterpartEnd> TakeFormer(const QString& name, const LinePlace& place);
    void Tell(int id, const char* event, QScriptValueList values);
    QString UniqueName(const QString& name, LineKind kind) const;

    void DoOrder(const QJsonObject& order);
    QString Work(const QString& deed, const QStringList& lies);
    QString WorkEnd(CounterpartEnd& end, const QString& deed);
    QString SetLies(CounterpartEnd& end, const QStringList& lies, unsigned oneIn);
    void CallFunction(const QString& name, const QJsonArray& arguments);
    QStringList FunctionNames();
    std::vector<ScriptDoor::Kept> KeptFunctions();

    const Voice& m_voice;
    const quint64 m_seed;
    const LinePlace m_listen;
    const std::map<QString, QString> m_options;
    mutable QStringList m_asked; ///< options that the script has asked for
    std::mt19937_64 m_chance;
    ScriptDoor m_door;
    QScriptValue m_news;    ///< what the prelude wants to hear
    QStringList m_ownNames; ///< of the global object, that are not the script's
    Ends m_ends;            ///< by their ids
    Ends m_former;          ///< that nobody has opened anew yet
    std::map<int, std::unique_ptr<Timer>> m_timers;
    int m_lastTimer = 0;
};

} // namespace stagehost
