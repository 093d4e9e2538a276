#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "ArgumentReader.h"
#include "BorderText.h"
#include "CommandTable.h"
#include "Condition.h"
#include "InputLines.h"
#include "JsonText.h"
#include "LiveShow.h"
#include "MainWait.h"
#include "Mutator.h"
#include "Seeds.h"
#include "SetupText.h"
#include "ShowReader.h"
#include "ShowWriter.h"

/// What people type and write, changed at random. By hand with many more: CALVERIN_MUTATIONS=100000.

namespace {

using namespace stagehost;

QString Text(const std::string& text) {
    return QString::fromStdString(text);
}

/// Runs each case; the name of the one that fails stands below its failure.
template <typename Look>
void ForEachCase(const std::function<std::string(std::uint64_t)>& makeCase, Look look) {
    MutationWatch watch;
    const MutationRange range = MutationRange::Wanted();
    for (std::uint64_t number = range.begin; number < range.end && !testing::Test::HasFailure(); ++number) {
        SCOPED_TRACE("CALVERIN_MUTATION=" + std::to_string(number));
        watch.Begin(number);
        look(makeCase(number));
    }
}

std::function<std::string(std::uint64_t)> Cases(const Mutator& mutator) {
    return [mutator](std::uint64_t number) { return mutator.Case(number); };
}

bool IsSingleCase() {
    const MutationRange range = MutationRange::Wanted();
    return range.end - range.begin == 1;
}

std::vector<std::string> ShowSeeds() {
    std::vector<std::string> seeds = SeedFolder("tests/StageHost/io/cases", ".json");
    for (const char* example : {"cuelist", "driver", "evening", "house", "projector"})
        seeds.push_back(SeedFile(std::string("examples/") + example + "/show.json"));
    return seeds;
}

Mutator Shows() {
    return Mutator(ShowSeeds(), {"{",
                                 "}",
                                 "[",
                                 "]",
                                 ",",
                                 ":",
                                 "null",
                                 "true",
                                 "-1",
                                 "1e999",
                                 "99999999999",
                                 "\"\"",
                                 "\"name\"",
                                 "\"devices\"",
                                 "\"steps\"",
                                 "\"resources\"",
                                 "\"\\u0000\"",
                                 "\"\\ud800\"",
                                 "\"wait\"",
                                 "\"until\"",
                                 "\"xml\": \"<a>\"",
                                 "\xC3",
                                 "\xEF\xBB\xBF",
                                 "\"<StoredCommand\""});
}

/// What may stand anywhere in a show file, though it is seldom right there.
QJsonValue AnyValue(std::mt19937_64& random) {
    const QJsonValue values[] = {QJsonValue(),
                                 true,
                                 0,
                                 -1,
                                 65536,
                                 1e300,
                                 0.5,
                                 QString(),
                                 QStringLiteral("Level"),
                                 QStringLiteral("front"),
                                 QStringLiteral("front.Level"),
                                 QStringLiteral("12:00:00/00"),
                                 QString(QChar(0xD800)),
                                 QString(200, QLatin1Char('x')),
                                 QStringLiteral("../x"),
                                 QStringLiteral("Fade to"),
                                 QStringLiteral("refused"),
                                 QStringLiteral("a > 3"),
                                 QJsonArray(),
                                 QJsonArray{1, QStringLiteral("b")},
                                 QJsonObject(),
                                 QJsonObject{{QStringLiteral("name"), QStringLiteral("Level")}},
                                 QJsonObject{{QStringLiteral("variable"), QStringLiteral("Level")}},
                                 QJsonObject{{QStringLiteral("until"), QStringLiteral("Level=3")}}};
    return values[random() % std::size(values)];
}

/// A value of which one part, somewhere inside, is another one, is gone, or is there twice.
QJsonValue WithOneChange(const QJsonValue& value, std::mt19937_64& random) {
    const bool isHere = random() % 4 == 0;
    if (isHere || (!value.isObject() && !value.isArray()))
        return AnyValue(random);
    if (value.isArray()) {
        QJsonArray list = value.toArray();
        if (list.isEmpty() || random() % 8 == 0) {
            list.append(list.isEmpty() ? AnyValue(random) : list.first());
            return list;
        }
        const int at = static_cast<int>(random() % static_cast<unsigned>(list.size()));
        list[at] = WithOneChange(list.at(at), random);
        return list;
    }
    QJsonObject object = value.toObject();
    const QStringList names = object.keys();
    const QString name = names.isEmpty() ? QStringLiteral("name") : names.at(static_cast<int>(random() % names.size()));
    if (random() % 8 == 0)
        object.remove(name);
    else
        object[name] = WithOneChange(object.value(name), random);
    return object;
}

/// Shows that are still JSON, of which some parts are others.
std::string ShowWithOtherParts(std::uint64_t number) {
    static const std::vector<QJsonObject> seeds = [] {
        std::vector<QJsonObject> objects;
        for (const std::string& text : ShowSeeds()) {
            const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(text));
            if (document.isObject())
                objects.push_back(document.object());
        }
        return objects;
    }();
    std::mt19937_64 random(number);
    QJsonValue show = seeds[random() % seeds.size()];
    for (std::size_t changes = 1 + random() % 3; changes > 0 && show.isObject(); --changes) {
        QJsonObject object = show.toObject();
        const QStringList names = object.keys();
        const QString name =
            names.isEmpty() ? QStringLiteral("name") : names.at(static_cast<int>(random() % names.size()));
        object[name] = WithOneChange(object.value(name), random);
        show = object;
    }
    return QJsonDocument(show.toObject()).toJson().toStdString();
}

void ReadAndWrite(const std::string& text, std::uint64_t& wellRead) {
    const QString file = QStringLiteral(SOURCES "/examples/driver/show.json");
    ShowReader reader;
    const auto show = reader.Read(QByteArray::fromStdString(text), file);
    ASSERT_EQ(show.has_value(), reader.Complaints().isEmpty());
    for (const QString& complaint : reader.Complaints())
        EXPECT_FALSE(complaint.trimmed().isEmpty());
    if (!show)
        return;
    ++wellRead;
    const QByteArray written = WriteShow(*show);
    ShowReader again;
    const auto same = again.Read(written, file);
    ASSERT_TRUE(same) << again.Complaints().join(QLatin1Char('\n')).toStdString() << "\n" << written.toStdString();
    EXPECT_EQ(WriteShow(*same), written);
}

TEST(ShowsByMutation, WithOtherPartsAreReadOrComplainedOfAndWhatIsReadIsWrittenAndReadAgain) {
    std::uint64_t wellRead = 0;
    ForEachCase(&ShowWithOtherParts, [&](const std::string& text) { ReadAndWrite(text, wellRead); });
    EXPECT_TRUE(wellRead > 0 || IsSingleCase());
}

TEST(ShowsByMutation, AreReadOrComplainedOfAndWhatIsReadIsWrittenAndReadAgain) {
    std::uint64_t wellRead = 0;
    ForEachCase(Cases(Shows()), [&](const std::string& text) { ReadAndWrite(text, wellRead); });
    EXPECT_TRUE(wellRead > 0 || IsSingleCase());
}

TEST(ShowsByMutation, KeepEverythingElseWhenOneMemberIsChanged) {
    ForEachCase(Cases(Shows()), [](const std::string& text) {
        const QJsonDocument before = QJsonDocument::fromJson(QByteArray::fromStdString(text));
        if (!before.isObject())
            return;
        QJsonObject expected = before.object();
        expected[QStringLiteral("setup")] = QStringLiteral("new \" text\n");
        JsonText changed(QByteArray::fromStdString(text));
        ASSERT_TRUE(changed.SetMember({}, QStringLiteral("setup"), expected[QStringLiteral("setup")]));
        EXPECT_EQ(QJsonDocument::fromJson(changed.Text()).object(), expected) << changed.Text().toStdString();
    });
}

TEST(ArgumentsByMutation, AreTakenOrComplainedOf) {
    const Mutator mutator(SeedLines("arguments.txt"), {" ", "--", "-", "=", "--json", "--timeout", "--set", "-h",
                                                       "--log=", "\xFF", "99999999999", "\""});
    ForEachCase(Cases(mutator), [](const std::string& text) {
        ArgumentReader reader;
        const QString problem = reader.Read(Text(text).split(QLatin1Char(' '), Qt::SkipEmptyParts));
        EXPECT_EQ(problem.isEmpty(), problem.trimmed().isEmpty());
        EXPECT_TRUE(!problem.isEmpty() || reader.Result().timeout.count() > 0);
        EXPECT_LE(problem.count(QLatin1Char('\n')), Text(text).count(QLatin1Char('\n'))) << problem.toStdString();
    });
}

TEST(ConditionsByMutation, AreReadOrComplainedOf) {
    const Mutator mutator({"Level>=50", "projector.Online = yes", "\"Light level\" != 0", "Answer ~ ^[0-9]+ lamps$",
                           "a==b", "Overture.Line < 3"},
                          {"<", ">", "=", "!", "~", "\"", "(", "[", "*", "\\", " ", "{1000}", "(?", "."});
    ForEachCase(Cases(mutator), [](const std::string& text) {
        QString problem;
        const auto condition = ReadCondition(Text(text), &problem);
        ASSERT_EQ(condition.has_value(), problem.isEmpty()) << problem.toStdString();
        if (condition) {
            EXPECT_FALSE(condition->Text().isEmpty());
            WhyNoCondition(*condition);
        }
    });
}

TEST(SetupsByMutation, GiveWayOrCarryTheDriver) {
    const QJsonDocument show =
        QJsonDocument::fromJson(QByteArray::fromStdString(SeedFile("examples/driver/show.json")));
    const QString stored = show[QStringLiteral("devices")][1][QStringLiteral("setup")].toString();
    ASSERT_FALSE(stored.isEmpty());
    const Mutator mutator({stored.toStdString()}, {"<", ">", "/>", "<![CDATA[", "]]>", "<Setting ", "Value=\"", "&#0;",
                                                   "&", "Name=", "\xF0", "<!--", "<?"});
    DriverEdition edition;
    edition.text = QStringLiteral("({})");
    ForEachCase(Cases(mutator), [&](const std::string& text) {
        QString setup = Text(text);
        ScriptOfSetup(setup);
        SettingOfSetup(setup, QStringLiteral("channel"));
        GiveSettings(setup, {{QStringLiteral("channel"), QStringLiteral("7"), QStringLiteral("here")}});
        const auto made = MakeSetupText(setup, edition);
        EXPECT_TRUE(!made || ScriptOfSetup(*made) == edition.text);
    });
}

/// Times that somebody may have typed, made short: what is looked at is not how long a wait lasts.
QString WithShortTimes(QString line) {
    static const QRegularExpression longNumber(QStringLiteral("[0-9]{3,}"));
    return line.replace(longNumber, QStringLiteral("12"));
}

TEST(LinesByMutation, AreDoneOrComplainedOf) {
    const QByteArray text = R"json({
        "variables": [{ "name": "Level", "type": "Integer" }, { "name": "Light level", "type": "Real" }, { "name": "Note" }],
        "resources": [{ "id": 1, "name": "House", "channels": { "digitalIn": ["Door"], "analogOut": ["Fan"] } }],
        "devices": [{ "name": "desk", "scriptText": "function hello say hello\nfunction echo echo\n" }],
        "tasks": [{ "name": "Opening", "lines": [{ "at": 0, "set": { "Level": 7 } }, { "at": 5, "cue": "Dark" }] }],
        "cues": [{ "name": "Dark", "set": { "Note": "dark" } }],
        "steps": [{ "set": { "Level": 3 } }, { "cue": "Dark" }]
    })json";
    ShowReader reader;
    const auto show = reader.Read(text, QStringLiteral(SOURCES "/show.json"));
    ASSERT_TRUE(show) << reader.Complaints().join(QLatin1Char('\n')).toStdString();
    const QTemporaryDir folder;
    Options options;
    options.module = QStringLiteral(STAGEHOST_BIN "/fakemodule.kxp6");
    options.timeout = std::chrono::milliseconds(2000);
    options.logFile = folder.filePath(QStringLiteral("log"));
    Session session(options);
    const auto opened = session.Open(*show);
    ASSERT_FALSE(opened) << opened->text.toStdString();
    const auto started = session.Start();
    ASSERT_FALSE(started) << started->text.toStdString();
    const Mutator mutator(SeedLines("lines.txt"),
                          {" ", "\"", "\\", "=", "<=", "~", "set", "wait", "send desk ", "Level", "House.Door", "-1",
                           "0.5", "\xE4", "desk.Status", "Opening"});
    std::uint64_t well = 0;
    ForEachCase(Cases(mutator), [&](const std::string& line) {
        LiveShow live(session, *show);
        const LineOutcome outcome = live.Do(WithShortTimes(FromOutsideText(line)).left(200));
        EXPECT_GE(outcome.exitCode, 0);
        EXPECT_LE(outcome.exitCode, 4);
        EXPECT_TRUE(outcome.exitCode == 0 || !outcome.text.trimmed().isEmpty()) << line;
        well += outcome.exitCode == 0 ? 1 : 0;
    });
    EXPECT_TRUE(well > 0 || IsSingleCase());
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    const MainWait wait;
    return RUN_ALL_TESTS();
}
