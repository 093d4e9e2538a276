#include "SettingNotes.h"

#include <QSet>

#include "DriverTables.h"
#include "ScriptSource.h"

namespace {

constexpr const char* kSetup = "Setup";

/// Fields that only show something.
constexpr const char* kFieldsToLookAt[] = {"Label", "Divider"};

bool IsToLookAt(const MScriptSetting& setting) {
    for (const char* field : kFieldsToLookAt)
        if (setting.widget == WidgetKindOf(QLatin1String(field)))
            return true;
    return false;
}

/// The names that a script reads from its `Setup`, as far as that can be followed.
class SetupReads {
public:
    explicit SetupReads(const ScriptSource& source)
        : m_source(source) {
        for (int place = 0; place < source.Count(); ++place)
            if (source.IsName(place, kSetup) && !IsDeclaration(place))
                LookAtUse(place);
        for (int place = 0; place < source.Count(); ++place)
            if (source.IsName(place) && m_aliases.contains(Text(place)) && !IsOtherMember(place))
                LookAtAlias(place);
        for (int place = 0; place < source.Count(); ++place)
            if (source.IsName(place, "with") || (source.IsName(place, "eval") && source.IsSign(place + 1, "(")))
                m_isClear = false;
    }

    bool IsClear() const { return m_isClear; }
    bool Has(const QString& name) const { return m_names.contains(name); }

private:
    const QString& Text(int place) const { return m_source.Words()[static_cast<std::size_t>(place)].text; }

    /// `Setup: ...`, `.Setup = ...`, and the one in `Info`.
    bool IsDeclaration(int place) const {
        return m_source.IsKey(place) || m_source.IsSign(place + 1, "=") ||
               (m_source.IsSign(place - 1, ".") && m_source.IsName(place - 2, "Info"));
    }

    /// A member of another object that has the same name.
    bool IsOtherMember(int place) const { return m_source.IsKey(place) || m_source.IsName(place - 1, "var"); }

    void LookAtUse(int place) {
        if (TakeMember(place))
            return;
        const int start = BeginOfChain(place);
        const bool isAlias = m_source.IsSign(start - 1, "=") && m_source.IsName(start - 2) && EndsThere(place + 1);
        if (isAlias)
            m_aliases.insert(Text(start - 2));
        else
            m_isClear = false;
    }

    void LookAtAlias(int place) {
        const bool isMade = m_source.IsSign(place + 1, "=");
        if (!isMade && !TakeMember(place))
            m_isClear = false;
    }

    /// Takes `X.name` and `X["name"]`. Setting a member is no reading of it.
    bool TakeMember(int place) {
        const int member = place + 2;
        const bool isDotted = m_source.IsSign(place + 1, ".") && m_source.IsName(member);
        const bool isInBrackets =
            m_source.IsSign(place + 1, "[") && m_source.IsText(member) && m_source.IsSign(place + 3, "]");
        if (!isDotted && !isInBrackets)
            return false;
        if (Text(member) == QLatin1String("hasOwnProperty"))
            return false;
        if (!m_source.IsSign(isDotted ? member + 1 : member + 2, "="))
            m_names.insert(Text(member));
        return true;
    }

    /// The first word of `this.Setup`, `driver.Setup`, `Setup`.
    int BeginOfChain(int place) const {
        while (m_source.IsSign(place - 1, ".") && m_source.IsName(place - 2))
            place -= 2;
        return place;
    }

    bool EndsThere(int place) const {
        return m_source.IsSign(place, ";") || m_source.IsSign(place, ",") || m_source.IsName(place, "var");
    }

    const ScriptSource& m_source;
    QSet<QString> m_names;
    QSet<QString> m_aliases;
    bool m_isClear = true;
};

} // namespace

QList<ScriptNote> FindSettingNotes(const ScriptSource& source, const ScriptSettings& settings) {
    QList<ScriptNote> notes;
    const SetupReads reads(source);
    if (!reads.IsClear())
        return notes;
    for (const MScriptSetting& setting : settings)
        if (!IsToLookAt(setting) && !reads.Has(setting.name))
            notes.append(MakeNote(NoteCode::SettingNotRead, source.LineOf({QLatin1String(kSetup), setting.name}),
                                  QStringLiteral("Setup.") + setting.name));
    return notes;
}
