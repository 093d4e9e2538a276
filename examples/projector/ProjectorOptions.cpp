#include "ProjectorOptions.h"

#include <QCommandLineParser>
#include <QRegularExpression>

#include "Protocol.h"

namespace projector {

namespace {

QString Text(const char* text) {
    return QString::fromLatin1(text);
}

/// One row for each option: how it is written, what stands behind it, what it does, and how it is taken.
struct Row {
    const char* name;
    const char* value; ///< empty: nothing stands behind it
    const char* help;
    bool (*take)(Options& options, const QString& value); ///< false: the value is none
};

bool TakeNumber(const QString& value, int least, int most, int& number) {
    bool good = false;
    const int read = value.toInt(&good);
    if (!good || read < least || read > most)
        return false;
    number = read;
    return true;
}

bool TakeTime(const QString& value, int& milliseconds) {
    return TakeNumber(value, 0, 24 * 3600 * 1000, milliseconds);
}

bool TakePort(Options& options, const QString& value) {
    int port = 0;
    if (!TakeNumber(value, 0, 65535, port))
        return false;
    options.port = static_cast<quint16>(port);
    return true;
}

bool Matches(const QString& value, const char* pattern) {
    return QRegularExpression(QRegularExpression::anchoredPattern(Text(pattern))).match(value).hasMatch();
}

bool TakePassword(Options& options, const QString& value) {
    options.password = value.toLatin1();
    return Matches(value, "[A-Za-z0-9]{1,32}");
}

bool TakeName(Options& options, const QString& value) {
    options.description.name = value;
    return value.toUtf8().size() <= 64 && !Matches(value, ".*[\\r\\n].*");
}

bool TakeInputs(Options& options, const QString& value) {
    options.description.inputs = value.split(QLatin1Char(','));
    return Matches(value, "[1-5][1-9](,[1-5][1-9]){0,41}");
}

bool TakeLamps(Options& options, const QString& value) {
    options.description.lampHours.clear();
    if (value == QLatin1String("none"))
        return true;
    for (const QString& hours : value.split(QLatin1Char(',')))
        options.description.lampHours += hours.toInt();
    return Matches(value, "\\d{1,5}(,\\d{1,5}){0,7}");
}

bool TakeErrors(Options& options, const QString& value) {
    options.description.errors = value;
    return Matches(value, "[0-2]{6}");
}

constexpr Row kRows[] = {
    {"port", "PORT", "the port to listen on; 0, the default, lets the system choose", &TakePort},
    {"password", "TEXT", "ask clients for this password: 1 to 32 letters and digits", &TakePassword},
    {"warm-up", "MS", "time from off to on; 3000 if not given",
     [](Options& o, const QString& v) { return TakeTime(v, o.description.warmUp); }},
    {"cool-down", "MS", "time from on to off; 3000 if not given",
     [](Options& o, const QString& v) { return TakeTime(v, o.description.coolDown); }},
    {"name", "TEXT", "the projector's name", &TakeName},
    {"inputs", "LIST", "its inputs; 11,21,31,32 if not given", &TakeInputs},
    {"lamps", "LIST", "the hours of each lamp, or none; 0 if not given", &TakeLamps},
    {"errors", "DIGITS", "fan, lamp, temperature, cover, filter, other: 0 fine, 1 warning, 2 error", &TakeErrors},
    {"broken", "", "power, input and mute answer with a failure",
     [](Options& o, const QString&) { return o.description.broken = true; }},
    {"idle", "MS", "send clients away that say nothing for so long; 30000 if not given",
     [](Options& o, const QString& v) { return TakeTime(v, o.idle); }},
    {"drop-after", "N", "close each connection after N answers",
     [](Options& o, const QString& v) { return TakeNumber(v, 1, 1000000, o.dropAfter); }},
    {"slow", "MS", "wait before each answer", [](Options& o, const QString& v) { return TakeTime(v, o.slow); }},
    {"split", "", "send answers byte by byte", [](Options& o, const QString&) { return o.split = true; }},
    {"trace", "", "print each command as it comes", [](Options& o, const QString&) { return o.trace = true; }},
    {"help", "", "this text", [](Options& o, const QString&) { return o.help = true; }},
};

void AddOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        Text("A projector that speaks PJLink class 1 on the loopback address, to try drivers on.\n"
             "Prints its port when it listens, and works until it is ended.\n\n"
             "Exit codes: 0 ended or help shown, 2 bad use, 3 the port cannot be had."));
    for (const Row& row : kRows)
        parser.addOption(QCommandLineOption(Text(row.name), Text(row.help), Text(row.value)));
}

} // namespace

Options ReadOptions(const QStringList& words) {
    Options options;
    QCommandLineParser parser;
    AddOptions(parser);
    if (!parser.parse(words))
        options.problem = parser.errorText();
    else if (!parser.positionalArguments().isEmpty())
        options.problem = Text("unexpected: ") + parser.positionalArguments().constFirst();
    for (const Row& row : kRows) {
        const QString name = Text(row.name);
        if (options.problem.isEmpty() && parser.isSet(name) && !row.take(options, parser.value(name)))
            options.problem = Text("--%1 does not take \"%2\"").arg(name, parser.value(name));
    }
    return options;
}

QString HelpText() {
    QCommandLineParser parser;
    AddOptions(parser);
    return parser.helpText();
}

} // namespace projector
