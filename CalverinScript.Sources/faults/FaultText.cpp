#include "FaultText.h"

#include <algorithm>

namespace {

constexpr int kWidest = 100; // of a line of source
constexpr int kBeforeMark = 60;
constexpr int kFirstCalls = 12;
constexpr int kLastCalls = 3;

QString Place(const QString& file, int line) {
    return file + QLatin1Char(':') + QString::number(line);
}

/// The source without its indentation, of a long line the part about the mark; and the mark below it.
void AddSource(QStringList& lines, const ScriptFault& fault) {
    QString source = fault.source;
    source.replace(QLatin1Char('\t'), QLatin1Char(' '));
    int from = 0;
    while (from < fault.mark && from < source.size() && source[from].isSpace())
        ++from;
    QString before;
    if (source.size() - from > kWidest && fault.mark - from > kBeforeMark) {
        from = fault.mark - kBeforeMark;
        before = QStringLiteral("...");
    }
    const bool isCut = source.size() - from > kWidest;
    QString shown = source.mid(from, kWidest);
    while (shown.endsWith(QLatin1Char(' ')))
        shown.chop(1);
    lines += QStringLiteral("| ") + before + shown + (isCut ? QStringLiteral("...") : QString());
    lines += QStringLiteral("| ") + QString(before.size() + fault.mark - from, QLatin1Char(' ')) + QLatin1Char('^');
}

void AddCalls(QStringList& lines, const ScriptFault& fault, const QString& file) {
    const int count = static_cast<int>(fault.stack.size());
    for (int i = 0; i < count; ++i) {
        const FaultFrame& frame = fault.stack[static_cast<std::size_t>(i)];
        if (i == kFirstCalls && count > kFirstCalls + kLastCalls) {
            i = count - kLastCalls - 1;
            lines += QStringLiteral("... %1 more calls").arg(count - kFirstCalls - kLastCalls);
            continue;
        }
        lines += QStringLiteral("at %1 (%2)")
                     .arg(frame.function.isEmpty() ? QStringLiteral("a function") : frame.function,
                          Place(frame.file.isEmpty() ? file : frame.file, frame.line));
    }
}

} // namespace

QStringList LinesOf(const ScriptFault& fault, const QString& file) {
    const QString column = fault.column > 0 ? QLatin1Char(':') + QString::number(fault.column) : QString();
    const QString own = fault.file.isEmpty() ? file : fault.file;
    const QString place = fault.line > 0 ? Place(own, fault.line) + column : own;
    QStringList lines{place + QStringLiteral(": ") + fault.what};
    if (!fault.source.trimmed().isEmpty())
        AddSource(lines, fault);
    AddCalls(lines, fault, file);
    if (!fault.note.isEmpty())
        lines += QStringLiteral("note: ") + fault.note;
    return lines;
}
