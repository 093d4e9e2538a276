#include "ObjectNotes.h"

#include <algorithm>
#include <iterator>

#include <QHash>

#include "MadeObjects.h"
#include "MScriptCommonEvent.h"
#include "NameGuess.h"
#include "ScriptClasses.h"
#include "ScriptScan.h"
#include "ScriptSource.h"

namespace {

QStringList EventNames() {
    QStringList names;
    for (const std::string_view name : kEventNames)
        names.append(QString::fromLatin1(name.data(), static_cast<int>(name.size())));
    return names;
}

/// The walk over classes, listeners and members of objects.
class ObjectNoteTaker {
public:
    ObjectNoteTaker(const ScriptSource& source, const QScriptValue& global)
        : m_source(source)
        , m_global(global)
        , m_objects(source) {}

    QList<ScriptNote> Take() {
        for (int place = 0; place < m_source.Count(); ++place) {
            if (m_source.IsName(place, "new") && m_source.IsName(place + 1) && !m_source.IsSign(place - 1, "."))
                LookAtClass(place + 1);
            if (m_source.IsName(place) && m_source.IsSign(place + 1, ".") && m_source.IsName(place + 2))
                LookAtMember(place, place + 2);
        }
        return std::move(m_notes);
    }

private:
    const SourceWord& Word(int place) const { return m_source.Words()[static_cast<std::size_t>(place)]; }

    void Note(NoteCode code, int place, const QString& where, const QStringList& details) {
        m_notes.append(MakeNote(code, Word(place).line, where, details));
    }

    void LookAtClass(int place) {
        const QString& name = Word(place).text;
        if (m_source.IsSign(place + 1, ".") || name == QLatin1String("function") || name == QLatin1String("this") ||
            m_global.property(name).isValid() || m_source.Declares(name))
            return;
        QStringList names;
        for (const ScriptClass& known : kScriptClasses)
            names.append(QLatin1String(known.name));
        for (const char* own : {"Date", "Array", "Object", "RegExp", "Error", "Function", "Number", "String"})
            names.append(QLatin1String(own));
        Note(NoteCode::UnknownClass, place, name, {MayBeMeant(name, names)});
    }

    void LookAtMember(int object, int member) {
        const QString& name = Word(member).text;
        const MadeKind* kind = m_objects.KindOf(Word(object).text);
        const bool isListening = (name == QLatin1String("on") || name == QLatin1String("On")) &&
                                 m_source.IsSign(member + 1, "(") && m_source.IsText(member + 2);
        if (kind != nullptr && m_source.IsSign(member + 1, "(") && !ViewOf(*kind).members.contains(name)) {
            const MadeKindView& view = ViewOf(*kind);
            return Note(NoteCode::UnknownObjectMember, member, Word(object).text + QLatin1Char('.') + name,
                        {view.description, MayBeMeant(name, view.members)});
        }
        if (isListening)
            LookAtEvent(member + 2, kind);
    }

    void LookAtEvent(int place, const MadeKind* kind) {
        static const QStringList names = EventNames();
        const QString& event = Word(place).text;
        const bool isKnown = names.contains(event);
        if (kind != nullptr && !isKnown)
            Note(NoteCode::UnknownEvent, place, event, {MayBeMeant(event, ViewOf(*kind).events)});
        else if (kind != nullptr && !ViewOf(*kind).events.contains(event))
            Note(NoteCode::EventNeverComes, place, event,
                 {ViewOf(*kind).description, ViewOf(*kind).events.join(QStringLiteral(", "))});
        else if (!isKnown && !Nearest(event, names).isEmpty() && !RaisesEventsItself())
            Note(NoteCode::LikelyEvent, place, event, {Nearest(event, names)});
    }

    /// A script that has a function `on` of its own has events of its own.
    bool RaisesEventsItself() const {
        for (const SourceFunction& function : m_source.Functions())
            if (function.name.compare(QLatin1String("on"), Qt::CaseInsensitive) == 0)
                return true;
        return false;
    }

    const ScriptSource& m_source;
    const QScriptValue& m_global;
    const MadeObjects m_objects;
    QList<ScriptNote> m_notes;
};

/// Calls that run a function then and there, or once.
constexpr const char* kRunThere[] = {"forEach", "map",  "filter", "some",  "every",
                                     "reduce",  "sort", "call",   "apply", "SetTimeout"};

bool RunsThere(const QString& call) {
    return std::any_of(std::begin(kRunThere), std::end(kRunThere),
                       [&](const char* known) { return call == QLatin1String(known); });
}

/// Which functions of a script may run more than once in one run of the device: commands, listeners, what timers call,
/// and whatever these call.
class RepeatedFunctions {
public:
    RepeatedFunctions(const ScriptSource& source, const ScanResult& published)
        : m_source(source)
        , m_repeated(source.Functions().size(), false) {
        for (std::size_t i = 0; i < m_repeated.size(); ++i)
            m_named[source.Functions()[i].name].push_back(i);
        for (const MScriptCommand& command : published.functions)
            for (const std::size_t function : m_named.value(command.name))
                m_repeated[function] = true;
        FindUses();
        while (Spread()) {
        }
    }

    bool Has(int function) const { return function >= 0 && m_repeated[static_cast<std::size_t>(function)]; }

private:
    /// A function runs as often as the one in which it is used.
    struct Use {
        std::size_t function;
        int around;
    };

    void FindUses() {
        for (std::size_t i = 0; i < m_repeated.size(); ++i) {
            const SourceFunction& function = m_source.Functions()[i];
            if (function.isAtOnce || RunsThere(function.givenTo))
                m_uses.push_back({i, function.parent});
            else if (!function.givenTo.isEmpty())
                m_repeated[i] = true;
        }
        for (int place = 0; place < m_source.Count(); ++place) {
            if (!m_source.IsName(place) || m_source.IsKey(place))
                continue;
            const auto named = m_named.constFind(Text(place));
            if (named != m_named.constEnd())
                for (const std::size_t function : *named)
                    AddUse(place, function);
        }
    }

    void AddUse(int place, std::size_t function) {
        const SourceFunction& used = m_source.Functions()[function];
        if (used.name.isEmpty() || place == used.keyword + 1 || m_source.IsSign(place + 1, "="))
            return;
        const bool isInside = used.open < place && place < used.close;
        if (isInside || IsHandedOver(place))
            m_repeated[function] = true;
        else
            m_uses.push_back({function, m_source.FunctionAround(place)});
    }

    /// Whether a function is handed to a call that may run it again and again, by its name alone.
    bool IsHandedOver(int place) const {
        if (m_source.IsSign(place + 1, "(") || m_source.IsSign(place + 1, "."))
            return false;
        const int depth = m_source.Words()[static_cast<std::size_t>(place)].depth;
        for (int open = place; open > 0; --open)
            if (m_source.IsSign(open, "(") && m_source.Words()[static_cast<std::size_t>(open)].depth == depth - 1)
                return m_source.IsName(open - 1) && !RunsThere(Text(open - 1));
        return false;
    }

    bool Spread() {
        bool hasGrown = false;
        for (const Use& use : m_uses) {
            if (m_repeated[use.function] || !Has(use.around))
                continue;
            m_repeated[use.function] = true;
            hasGrown = true;
        }
        return hasGrown;
    }

    const QString& Text(int place) const { return m_source.Words()[static_cast<std::size_t>(place)].text; }

    const ScriptSource& m_source;
    std::vector<bool> m_repeated;
    QHash<QString, std::vector<std::size_t>> m_named;
    std::vector<Use> m_uses;
};

/// Whether the function looks first whether there is such an object already.
bool IsGuarded(const ScriptSource& source, const SourceFunction& function, const QString& name) {
    for (int place = function.open; place < function.close; ++place) {
        if (!source.IsName(place) || source.Words()[static_cast<std::size_t>(place)].text != name)
            continue;
        int start = place;
        while (source.IsSign(start - 1, ".") && source.IsName(start - 2))
            start -= 2;
        for (const char* sign : {"||", "==", "===", "!=", "!==", "&&"})
            if (source.IsSign(place + 1, sign))
                return true;
        const bool isAsked = source.IsSign(start - 1, "(") && source.IsName(start - 2, "if");
        if (isAsked || source.IsSign(start - 1, "!"))
            return true;
    }
    return false;
}

} // namespace

QList<ScriptNote> FindObjectNotes(const ScriptSource& source, const QScriptValue& global, const ScanResult& published) {
    QList<ScriptNote> notes = ObjectNoteTaker(source, global).Take();
    const MadeObjects objects(source);
    const RepeatedFunctions repeated(source, published);
    for (const Making& making : objects.Makings()) {
        const int around = source.FunctionAround(making.call);
        // A resource is the same object each time.
        if (making.kind == MadeKind::Resource || !repeated.Has(around))
            continue;
        const SourceFunction& function = source.Functions()[static_cast<std::size_t>(around)];
        const QString target =
            making.target > 0 ? source.Words()[static_cast<std::size_t>(making.target)].text : QString();
        if (!target.isEmpty() && IsGuarded(source, function, target))
            continue;
        const int line = source.Words()[static_cast<std::size_t>(making.call)].line;
        notes.append(MakeNote(NoteCode::ObjectMadeAgain, line,
                              source.Words()[static_cast<std::size_t>(making.call) + 2].text, {}));
    }
    return notes;
}
