#include <gtest/gtest.h>

#include <QFile>
#include <QScriptEngine>
#include <QTemporaryDir>

#include "MScriptDescription.h"
#include "ResourceSignature.h"

namespace {

class Description : public testing::Test {
protected:
    QScriptEngine engine;
    QTemporaryDir folder;

    QString File(const QString& name, const QByteArray& content) {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }
};

TEST_F(Description, TakesItsFieldsFromInfo) {
    const auto record = MScriptDescription::FromText(
        QStringLiteral(
            "({ Info: { Title: 'Lamp', Author: 'Ada', Version: 1.5, Description: 'd', title: 'x', Other: 1 } })"),
        &engine);
    EXPECT_EQ(record->title, QStringLiteral("Lamp"));
    EXPECT_EQ(record->author, QStringLiteral("Ada"));
    EXPECT_EQ(record->version, QStringLiteral("1.5"));
    EXPECT_EQ(record->description, QStringLiteral("d"));
    EXPECT_EQ(record->fileName, QString());
}

TEST_F(Description, OfAFileWithoutInfoIsItsBaseName) {
    auto record = MScriptDescription::FromFile(File(QStringLiteral("lamp.v2.js"), "({})"), &engine);
    EXPECT_EQ(record->title, QStringLiteral("lamp"));
    EXPECT_EQ(record->GetDisplayText(), QStringLiteral("lamp (lamp.v2.js)"));
}

TEST_F(Description, TakesWhatAnotherSaysAndKeepsTheRest) {
    MScriptDescription record = MScriptDescription::OfFile(QStringLiteral("lamp.js"));
    record.author = QStringLiteral("Ada");
    MScriptDescription said;
    said.Take(engine.evaluate(QStringLiteral("({ Info: { Author: '', Version: 2 } })")));
    record.TakeSaid(said);
    EXPECT_EQ(record.title, QStringLiteral("lamp"));
    EXPECT_EQ(record.version, QStringLiteral("2"));
    EXPECT_EQ(record.author, QString()) << "an empty text is one that was said";
    EXPECT_EQ(record.fileName, QStringLiteral("lamp.js"));
}

TEST_F(Description, SkipsNullAndFunctionsAndScriptsThatFail) {
    const char* scripts[] = {"({ Info: { Title: null, Author: function() {} } })",
                             "({ Info: 5 })",
                             "5",
                             "throw 1",
                             "var = ;",
                             "new Error('x')",
                             "({})"};
    for (const char* script : scripts) {
        auto record = MScriptDescription::FromFile(File(QStringLiteral("a.js"), script), &engine);
        EXPECT_EQ(record->title, QStringLiteral("a")) << script;
        EXPECT_EQ(record->author, QString()) << script;
        EXPECT_FALSE(engine.hasUncaughtException()) << script;
    }
}

TEST_F(Description, TakesNothingOfWhatThrows) {
    const auto record = MScriptDescription::FromText(
        QStringLiteral("({ Info: { Title: { toString: function() { throw 'bad' } }, get Author() { throw 'bad' },"
                       "           Version: '2' } })"),
        &engine);
    EXPECT_EQ(record->title + record->author + record->version, QStringLiteral("2"));
    EXPECT_FALSE(engine.hasUncaughtException());
}

TEST_F(Description, IsNoneWithoutAFileOrAnEngine) {
    EXPECT_EQ(MScriptDescription::FromFile(folder.filePath(QStringLiteral("gone.js")), &engine), nullptr);
    EXPECT_EQ(MScriptDescription::FromFile(File(QStringLiteral("a.js"), "({})"), nullptr), nullptr);
    EXPECT_EQ(MScriptDescription::FromText(QStringLiteral("({})"), nullptr), nullptr);
}

class Signatures : public testing::Test {
protected:
    std::string Read(const QScriptValue& value) {
        const ResourceSignature s = ReadResourceSignature(value, engine);
        EXPECT_FALSE(engine.hasUncaughtException());
        return s.type.toStdString() + " " + std::to_string(s.resourceId) + " " + std::to_string(s.channelIndex);
    }
    std::string ReadText(const char* text) { return Read(QScriptValue(QString::fromLatin1(text))); }
    QScriptEngine engine;
};

TEST_F(Signatures, AreReadFromTextAndFromObjects) {
    EXPECT_EQ(ReadText("{ \"Type\":\"Serial\", \"ResourceID\":3, \"ChannelIndex\":0 }"), "Serial 3 0");
    EXPECT_EQ(Read(engine.evaluate(QStringLiteral("({ Type: 'DMXIn', ResourceID: 7 })"))), "DMXIn 7 -1");
}

TEST_F(Signatures, HaveTheirDefaultsForWhatIsMissingOrOther) {
    for (const char* text :
         {"", "no JSON", "5", "null", "[]", "{}", "{\"Type\":5,\"ResourceID\":\"3\",\"ChannelIndex\":null}"})
        EXPECT_EQ(ReadText(text), " -1 -1") << text;
    EXPECT_EQ(Read(QScriptValue()), " -1 -1");
    engine.evaluate(QStringLiteral("JSON = undefined"));
    EXPECT_EQ(ReadText("{\"ResourceID\":3}"), " -1 -1");
}

TEST_F(Signatures, OfSettingsBecomeRequestsByTheKindOfTheirField) {
    ScriptSettings settings;
    for (int widget : {0, 14, 15, 16, 17, 18, 19, 20, 13}) {
        MScriptSetting setting;
        setting.widget = widget;
        setting.value = QStringLiteral("{\"ResourceID\":%1,\"ChannelIndex\":2}").arg(widget);
        settings.push_back(setting);
    }
    std::string told;
    for (const ResourceRequest& r : FindResources(settings))
        told += std::to_string(r.resourceId) + ":" + std::to_string(r.family) + "," + std::to_string(r.subtype) + "," +
                std::to_string(r.channelType) + "," + std::to_string(r.channelIndex) + " ";
    EXPECT_EQ(told, "14:1,3,-1,2 15:2,1,-1,2 16:2,2,-1,2 17:5,3,1,2 18:5,3,0,2 19:5,3,3,2 20:5,3,2,2 ");
}

} // namespace
