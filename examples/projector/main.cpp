#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <QCoreApplication>

#include "ProjectorOptions.h"
#include "Server.h"

namespace {

constexpr int kEnded = 0;
constexpr int kBadUse = 2;
constexpr int kNoPort = 3;

/// For others that read along, each line leaves at once.
void Print(FILE* stream, const QString& line) {
    std::fprintf(stream, "%s\n", line.toUtf8().constData());
    std::fflush(stream);
}

void EndOnSignals() {
    for (const int number : {SIGINT, SIGTERM})
        std::signal(number, [](int) { std::_Exit(kEnded); });
}

} // namespace

int main(int argc, char** argv) {
    EndOnSignals();
    const QCoreApplication application(argc, argv);
    const projector::Options options = projector::ReadOptions(QCoreApplication::arguments());
    if (!options.problem.isEmpty()) {
        Print(stderr, QStringLiteral("projector: ") + options.problem);
        return kBadUse;
    }
    if (options.help) {
        Print(stdout, projector::HelpText());
        return kEnded;
    }
    projector::Server server(options);
    if (options.trace)
        server.OnCommand([](const QByteArray& line) { Print(stdout, QString::fromLatin1(line)); });
    if (!server.Listen()) {
        Print(stderr, QStringLiteral("projector: port %1: %2").arg(options.port).arg(server.ErrorText()));
        return kNoPort;
    }
    Print(stdout, QStringLiteral("listening on 127.0.0.1:%1").arg(server.Port()));
    return QCoreApplication::exec();
}
