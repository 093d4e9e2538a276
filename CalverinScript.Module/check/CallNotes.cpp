#include "CallNotes.h"

#include <algorithm>
#include <climits>

#include <QHash>
#include <QMetaMethod>

#include "MScriptMngRemote.h"
#include "NameGuess.h"
#include "ScriptCalls.h"
#include "ScriptSource.h"

namespace {

constexpr const char* kBridgeName = "QCalverin";

/// How many arguments a call takes.
struct CallRange {
    int fewest;
    int most;
};

/// The calls of the table, each with what the bridge itself takes: a method has an entry for each of its shorter forms.
QHash<QString, CallRange> CallRanges() {
    QHash<QString, CallRange> ranges;
    const auto add = [&](const char* call) {
        ranges.insert(QString::fromLatin1(call).section(QLatin1Char('.'), 1), {INT_MAX, 0});
    };
    for (const ScriptCall& call : kScriptCalls)
        add(call.name);
    for (const char* call : kUnofferedCalls)
        add(call);
    const QMetaObject& bridge = MScriptMngRemote::staticMetaObject;
    for (int i = bridge.methodOffset(); i < bridge.methodCount(); ++i) {
        const auto range = ranges.find(QString::fromLatin1(bridge.method(i).name()));
        if (range == ranges.end())
            continue;
        range->fewest = std::min(range->fewest, bridge.method(i).parameterCount());
        range->most = std::max(range->most, bridge.method(i).parameterCount());
    }
    return ranges;
}

const QHash<QString, CallRange>& KnownCalls() {
    static const QHash<QString, CallRange> known = CallRanges();
    return known;
}

/// What every object of the language has.
const QStringList& MembersOfEveryObject() {
    static const QStringList names =
        QStringLiteral("toString toLocaleString valueOf constructor hasOwnProperty isPrototypeOf propertyIsEnumerable")
            .split(QLatin1Char(' '));
    return names;
}

QString ArgumentCount(int count) {
    return QStringLiteral("%1 argument%2").arg(count).arg(QLatin1String(count == 1 ? "" : "s"));
}

/// The walk over what a script does with the bridge.
class CallNoteTaker {
public:
    explicit CallNoteTaker(const ScriptSource& source)
        : m_source(source) {}

    QList<ScriptNote> Take() {
        if (m_source.Declares(QLatin1String(kBridgeName)))
            return {}; // the script means something of its own
        CollectOwnMembers();
        for (int place = 0; place < m_source.Count(); ++place)
            if (const int member = MemberAt(place))
                LookAt(member);
        return std::move(m_notes);
    }

private:
    /// The place of the member in `QCalverin.member` and `QCalverin["member"]`; 0 when there is none.
    int MemberAt(int place) const {
        if (!m_source.IsName(place, kBridgeName) || m_source.IsSign(place - 1, ".") || m_source.IsKey(place))
            return 0;
        if (m_source.IsSign(place + 1, ".") && m_source.IsName(place + 2))
            return place + 2;
        const bool isText =
            m_source.IsSign(place + 1, "[") && m_source.IsText(place + 2) && m_source.IsSign(place + 3, "]");
        return isText ? place + 2 : 0;
    }

    int Behind(int member) const { return m_source.IsText(member) ? member + 2 : member + 1; }
    const SourceWord& Word(int place) const { return m_source.Words()[static_cast<std::size_t>(place)]; }

    /// What a script adds to the object is there.
    void CollectOwnMembers() {
        for (int place = 0; place < m_source.Count(); ++place) {
            const int member = MemberAt(place);
            if (member > 0 && m_source.IsSign(Behind(member), "="))
                m_ownMembers.append(Word(member).text);
        }
    }

    void LookAt(int member) {
        const QString& name = Word(member).text;
        const QString where = QStringLiteral("%1.%2").arg(QLatin1String(kBridgeName), name);
        const bool isCall = m_source.IsSign(Behind(member), "(");
        const auto known = KnownCalls().constFind(name);
        if (known != KnownCalls().constEnd()) {
            if (isCall)
                CountArguments(member, where, *known);
            return;
        }
        if (m_ownMembers.contains(name) || MembersOfEveryObject().contains(name) || IsAskedFor(member))
            return;
        m_notes.append(MakeNote(isCall ? NoteCode::UnknownCall : NoteCode::UnknownMember, Word(member).line, where,
                                {MayBeMeant(name, KnownCalls().keys())}));
    }

    /// `if (QCalverin.New)` and `typeof QCalverin.New` ask whether there is such a member.
    bool IsAskedFor(int member) const {
        const int before = member - 3; // in front of the name and its point or bracket
        return m_source.IsName(before, "typeof") || m_source.IsSign(before, "!") ||
               (!m_source.IsSign(Behind(member), "(") && m_source.IsSign(before, "("));
    }

    void CountArguments(int member, const QString& where, const CallRange& range) {
        const int count = static_cast<int>(m_source.Arguments(Behind(member)).size());
        if (count < range.fewest)
            m_notes.append(MakeNote(NoteCode::TooFewArguments, Word(member).line, where,
                                    {ArgumentCount(count), QString::number(range.fewest)}));
        else if (count > range.most)
            m_notes.append(MakeNote(NoteCode::TooManyArguments, Word(member).line, where,
                                    {ArgumentCount(count), QString::number(range.most)}));
    }

    const ScriptSource& m_source;
    QStringList m_ownMembers;
    QList<ScriptNote> m_notes;
};

} // namespace

QList<ScriptNote> FindCallNotes(const ScriptSource& source) {
    return CallNoteTaker(source).Take();
}
