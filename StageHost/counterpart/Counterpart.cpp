#include "Counterpart.h"

#include <algorithm>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include "NearNames.h"

static void LoadPreludeResource() {
    Q_INIT_RESOURCE(counterpart); // wants a function outside any namespace
}

namespace stagehost {

namespace {

constexpr std::size_t kMostTimers = 10000;
constexpr double kChances = 9007199254740992.0; // 2^53, what a number of the script counts exactly

QString NoOption(const QString& name, const QStringList& asked) {
    return QStringLiteral("the script has no option \"%1\"").arg(name) + NamesInstead(name, asked);
}

/// The words of somebody at a terminal, as the order that they stand for.
QJsonObject OrderOfWords(const QString& line) {
    QStringList words = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const QString deed = words.isEmpty() ? QString() : words.takeFirst();
    QJsonObject order{{QStringLiteral("do"), deed}};
    if (deed == QLatin1String("lie") && !words.isEmpty())
        order.insert(QStringLiteral("with"), words.takeFirst());
    if (deed != QLatin1String("call"))
        return order;
    order.insert(QStringLiteral("function"), words.isEmpty() ? QString() : words.takeFirst());
    order.insert(QStringLiteral("args"), QJsonArray::fromStringList(words));
    return order;
}

QStringList PrankNames() {
    QStringList names;
    for (int prank = 1; prank < kPrankCount; ++prank)
        names += QLatin1String(kPrankNames[prank]);
    return names;
}

QScriptValue Throw(QScriptContext& context, const QString& what) {
    return context.throwError(what);
}

QString ResourceText(const QString& name) {
    LoadPreludeResource();
    QFile file(QStringLiteral(":/counterpart/") + name);
    file.open(QIODevice::ReadOnly);
    return QString::fromUtf8(file.readAll());
}

} // namespace

QString CounterpartDeclarations() {
    return ResourceText(QStringLiteral("counterpart.d.ts"));
}

/// A timer of the script.
struct Counterpart::Timer {
    QTimer timer;
    QScriptValue function;
};

template <Counterpart::Native native>
QScriptValue Counterpart::CallNative(QScriptContext* context, QScriptEngine*, void* self) {
    return (static_cast<Counterpart*>(self)->*native)(*context);
}

const Counterpart::Row Counterpart::kRows[] = {
    {"open", &CallNative<&Counterpart::NativeOpen>},           {"say", &CallNative<&Counterpart::NativeSay>},
    {"close", &CallNative<&Counterpart::NativeClose>},         {"reads", &CallNative<&Counterpart::NativeReads>},
    {"work", &CallNative<&Counterpart::NativeWork>},           {"timer", &CallNative<&Counterpart::NativeTimer>},
    {"misbehave", &CallNative<&Counterpart::NativeMisbehave>}, {"cancel", &CallNative<&Counterpart::NativeCancel>},
    {"note", &CallNative<&Counterpart::NativeNote>},           {"option", &CallNative<&Counterpart::NativeOption>},
    {"random", &CallNative<&Counterpart::NativeRandom>},       {"near", &CallNative<&Counterpart::NativeNear>},
};

Counterpart::Counterpart(const Voice& voice, quint64 seed, LinePlace listen, std::map<QString, QString> options)
    : m_voice(voice)
    , m_seed(seed)
    , m_listen(std::move(listen))
    , m_options(std::move(options))
    , m_chance(seed)
    , m_door([this](const ScriptFailure& failure) { m_voice.Problem(failure.text, failure.place); }) {
    LoadPrelude();
}

Counterpart::~Counterpart() = default;

void Counterpart::LoadPrelude() {
    QScriptEngine& engine = m_door.Engine();
    QScriptValue native = engine.newObject();
    for (const Row& row : kRows)
        native.setProperty(QLatin1String(row.name), engine.newFunction(row.call, this));
    const QString name = QStringLiteral("Prelude.js");
    QScriptValue prelude = engine.evaluate(ResourceText(name), name);
    m_news = prelude.call(QScriptValue(), {native, engine.globalObject()});
    m_door.NameBy([this] { return KeptFunctions(); });
    m_ownNames = FunctionNames();
}

std::optional<ScriptFailure> Counterpart::Load(const QString& text, const QString& file) {
    if (auto failure = m_door.Run(text, file))
        return failure;
    const QString problem = WhyNotReady();
    if (!problem.isEmpty())
        return ScriptFailure{file + QStringLiteral(": ") + problem, {}};
    m_former.clear();
    TellReady(file);
    return std::nullopt;
}

Counterpart::Ends Counterpart::GiveEnds() {
    Ends ends = std::move(m_former);
    for (auto& end : m_ends) {
        end->Retire();
        ends.push_back(std::move(end));
    }
    m_ends.clear();
    return ends;
}

QString Counterpart::WhyNotReady() const {
    if (m_ends.empty())
        return QStringLiteral("opens nothing: a counterpart begins with Counterpart.tcp, udp or serial");
    for (const auto& [name, text] : m_options) {
        if (!m_asked.contains(name))
            return NoOption(name, m_asked);
    }
    return m_news.property(QStringLiteral("complaint")).call(m_news).toString();
}

void Counterpart::TellReady(const QString& file) const {
    std::map<QString, QJsonObject> places;
    for (const auto& end : m_ends) {
        QJsonObject place = end->Place().PlaceJson();
        if (end->Place().Place().kind != LineKind::Serial)
            place.insert(QStringLiteral("host"), end->Place().Place().host);
        places[end->Name()] = place;
    }
    m_voice.Ready(file, places, m_seed);
}

/// `native.open(kind, name, port, path, rule)`: the id and the place of a new endpoint.
QScriptValue Counterpart::NativeOpen(QScriptContext& context) {
    LinePlace place;
    FindLineKind(context.argument(0).toString(), place.kind);
    if (place.kind == LineKind::Serial)
        place.path = context.argument(3).toString();
    place.host = QStringLiteral("127.0.0.1");
    place.port = static_cast<std::uint16_t>(context.argument(2).toUInt16());
    if (m_ends.empty() && place.kind != LineKind::Serial && !m_listen.host.isEmpty()) {
        place.host = m_listen.host;
        place.port = m_listen.port;
    }
    const int id = static_cast<int>(m_ends.size());
    const QString name = context.argument(1).toString();
    const auto isTaken = [&](const auto& end) { return end->Name() == name; };
    if (std::any_of(m_ends.begin(), m_ends.end(), isTaken))
        return Throw(context, name.isEmpty() ? QStringLiteral("of several endpoints each needs a \"name\", but for one")
                                             : QStringLiteral("another endpoint is called \"%1\"").arg(name));
    auto end = TakeFormer(name, place);
    QString problem;
    if (end) {
        problem = end->BeginAnew(ReadRule(context.argument(4)), NewsOf(id));
    } else {
        end = std::make_unique<CounterpartEnd>(name, place.kind, ReadRule(context.argument(4)), NewsOf(id));
        problem = end->Open(place);
        if (!problem.isEmpty() && (place.kind != LineKind::Serial || !place.path.isEmpty()))
            problem.prepend(TextOf(place) + QStringLiteral(": "));
    }
    if (!problem.isEmpty())
        return Throw(context, problem);
    m_ends.push_back(std::move(end));
    const LinePlace& opened = m_ends.back()->Place().Place();
    QScriptValue result = m_door.Engine().newObject();
    result.setProperty(QStringLiteral("id"), id);
    result.setProperty(QStringLiteral("host"), opened.kind == LineKind::Serial ? QString() : opened.host);
    result.setProperty(QStringLiteral("port"), opened.port);
    result.setProperty(QStringLiteral("path"), opened.path);
    return result;
}

/// The endpoint of the edition before, unless the script wants another place; null when there is none.
std::unique_ptr<CounterpartEnd> Counterpart::TakeFormer(const QString& name, const LinePlace& place) {
    const auto fits = [&](const auto& end) {
        const LinePlace& has = end->Place().Place();
        return end->Name() == name && has.kind == place.kind && (place.port == 0 || place.port == has.port) &&
               (place.path.isEmpty() || place.path == has.path);
    };
    const auto found = std::find_if(m_former.begin(), m_former.end(), fits);
    if (found == m_former.end())
        return nullptr;
    auto end = std::move(*found);
    m_former.erase(found);
    return end;
}

FramingRule Counterpart::ReadRule(const QScriptValue& rule) {
    using Kind = FramingRule::Kind;
    const auto member = [&](const char* name) { return rule.property(QLatin1String(name)); };
    FramingRule read;
    read.most = member("most").toInt32();
    if (member("delimiter").isString()) {
        read.kind = Kind::Delimited;
        read.delimiter = member("delimiter").toString().toLatin1();
        read.start = member("start").toString().toLatin1();
    } else if (member("length").isNumber()) {
        read.kind = Kind::Fixed;
        read.length = member("length").toInt32();
    } else if (member("prefix").isNumber()) {
        read.kind = Kind::Prefixed;
        read.prefix = member("prefix").toInt32();
        read.isLittle = member("little").toBool();
        read.countsPrefix = member("whole").toBool();
    } else if (member("own").isFunction()) {
        read.kind = Kind::Own;
        read.own = [this, own = member("own")](const QByteArray& bytes) {
            return m_door.Call(own, {QString::fromLatin1(bytes)}, [] { return QStringLiteral("frame"); }).toInt32();
        };
    }
    return read;
}

/// What comes while the script runs waits at the door: also the cutting, since a script may do that, and the end.
CounterpartEnd::News Counterpart::NewsOf(int id) {
    return {[this, id](LineId line, const QString& who) {
                m_door.Enter([this, id, line, who] { Tell(id, "opened", {line, who}); });
            },
            [this, id](LineId line, const QByteArray& frame) {
                m_voice.Received(m_ends[static_cast<std::size_t>(id)]->Name(), line, frame);
                Tell(id, "took", {line, QString::fromLatin1(frame)});
            },
            [this, id](LineId line) { m_door.Enter([this, id, line] { Tell(id, "ended", {line}); }); },
            [this, id](LineId line, const QString& why) {
                Tell(id, "closed", {line, why});
            },
            [this](const QString& problem) { m_voice.Problem(problem); },
            [this](std::function<void()> work) { m_door.Enter(std::move(work)); }};
}

void Counterpart::Tell(int id, const char* event, QScriptValueList values) {
    values.prepend(id);
    m_door.Call(m_news.property(QLatin1String(event)), values,
                [this] { return m_news.property(QStringLiteral("handler")).toString(); });
}

CounterpartEnd& Counterpart::EndOf(QScriptContext& context) {
    return *m_ends.at(static_cast<std::size_t>(context.argument(0).toInt32()));
}

/// `native.say(endpoint, line, text)`
QScriptValue Counterpart::NativeSay(QScriptContext& context) {
    if (!context.argument(2).isString())
        return Throw(context, QStringLiteral("say takes a text, not ") + context.argument(2).toString());
    const QString text = context.argument(2).toString();
    const auto wide = std::find_if(text.begin(), text.end(), [](QChar c) { return c.unicode() > 0xFF; });
    if (wide != text.end())
        return Throw(context, QStringLiteral("say: the character U+%1 is no byte; say the bytes of its encoding")
                                  .arg(uint(wide->unicode()), 4, 16, QLatin1Char('0')));
    const int line = context.argument(1).toInt32();
    CounterpartEnd& end = EndOf(context);
    if (const auto prank = end.Say(line, text.toLatin1()))
        m_voice.Said(end.Name(), line, text.toLatin1(), *prank);
    return {};
}

/// `native.close(endpoint, line, how)`
QScriptValue Counterpart::NativeClose(QScriptContext& context) {
    using End = PrankedPiece::End;
    const QString how = context.argument(2).toString();
    const bool isHalf = how == QLatin1String("half-close");
    EndOf(context).Close(context.argument(1).toInt32(),
                         isHalf ? End::HalfClose : (how == QLatin1String("reset") ? End::Reset : End::Close));
    if (!isHalf)
        m_news.property(QStringLiteral("forget")).call(m_news, {context.argument(0), context.argument(1)});
    return {};
}

/// `native.reads(endpoint, line, whether)`
QScriptValue Counterpart::NativeReads(QScriptContext& context) {
    EndOf(context).SetReading(context.argument(1).toInt32(), context.argument(2).toBool());
    return {};
}

/// `native.work(endpoint, deed)`
QScriptValue Counterpart::NativeWork(QScriptContext& context) {
    const QString problem = WorkEnd(EndOf(context), context.argument(1).toString());
    return problem.isEmpty() ? QScriptValue() : Throw(context, problem);
}

/// `native.misbehave(endpoint, words, oneIn)`
QScriptValue Counterpart::NativeMisbehave(QScriptContext& context) {
    QStringList words;
    const QScriptValue list = context.argument(1);
    for (quint32 place = 0; place < list.property(QStringLiteral("length")).toUInt32(); ++place)
        words += list.property(place).toString();
    const QString problem = SetLies(EndOf(context), words, context.argument(2).toUInt32());
    return problem.isEmpty() ? QScriptValue() : Throw(context, problem);
}

QString Counterpart::SetLies(CounterpartEnd& end, const QStringList& lies, unsigned oneIn) {
    std::vector<Prank> pranks;
    for (const QString& lie : lies) {
        Prank prank = Prank::None;
        if (!FindPrank(lie, prank) || prank == Prank::None)
            return QStringLiteral("no device misbehaves by \"%1\"").arg(lie) + NamesInstead(lie, PrankNames());
        pranks.push_back(prank);
    }
    end.SetMischief(pranks.empty() ? nullptr : std::make_unique<Mischief>(m_chance(), pranks, oneIn));
    return {};
}

/// `native.timer(ms, repeats, function)`: its number.
QScriptValue Counterpart::NativeTimer(QScriptContext& context) {
    if (m_timers.size() >= kMostTimers)
        return Throw(context, QStringLiteral("there are %1 timers already").arg(kMostTimers));
    const int id = ++m_lastTimer;
    auto timer = std::make_unique<Timer>();
    const bool repeats = context.argument(1).toBool();
    timer->function = context.argument(2);
    timer->timer.setSingleShot(!repeats);
    timer->timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer->timer, &QTimer::timeout, &timer->timer, [this, id, repeats] {
        m_door.Enter([this, id, repeats] {
            const auto found = m_timers.find(id);
            if (found == m_timers.end())
                return;
            const QScriptValue function = found->second->function;
            if (!repeats)
                found->second.release()->timer.deleteLater();
            if (!repeats)
                m_timers.erase(found);
            m_door.Call(function, {}, [repeats] {
                return repeats ? QStringLiteral("every's function") : QStringLiteral("after's function");
            });
        });
    });
    timer->timer.start(context.argument(0).toInt32());
    m_timers[id] = std::move(timer);
    return id;
}

QScriptValue Counterpart::NativeCancel(QScriptContext& context) {
    m_timers.erase(context.argument(0).toInt32());
    return {};
}

QScriptValue Counterpart::NativeNote(QScriptContext& context) {
    m_voice.Note(context.argument(0).toString());
    return {};
}

QScriptValue Counterpart::NativeOption(QScriptContext& context) {
    const QString name = context.argument(0).toString();
    m_asked += name;
    const auto given = m_options.find(name);
    return given == m_options.end() ? QScriptValue(QScriptValue::UndefinedValue) : QScriptValue(given->second);
}

QScriptValue Counterpart::NativeRandom(QScriptContext&) {
    return static_cast<double>(m_chance() >> 11) / kChances;
}

/// `native.near(name, list)`: what is said behind "there is no NAME".
QScriptValue Counterpart::NativeNear(QScriptContext& context) {
    QStringList known;
    const QScriptValue list = context.argument(1);
    for (quint32 place = 0; place < list.property(QStringLiteral("length")).toUInt32(); ++place)
        known += list.property(place).toString();
    return NamesInstead(context.argument(0).toString(), known);
}

QJsonObject Counterpart::ReadOrder(const QByteArray& line) {
    return line.startsWith('{') ? QJsonDocument::fromJson(line).object()
                                : OrderOfWords(QString::fromUtf8(line).trimmed());
}

void Counterpart::Do(const QJsonObject& order) {
    m_door.Enter([this, order] { DoOrder(order); });
}

void Counterpart::DoOrder(const QJsonObject& order) {
    const QString deed = order.value(QStringLiteral("do")).toString();
    if (deed == QLatin1String("call"))
        return CallFunction(order.value(QStringLiteral("function")).toString(),
                            order.value(QStringLiteral("args")).toArray());
    const QString with = order.value(QStringLiteral("with")).toString();
    const QString problem = Work(deed, deed == QLatin1String("lie") ? QStringList(with) : QStringList());
    if (problem.isEmpty())
        m_voice.Done(deed, {});
    else
        m_voice.Refused(problem);
}

/// An order is for all endpoints.
QString Counterpart::Work(const QString& deed, const QStringList& lies) {
    for (std::size_t id = 0; id < m_ends.size(); ++id) {
        const bool isAboutTruth = deed == QLatin1String("lie") || deed == QLatin1String("obey");
        if (deed == QLatin1String("leave"))
            Tell(static_cast<int>(id), "left", {});
        QString problem = isAboutTruth ? SetLies(*m_ends[id], lies, 1) : WorkEnd(*m_ends[id], deed);
        if (!problem.isEmpty())
            return problem;
    }
    return {};
}

QString Counterpart::WorkEnd(CounterpartEnd& end, const QString& deed) {
    static const QStringList known{QStringLiteral("leave"),  QStringLiteral("return"), QStringLiteral("stall"),
                                   QStringLiteral("resume"), QStringLiteral("lie"),    QStringLiteral("obey"),
                                   QStringLiteral("call"),   QStringLiteral("load")};
    if (deed == QLatin1String("leave"))
        end.Leave();
    else if (deed == QLatin1String("return"))
        return end.Return();
    else if (deed == QLatin1String("stall"))
        end.Stall();
    else if (deed == QLatin1String("resume"))
        end.Resume();
    else
        return QStringLiteral("a counterpart knows no \"%1\"").arg(deed) + NamesInstead(deed, known);
    return {};
}

void Counterpart::CallFunction(const QString& name, const QJsonArray& arguments) {
    const QScriptValue function = m_door.Engine().globalObject().property(name);
    if (!function.isFunction() || m_ownNames.contains(name))
        return m_voice.Refused(QStringLiteral("the script has no function \"%1\"").arg(name) +
                               NamesInstead(name, FunctionNames()));
    QScriptValueList values;
    for (const QJsonValue argument : arguments)
        values += argument.isDouble() ? QScriptValue(argument.toDouble())
                  : argument.isBool() ? QScriptValue(argument.toBool())
                                      : QScriptValue(argument.toString());
    std::optional<ScriptFailure> failure;
    const auto called = [&name] { return name; };
    QScriptValue result = m_door.Call(function, values, called, failure);
    if (!failure && result.isObject())
        result = m_door.Call(m_news.property(QStringLiteral("textOf")), {result}, called, failure);
    if (failure)
        return m_voice.Refused(failure->text, failure->place);
    m_voice.Done(QStringLiteral("call"), result.isUndefined() ? QString() : result.toString());
}

std::vector<ScriptDoor::Kept> Counterpart::KeptFunctions() {
    std::vector<ScriptDoor::Kept> kept;
    const QScriptValue list = m_news.property(QStringLiteral("functions")).call();
    for (quint32 place = 0; place < list.property(QStringLiteral("length")).toUInt32(); ++place)
        kept.push_back({list.property(place).property(0).toString(), list.property(place).property(1).toString()});
    m_door.Engine().clearExceptions(); // of a script that has made its members hard to look at
    return kept;
}

/// Functions of the global object, less those that every script has.
QStringList Counterpart::FunctionNames() {
    QStringList names;
    const QScriptValue keys =
        m_door.Engine().evaluate(QStringLiteral("(function (o) { return Object.keys(o); })(this)"));
    for (quint32 place = 0; place < keys.property(QStringLiteral("length")).toUInt32(); ++place) {
        const QString name = keys.property(place).toString();
        if (m_door.Engine().globalObject().property(name).isFunction() && !m_ownNames.contains(name))
            names += name;
    }
    return names;
}

} // namespace stagehost
