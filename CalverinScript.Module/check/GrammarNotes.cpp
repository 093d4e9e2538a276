#include "GrammarNotes.h"

#include "SourceTokens.h"
#include "SyntaxAdvice.h"
#include "SyntaxReader.h"

QList<ScriptNote> FindGrammarNotes(const QString& script) {
    QList<ScriptNote> notes;
    if (ReadSyntax(script).kind != SyntaxBreak::Kind::None) {
        const SyntaxAdvice advice = AdviceOn(script, 0);
        notes.append(MakeNote(NoteCode::PassedOver, advice.line, advice.what));
    }
    for (const LostJump& jump : FindLostJumps(script))
        notes.append(MakeNote(NoteCode::LostJump, LineOf(script, jump.offset), jump.word));
    return notes;
}
