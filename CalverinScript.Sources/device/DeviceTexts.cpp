#include "DeviceTexts.h"

#include <QScriptValue>

QString ScriptFailure(const QString& text) {
    return QStringLiteral("Script: ") + text;
}

QString UncaughtAtLine(int line, const QString& exception) {
    return ScriptFailure(QStringLiteral("Uncaught exception at line ") + QString::number(line) + QStringLiteral(", ") +
                         exception);
}

QString NoSuchFunction(const QString& name) {
    return name + QStringLiteral(" function is not defined");
}

QString FailedMember(const QString& name, const QString& message) {
    return name + QStringLiteral(": ") + message;
}

QString NoTimerFor(int delayMs) {
    return QStringLiteral("A timer with a delay of ") + QString::number(delayMs) +
           QStringLiteral(" ms starts nothing.");
}

QString UncaughtForLog(const QString& line, const QString& message) {
    return QStringLiteral("Uncaught Exception - line:") + line + QStringLiteral(", message: ") + message;
}

QString MessageOf(const QScriptValue& error) {
    return error.property(QStringLiteral("message")).toString();
}
