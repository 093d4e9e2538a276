#include "CallNotes.h"

#include <iterator>

#include <QRegularExpression>
#include <QSet>

#include "ScriptCalls.h"

namespace {

/// Texts, comments, and calls with their name caught.
const char* const kPattern = R"("(?:[^"\\\n]|\\.)*+"|'(?:[^'\\\n]|\\.)*+'|//[^\n]*+|/\*.*?\*/)"
                             R"(|(?<![.\w$])QCalverin\s*+\.\s*+([A-Za-z_$][\w$]*+)\s*+\()";

const QSet<QString>& KnownCalls() {
    static const QSet<QString> known = [] {
        QSet<QString> names;
        for (const ScriptCall& call : kScriptCalls)
            names.insert(QLatin1String(call.name));
        for (const char* call : kUnofferedCalls)
            names.insert(QLatin1String(call));
        return names;
    }();
    return known;
}

} // namespace

QList<ScriptNote> FindCallNotes(const QString& script) {
    static const QRegularExpression pattern(QLatin1String(kPattern), QRegularExpression::DotMatchesEverythingOption);
    QList<ScriptNote> notes;
    int line = 1;
    int counted = 0; // the lines up to here
    for (auto matches = pattern.globalMatch(script); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        const QString name = QStringLiteral("QCalverin.") + match.captured(1);
        if (match.captured(1).isEmpty() || KnownCalls().contains(name))
            continue;
        line += script.midRef(counted, match.capturedStart() - counted).count(QLatin1Char('\n'));
        counted = match.capturedStart();
        notes.append({QStringLiteral("line %1").arg(line), name + QStringLiteral(": there is no such call")});
    }
    return notes;
}
