#include "BorderText.h"

#include <algorithm>

#include <QTextCodec>

namespace stagehost {

std::string ToBorderText(const QString& text, bool* lost) {
    std::string bytes;
    bytes.reserve(static_cast<std::size_t>(text.size()));
    for (const uint character : text.toUcs4()) {
        const bool fits = character != 0 && character <= 0xFF;
        if (!fits && lost != nullptr)
            *lost = true;
        if (character == 0)
            break;
        bytes.push_back(fits ? static_cast<char>(character) : '?');
    }
    return bytes;
}

QString FromBorderText(const char* text) {
    return QString::fromLatin1(text);
}

QString FromBorderText(const std::string& text) {
    return QString::fromLatin1(text.data(), static_cast<int>(text.size()));
}

QString FromOutsideText(const std::string& bytes) {
    QTextCodec::ConverterState state;
    const QTextCodec* utf8 = QTextCodec::codecForName("UTF-8");
    const QString text = utf8->toUnicode(bytes.data(), static_cast<int>(bytes.size()), &state);
    return state.invalidChars == 0 && state.remainingChars == 0 ? text : FromBorderText(bytes);
}

char* CopyBorderText(std::string_view text) {
    char* copy = new char[text.size() + 1];
    std::copy(text.begin(), text.end(), copy);
    copy[text.size()] = '\0';
    return copy;
}

void FreeBorderText(char** text) {
    if (text == nullptr)
        return;
    delete[] * text;
    *text = nullptr;
}

} // namespace stagehost
