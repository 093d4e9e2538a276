#include "HostText.h"

#include <algorithm>

#include <QFile>
#include <QTextCodec>

QByteArray ToHostText(const QString& text) {
    return text.toLatin1();
}

bool FitsHostText(const QString& text) {
    return std::all_of(text.begin(), text.end(),
                       [](QChar character) { return character.row() == 0 && !character.isNull(); });
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
