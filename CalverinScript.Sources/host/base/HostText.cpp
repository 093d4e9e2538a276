#include "HostText.h"

#include <QFile>
#include <QTextCodec>

QByteArray ToHostText(const QString& text) {
    return text.toLatin1();
}

QString FromHostText(const char* text) {
    return QString::fromLatin1(text);
}

std::string ToFilePath(const char* hostText) {
    return QFile::encodeName(FromHostText(hostText)).toStdString();
}

QString FromScriptBytes(const QByteArray& bytes) {
    QTextCodec::ConverterState state;
    const QString text = QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    const bool valid = state.invalidChars == 0 && state.remainingChars == 0;
    return valid ? text : QString::fromLatin1(bytes);
}
