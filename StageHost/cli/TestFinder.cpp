#include "TestFinder.h"

#include <algorithm>
#include <filesystem>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include "ExitCodes.h"
#include "ShowReader.h"
#include "TextFile.h"

namespace stagehost {

namespace {

constexpr char kTestEnd[] = ".test.json";
constexpr qint64 kLargestShow = 16 * 1024 * 1024; // bytes; other programs keep larger things in such files

bool SaysThatItIsATest(const QString& file) {
    if (file.endsWith(QLatin1String(kTestEnd)))
        return true;
    if (QFileInfo(file).size() > kLargestShow)
        return false;
    QString problem;
    const auto bytes = ReadTextBytes(file, &problem);
    if (!bytes || !bytes->contains("\"test\""))
        return false;
    QJsonParseError error{};
    const QJsonValue test = QJsonDocument::fromJson(*bytes, &error).object().value(QLatin1String("test"));
    if (error.error != QJsonParseError::NoError) // a show, which its run tells; other programs have files of other keys
        return bytes->contains("\"steps\"") || bytes->contains("\"devices\"");
    return !test.isUndefined() && test != QJsonValue(false); // what is wrong with another value, its run tells
}

ShowTest SettingsOf(const QString& file) {
    QString problem;
    const auto bytes = ReadTextBytes(file, &problem);
    ShowReader reader;
    const auto show = bytes ? reader.Read(*bytes, file) : std::nullopt;
    return show ? show->test.value_or(ShowTest()) : ShowTest();
}

class Finder {
public:
    explicit Finder(std::vector<TestShow>& tests)
        : m_tests(tests) {}

    void Add(const QString& file) {
        const QString path = QFileInfo(file).canonicalFilePath(); // empty where there is none
        if (!path.isEmpty() && m_known.contains(path))
            return;
        m_known += path;
        m_tests.push_back({file, SettingsOf(file)});
    }

    void Search(const QString& folder) {
        LookForUnreadableNames(folder);
        const QDir here(folder);
        const auto name = [&](const QString& entry) {
            return folder == QLatin1String(".") ? entry : here.filePath(entry);
        };
        const auto all = QDir::Files | QDir::System; // links that lead nowhere too: somebody means a test by them
        for (const QString& entry : here.entryList({QStringLiteral("*.json")}, all, QDir::Name))
            if (SaysThatItIsATest(name(entry)))
                Add(name(entry));
        for (const QString& entry : here.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks,
                                                   QDir::Name)) // hidden ones are left out
            Search(name(entry));
    }

    /// The first test whose name the toolkit cannot put into text, and so leaves out of what it lists; empty without
    /// one.
    QString Unreadable() const { return m_unreadable; }

private:
    void LookForUnreadableNames(const QString& folder) {
        std::error_code failed;
        std::filesystem::directory_iterator entry(QFile::encodeName(folder).toStdString(), failed);
        for (; !failed && entry != std::filesystem::directory_iterator(); entry.increment(failed)) {
            const QByteArray name = QByteArray::fromStdString(entry->path().filename().string());
            const QString text = QFile::decodeName(name);
            if (m_unreadable.isEmpty() && name.endsWith(kTestEnd) && QFile::encodeName(text) != name)
                m_unreadable = QDir(folder).filePath(text);
        }
    }

    std::vector<TestShow>& m_tests;
    QStringList m_known; ///< canonical paths
    QString m_unreadable;
};

} // namespace

MaybeFailure FindTests(const QStringList& places, std::vector<TestShow>& tests) {
    Finder finder(tests);
    const QStringList searched = places.isEmpty() ? QStringList{QStringLiteral(".")} : places;
    for (const QString& place : searched) {
        const QFileInfo info(place);
        if (!info.exists())
            return Failure{kExitBadUse, QStringLiteral("%1: there is no such file or folder").arg(place)};
        if (info.isDir())
            finder.Search(QDir::cleanPath(place));
        else
            finder.Add(place);
    }
    if (!finder.Unreadable().isEmpty())
        return Failure{kExitBadUse,
                       QStringLiteral("%1: this name is no text in the encoding of this computer; give the "
                                      "test another one")
                           .arg(finder.Unreadable())};
    if (!tests.empty())
        return std::nullopt;
    const QString where = places.isEmpty() ? QStringLiteral("this folder") : places.join(QStringLiteral(", "));
    return Failure{kExitBadUse,
                   QStringLiteral("there is no test in %1: a test is a show named NAME.test.json, or one with "
                                  "the key \"test\"")
                       .arg(where)};
}

} // namespace stagehost
