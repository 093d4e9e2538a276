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
    QString line = lines_.front();
    lines_.pop_front();
    return line;
}

/// One character at a time: that much is there for certain, and asking for more would wait for it.
void InputLines::Read() {
    char character = '\n';
    ended_ = input_.read(&character, 1) <= 0;
    notifier_->setEnabled(!ended_);
    if (!ended_ && character != '\n') {
        rest_.append(character);
        return;
    }
    if (!ended_ || !rest_.isEmpty())
        lines_.push_back(FromOutsideText(rest_.toStdString()).trimmed());
    rest_.clear();
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
