#include "InputLines.h"

#include "BorderText.h"

namespace stagehost {

namespace {

constexpr int kStandardInput = 0; // the descriptor of every process

} // namespace

InputLines::InputLines() {
    ended_ = !input_.open(kStandardInput, QIODevice::ReadOnly | QIODevice::Unbuffered);
    if (ended_)
        return;
    notifier_ = std::make_unique<QSocketNotifier>(input_.handle(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { Read(); });
}

QString InputLines::TakeLine() {
    const QString line = lines_.front();
    lines_.pop_front();
    return line;
}

// One byte for each call: a file asked for more waits until it has all of it, while what the user typed waits for its end.
void InputLines::Read() {
    char byte = 0;
    if (input_.read(&byte, 1) > 0) {
        rest_.append(byte);
    } else {
        ended_ = true;
        notifier_->setEnabled(false);
        if (!rest_.isEmpty())
            rest_.append('\n');
    }
    for (int end = rest_.indexOf('\n'); end >= 0; end = rest_.indexOf('\n')) {
        lines_.push_back(FromOutsideText(rest_.left(end).toStdString()).trimmed());
        rest_.remove(0, end + 1);
    }
}

bool SplitWords(const QString& line, QStringList& words) {
    QString word;
    bool inWord = false;
    bool quoted = false;
    for (int index = 0; index < line.size(); ++index) {
        const QChar character = line.at(index);
        if (character == QLatin1Char('"')) {
            quoted = !quoted;
            inWord = true;
        } else if (character.isSpace() && !quoted) {
            if (inWord)
                words += word;
            word.clear();
            inWord = false;
        } else {
            const bool escapes = quoted && character == QLatin1Char('\\') && index + 1 < line.size();
            word += escapes ? line.at(++index) : character;
            inWord = true;
        }
    }
    if (inWord)
        words += word;
    return !quoted;
}

} // namespace stagehost
