#include "ArgumentReader.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <QCommandLineParser>

#include "LogLine.h"
#include "NearNames.h"

namespace stagehost {

namespace {

constexpr OptionRow kOptions[] = {
    {"timeout", nullptr, "MS", "how long to wait for each answer of a script, in ms (10000)"},
    {"link", nullptr, "both|newer|older|none", "which remote links the host offers; scripts use the newer one (both)"},
    {"set", nullptr, "[DEVICE.]NAME=VALUE",
     "give a setting of a device a value for this run; may stand more than once"},
    {"reload", nullptr, nullptr, "run, watch: a script that is saved is run at once, with settings and values kept"},
    {"json", nullptr, nullptr, "output for programs: one JSON text"},
    {"log", nullptr, nullptr, "show all of the log on standard error; --log=DEVICE shows that of one device"},
    {"log-level", nullptr, "LEVEL",
     "show traces from this level on: debug, comment, info, normalplus, normal, alarm, error, fatal"},
    {"log-file", nullptr, "FILE", "keep the device log in this file"},
    {"module", nullptr, "FILE", "the module to load (kxpCalverinScript.kxp6 beside the program)"},
    {"speed", nullptr, "N", "run, watch, test: the time of the show runs N times as fast, from 1 to 3600"},
    {"clock", nullptr, "TIME",
     "run, watch, test: the time at which the show begins, as 19:30 or \"2026-12-24 19:30:00\""},
    {"keep-going", nullptr, nullptr, "run, test: play the steps behind one that failed too"},
    {"tap", nullptr, nullptr, "run, test: tell the steps, or the tests, as TAP, for test programs"},
    {"junit", nullptr, "FILE", "run, test: write the steps into this file as JUnit XML, for CI"},
    {"within", nullptr, "MS", "test: how long each test may take, in ms of the computer (60000)"},
    {"jobs", nullptr, "N", "test: how many tests are played at once (as many as there are processors)"},
    {"strict", nullptr, nullptr, "check: a note counts as a failure"},
    {"wait", nullptr, "NAME=VALUE",
     "send: wait first until this is so, also with !=, <, <=, >, >= or ~; may stand more than once"},
    {"listen", nullptr, "[HOST:]PORT",
     "counterpart, record, replay: be reached there (any free port of 127.0.0.1); for a serial line the path of a "
     "link"},
    {"seed", nullptr, "N", "counterpart: draw the same chance as another run with this number"},
    {"window", nullptr, nullptr, "setup: let the user change the device's setup in its dialog"},
    {"tcp", nullptr, "[LISTEN:]HOST:PORT",
     "record: the device, and before it the port, or the address and port, that programs connect to"},
    {"udp", nullptr, "[LISTEN:]HOST:PORT", "record: the same for a device that takes datagrams"},
    {"serial", nullptr, "PORT", "record: the serial port of the device"},
    {"line", nullptr, "BAUD[,BITS][,rts]",
     "record: the settings of the serial line, such as 9600,8n1 (what the port has)"},
    {"mischief", nullptr, "SEED", "record: the line misbehaves, each time the same with the same number"},
    {"pranks", nullptr, "LIST", "record: with what, such as late,cut,reset (everything it can)"},
    {"one-in", nullptr, "N", "record: how many pieces pass on the average before one is played with (4)"},
    {"fast", nullptr, nullptr, "replay: answer at once and not after the time that it took"},
    {"any-order", nullptr, nullptr, "replay: answer requests in whatever order they come"},
    {"help", "h", nullptr, "this help"},
    {"version", "v", nullptr, "the version of stagehost"},
};

struct LinkRow {
    const char* name;
    Link link;
};

constexpr LinkRow kLinks[] = {
    {"both", Link::Both}, {"newer", Link::Newer}, {"older", Link::Older}, {"none", Link::None}};

constexpr int kExecWordsBeforeArguments = 3; // exec FILE FUNCTION
constexpr int kLongestTimeout = 24 * 60 * 60 * 1000;
constexpr int kMostJobs = 256;

/// A number from 1 on.
std::optional<int> WholeNumber(const QString& text, int highest) {
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    return isNumber && number >= 1 && number <= highest ? std::optional(number) : std::nullopt;
}

QString NeedsMilliseconds(const char* option, const QString& text) {
    return QStringLiteral("--%1 needs a number of milliseconds from 1 to %2, not \"%3\"")
        .arg(QLatin1String(option))
        .arg(kLongestTimeout)
        .arg(text);
}

bool TakesNextWord(const QString& word) {
    return std::any_of(std::begin(kOptions), std::end(kOptions), [&](const OptionRow& option) {
        return option.value != nullptr && word == QLatin1String("--") + QLatin1String(option.name);
    });
}

void AddOptions(QCommandLineParser& parser) {
    for (const auto& option : kOptions) {
        QStringList names{QLatin1String(option.name)};
        if (option.shortName != nullptr)
            names.prepend(QLatin1String(option.shortName));
        parser.addOption({names, {}, QLatin1String(option.value == nullptr ? "" : option.value)});
    }
}

QString Misunderstood(const QCommandLineParser& parser) {
    const QStringList unknown = parser.unknownOptionNames();
    if (unknown.isEmpty())
        return parser.errorText();
    QStringList known;
    for (const auto& option : kOptions)
        known += QLatin1String("--") + QLatin1String(option.name);
    const QString name = (unknown.first().size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + unknown.first();
    return QStringLiteral("there is no option \"%1\"").arg(name) + NamesInstead(name, known);
}

} // namespace

QString ArgumentReader::Read(const QStringList& typed) {
    const QStringList words = TakeLogDevices(typed);
    const int own = OwnWords(words);
    QCommandLineParser parser;
    AddOptions(parser);
    const bool understood = parser.parse(QStringList(QStringLiteral("stagehost")) + words.mid(0, own));
    const auto isSet = [&](const char* name) { return parser.isSet(QLatin1String(name)); };
    const auto value = [&](const char* name) { return parser.value(QLatin1String(name)); };
    m_options.json = isSet("json");
    m_options.help = isSet("help");
    m_options.version = isSet("version");
    m_options.log = isSet("log");
    m_options.strict = isSet("strict");
    m_options.keepGoing = isSet("keep-going");
    m_options.tap = isSet("tap");
    m_options.junitFile = value("junit");
    m_options.listen = value("listen");
    m_options.waits = parser.values(QStringLiteral("wait"));
    m_options.window = isSet("window");
    m_options.reload = isSet("reload");
    m_options.sets = parser.values(QStringLiteral("set"));
    m_options.tcp = value("tcp");
    m_options.udp = value("udp");
    m_options.serial = value("serial");
    m_options.line = value("line");
    m_options.mischief = value("mischief");
    m_options.pranks = value("pranks");
    m_options.oneIn = value("one-in");
    m_options.fast = isSet("fast");
    m_options.anyOrder = isSet("any-order");
    m_options.logFile = value("log-file");
    m_options.module = value("module");
    const QStringList rest = parser.positionalArguments() + words.mid(own);
    m_options.command = rest.value(0);
    m_options.arguments = rest.mid(1);
    if (!understood)
        return Misunderstood(parser);
    for (const char* name : {"log-file", "module", "junit"}) {
        if (isSet(name) && value(name).isEmpty())
            return QStringLiteral("--%1 needs the name of a file").arg(QLatin1String(name));
    }
    for (const QString& set : m_options.sets) {
        if (set.indexOf(QLatin1Char('=')) < 1)
            return QStringLiteral("--set needs NAME=VALUE or DEVICE.NAME=VALUE, not \"%1\"").arg(set);
    }
    if (m_options.tap && m_options.json)
        return QStringLiteral("--tap and --json are two forms of one output: take one");
    using ReadOne = QString (ArgumentReader::*)(const QString& text);
    constexpr std::pair<const char*, ReadOne> kValues[] = {
        {"timeout", &ArgumentReader::ReadTimeout}, {"log-level", &ArgumentReader::ReadLevel},
        {"link", &ArgumentReader::ReadLink},       {"speed", &ArgumentReader::ReadSpeed},
        {"clock", &ArgumentReader::ReadClockTime}, {"within", &ArgumentReader::ReadWithin},
        {"jobs", &ArgumentReader::ReadJobs},       {"seed", &ArgumentReader::ReadSeed}};
    for (const auto& [name, read] : kValues) {
        QString problem = isSet(name) ? (this->*read)(value(name)) : QString();
        if (!problem.isEmpty())
            return problem;
    }
    return {};
}

/// "--log=DEVICE" is "--log" with a device; toolkits know no option whose value may be missing.
QStringList ArgumentReader::TakeLogDevices(const QStringList& words) {
    const QString begin = QStringLiteral("--log=");
    QStringList taken = words;
    for (int index = OwnWords(words) - 1; index >= 0; --index) {
        if (!taken.at(index).startsWith(begin))
            continue;
        m_options.logDevices.prepend(taken.at(index).mid(begin.size()));
        taken[index] = QStringLiteral("--log");
    }
    return taken;
}

QString ArgumentReader::ReadLevel(const QString& text) {
    QStringList known;
    for (const auto& level : kLogLevels) {
        if (text.compare(QLatin1String(level.name), Qt::CaseInsensitive) == 0) {
            m_options.leastLevel = WeightOfLevel(level.number);
            return {};
        }
        known += QLatin1String(level.name);
    }
    return QStringLiteral("there is no level \"%1\"").arg(text) + NamesInstead(text, known);
}

/// The count of words that may be options of the program: all, or those up to the function of `exec`.
int ArgumentReader::OwnWords(const QStringList& words) {
    QStringList plain;
    bool optionsEnded = false;
    for (int index = 0; index < words.size(); ++index) {
        const QString& word = words.at(index);
        const bool option = !optionsEnded && word.size() > 1 && word.startsWith(QLatin1Char('-'));
        if (option) {
            optionsEnded = word == QLatin1String("--");
            index += TakesNextWord(word) ? 1 : 0;
            continue;
        }
        plain += word;
        if (plain.first() == QLatin1String("exec") && plain.size() == kExecWordsBeforeArguments)
            return index + 1;
    }
    return words.size();
}

QString ArgumentReader::ReadTimeout(const QString& text) {
    const auto milliseconds = WholeNumber(text, kLongestTimeout);
    m_options.timeout = std::chrono::milliseconds(milliseconds.value_or(0));
    return milliseconds ? QString() : NeedsMilliseconds("timeout", text);
}

QString ArgumentReader::ReadWithin(const QString& text) {
    const auto milliseconds = WholeNumber(text, kLongestTimeout);
    m_options.within = std::chrono::milliseconds(milliseconds.value_or(0));
    return milliseconds ? QString() : NeedsMilliseconds("within", text);
}

QString ArgumentReader::ReadJobs(const QString& text) {
    m_options.jobs = WholeNumber(text, kMostJobs);
    return m_options.jobs
               ? QString()
               : QStringLiteral("--jobs needs a whole number from 1 to %1, not \"%2\"").arg(kMostJobs).arg(text);
}

/// Only what plays a show has a time of its own.
QString ArgumentReader::ReadSpeed(const QString& text) {
    const auto speed = WholeNumber(text, kFastest);
    m_options.clock.speed = speed.value_or(1);
    if (!speed)
        return QStringLiteral("--speed needs a whole number from 1 to %1, not \"%2\"").arg(kFastest).arg(text);
    return WhyNoClock("speed");
}

QString ArgumentReader::ReadClockTime(const QString& text) {
    m_options.clockText = text;
    m_options.clock.begin = ReadClock(text);
    if (m_options.clock.begin.isNull())
        return QStringLiteral(
                   "--clock needs a time of the years %1 to %2 as 19:30, 19:30:00 or \"2026-12-24 19:30:00\", "
                   "that the clocks here show; not \"%3\"")
            .arg(kFirstYear)
            .arg(kLastYear)
            .arg(text);
    return WhyNoClock("clock");
}

QString ArgumentReader::WhyNoClock(const char* option) const {
    constexpr const char* kWithClock[] = {"", "run", "watch", "test"};
    const bool has = std::any_of(std::begin(kWithClock), std::end(kWithClock),
                                 [&](const char* name) { return m_options.command == QLatin1String(name); });
    return has ? QString() : QStringLiteral("--%1 is for run, watch and test").arg(QLatin1String(option));
}

QString ArgumentReader::ReadSeed(const QString& text) {
    bool isNumber = false;
    m_options.seed = text.toUInt(&isNumber);
    return isNumber ? QString() : QStringLiteral("--seed needs a whole number from 0 on, not \"%1\"").arg(text);
}

QString ArgumentReader::ReadLink(const QString& text) {
    m_options.linkText = text;
    for (const auto& row : kLinks) {
        if (text == QLatin1String(row.name)) {
            m_options.link = row.link;
            return {};
        }
    }
    return QStringLiteral("--link is \"both\", \"newer\", \"older\" or \"none\", not \"%1\"").arg(text);
}

std::vector<OptionRow> AllOptions() {
    return {std::begin(kOptions), std::end(kOptions)};
}

QString OptionHelp() {
    QString text;
    for (const auto& option : kOptions) {
        QString form = QLatin1String("--") + QLatin1String(option.name);
        if (option.value != nullptr)
            form += QLatin1Char(' ') + QLatin1String(option.value);
        text += QStringLiteral("  %1  %2\n").arg(form, -28).arg(QLatin1String(option.help));
    }
    return text;
}

} // namespace stagehost
