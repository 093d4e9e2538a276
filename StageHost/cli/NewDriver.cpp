#include <algorithm>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QRegularExpression>

#include "Commands.h"
#include "ExitCodes.h"
#include "Output.h"
#include "Session.h"

static void LoadTemplates() {
    Q_INIT_RESOURCE(templates); // wants a function outside any namespace
}

namespace stagehost {

namespace {

constexpr const char* kConnectionFile = "connection.js";
constexpr int kLongestName = 60;

struct TemplateFile {
    const char* source; ///< in the template's folder
    const char* target; ///< "@NAME@" stands for the driver's name
    const char* meaning;
};

struct Template {
    const char* kind;
    bool connects;    ///< the driver carries the connection
    const char* fake; ///< what the driver is tried with
};

constexpr Template kTemplates[] = {
    {"tcp", true, "a device to talk to, played by the show"},
    {"udp", true, "a device to talk to, played by the show"},
    {"http", true, "a device to talk to, played by the show"},
    {"serial", true, "a device to talk to, played by the show"},
    {"logic", false, "a light to work, another script of the show"},
};

constexpr TemplateFile kDriver = {"driver.js", "@NAME@.js", "the driver: change this one"};
constexpr TemplateFile kShow = {"show.json", "show.json", "a show that plays them, and tests the driver"};

/// A file as it is written.
struct NewFile {
    QString name;
    QByteArray text;
    QString meaning;
};

QByteArray TemplateText(const QString& path) {
    QFile file(QStringLiteral(":/templates/") + path);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

std::vector<NewFile> FilesOf(const Template& made, const QString& name) {
    const auto filled = [&](QByteArray text) { return text.replace("@NAME@", name.toLatin1()); };
    std::vector<NewFile> files;
    for (const TemplateFile& file : {kDriver, TemplateFile{"fake.js", "fake.js", made.fake}, kShow}) {
        const QString source = QLatin1String(made.kind) + QLatin1Char('/') + QLatin1String(file.source);
        files.push_back(
            {QString::fromLatin1(filled(file.target)), filled(TemplateText(source)), QLatin1String(file.meaning)});
    }
    if (made.connects)
        files.insert(files.begin() + 1,
                     {QLatin1String(kConnectionFile), TemplateText(QLatin1String(kConnectionFile)),
                      QStringLiteral("the connection that goes in front of it, see docs/connection.md")});
    return files;
}

QString WhyNoName(const QString& name) {
    static const QRegularExpression form(QStringLiteral("^[A-Za-z][A-Za-z0-9_-]*$"));
    if (name.size() <= kLongestName && form.match(name).hasMatch())
        return {};
    return QStringLiteral(
               "a name begins with a letter and has letters, digits, \"-\" and \"_\", %1 at most; not \"%2\"")
        .arg(kLongestName)
        .arg(name);
}

MaybeFailure WriteFiles(const QString& folder, const std::vector<NewFile>& files) {
    if (QFileInfo(folder).exists() || QFileInfo(folder).isSymLink())
        return Failure{kExitBadUse, QStringLiteral("%1 is there already; nothing is overwritten").arg(folder)};
    if (!QDir().mkdir(folder))
        return Failure{kExitBadUse, QStringLiteral("cannot make the folder %1").arg(folder)};
    for (const NewFile& file : files) {
        QFile target(folder + QLatin1Char('/') + file.name);
        if (target.open(QIODevice::WriteOnly | QIODevice::NewOnly) && target.write(file.text) == file.text.size() &&
            target.flush())
            continue;
        const QString problem = target.errorString();
        target.close();
        QDir(folder).removeRecursively();
        return Failure{kExitBadUse, QStringLiteral("cannot write %1: %2").arg(target.fileName(), problem)};
    }
    return std::nullopt;
}

void Tell(const Options& options, const QString& name, const std::vector<NewFile>& files) {
    QVector<QStringList> rows;
    QJsonArray names;
    for (const NewFile& file : files) {
        const QString path = name + QLatin1Char('/') + file.name;
        rows.append({path, file.meaning});
        names.append(path);
    }
    if (options.json)
        return PrintJson({{QStringLiteral("ok"), true},
                          {QStringLiteral("error"), QString()},
                          {QStringLiteral("exitCode"), kExitOk},
                          {QStringLiteral("files"), names}});
    Print(Table(rows, {}));
    PrintLine(QStringLiteral("\nNext"));
    Print(Table({{QStringLiteral("stagehost run %1/show.json").arg(name), QStringLiteral("plays the show")},
                 {QStringLiteral("stagehost test %1").arg(name), QStringLiteral("tests the driver by it")},
                 {QStringLiteral("stagehost watch %1/show.json").arg(name),
                  QStringLiteral("runs it, shows what changes, does what you type")},
                 {QStringLiteral("stagehost check --strict %1/%1.js").arg(name),
                  QStringLiteral("tells what the driver publishes, and what it says in vain")}},
                QStringLiteral("  ")));
}

} // namespace

int NewDriver(const Options& options) {
    LoadTemplates();
    const QString kind = options.arguments.at(0);
    const QString name = options.arguments.at(1);
    const auto* made = std::find_if(std::begin(kTemplates), std::end(kTemplates),
                                    [&](const Template& one) { return kind == QLatin1String(one.kind); });
    if (made == std::end(kTemplates)) {
        QStringList kinds;
        for (const Template& one : kTemplates)
            kinds += QLatin1String(one.kind);
        return Fail(options.json, kExitBadUse,
                    QStringLiteral("there is no \"%1\" to begin with; there are %2")
                        .arg(kind, kinds.join(QStringLiteral(", "))));
    }
    const QString problem = WhyNoName(name);
    if (!problem.isEmpty())
        return Fail(options.json, kExitBadUse, problem);
    const std::vector<NewFile> files = FilesOf(*made, name);
    if (const auto failure = WriteFiles(name, files))
        return Fail(options.json, failure->exitCode, failure->text);
    Tell(options, name, files);
    return kExitOk;
}

} // namespace stagehost
