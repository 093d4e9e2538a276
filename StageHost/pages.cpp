#include <cstdio>

#include <QString>

#include "ManualPages.h"

using namespace stagehost;

/// Prints a page about the program, made of its own tables: "stagehostpages man VERSION", "stagehostpages bash" or
/// "stagehostpages zsh".
int main(int count, char** words) {
    const QString kind = QString::fromUtf8(count > 1 ? words[1] : "");
    const QString version = QString::fromUtf8(count > 2 ? words[2] : "");
    const QString text = kind == QLatin1String("man")    ? ManualPage(version)
                         : kind == QLatin1String("bash") ? BashCompletion()
                         : kind == QLatin1String("zsh")  ? ZshCompletion()
                                                         : QString();
    const QByteArray bytes = text.toUtf8();
    const auto size = static_cast<std::size_t>(bytes.size());
    const bool written = std::fwrite(bytes.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0;
    return written && size > 0 ? 0 : 2;
}
