#include "ScriptAnalysis.h"

#include <atomic>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <QScriptEngine>

#include "DeviceTexts.h"
#include "HostServices.h"
#include "HostValues.h"
#include "IProgramOwner.h"
#include "StoredSetup.h"

namespace {

/// Writes down what a room reports.
class NotedReports final : public IScriptReports {
public:
    void ReportError(const QString& text, bool stopMode) override {
        (stopMode ? dialogs : users).push_back(text.toStdString());
    }
    void ReportLine(int line) override { lines.push_back(line); }
    void ReportScriptFile(const QString& fileName) override { shownFile = fileName.toStdString(); }
    void ReportScriptText(const QString& text) override { shownText = text.toStdString(); }
    void ReportException(const QScriptValue& /*exception*/) override { ++exceptions; }
    void ReportLeftBehind(const QScriptValue& /*exception*/) override { ++exceptions; }

    std::vector<std::string> dialogs; ///< texts that only the dialogs hear of
    std::vector<std::string> users;   ///< texts that the user hears of as well
    std::vector<int> lines;
    std::string shownFile;
    std::string shownText;
    int exceptions = 0;
};

/// An analysis without device, host and module.
class Analysis : public testing::Test {
protected:
    bool Run(const char* text) {
        QScriptEngine engine;
        const bool result = analysis.RunOn(engine, QLatin1String(text));
        analysis.ForgetValue();
        return result;
    }
    std::string Functions() {
        std::string names;
        for (const MScriptCommand& function : analysis.GetSet().functions.Snapshot())
            names += function.name.toStdString() + ' ';
        return names;
    }

    std::atomic<bool> closed{false};
    HostServices services;
    HostValues values{closed};
    StoredSetup setup;
    NotedReports reports;
    ScriptAnalysis analysis{nullptr, services, values, setup, reports};
};

TEST_F(Analysis, FindsWhatAScriptPublishesAndSaysSoToTheDialogsAlone) {
    EXPECT_TRUE(Run("({ Play: function(clip) {}, Stop: function() {}, Setup: { port: 'x' } })"));
    EXPECT_EQ(Functions(), "Play Stop ");
    EXPECT_EQ(analysis.GetSet().settings.Count(), 1u);
    EXPECT_EQ(reports.dialogs, std::vector<std::string>{DeviceText::kAnalysed});
    EXPECT_TRUE(reports.users.empty());
    EXPECT_TRUE(analysis.HasEndedByItself());
}

TEST_F(Analysis, KeepsWhatTheLastGoodOneFoundWhenAScriptFails) {
    ASSERT_TRUE(Run("({ Play: function() {} })"));
    EXPECT_FALSE(Run("\nthrow new Error('late')"));
    EXPECT_EQ(Functions(), "Play ");
    EXPECT_EQ(reports.dialogs.back(), UncaughtAtLine(2, QStringLiteral("Error: late")).toStdString());
    EXPECT_EQ(reports.lines, std::vector<int>{2});
}

TEST_F(Analysis, TakesAnErrorForAFailureWithoutALine) {
    EXPECT_FALSE(Run("new Error('no driver')"));
    EXPECT_EQ(reports.dialogs.back(), ScriptFailure(QStringLiteral("no driver")).toStdString());
    EXPECT_TRUE(reports.lines.empty());
}

TEST_F(Analysis, GivesAScriptTheGlobalsOfADeviceWithNothingBehindThem) {
    EXPECT_TRUE(Run("QCalverin.StartTask('House'); ({ F: function() {} })"));
    EXPECT_EQ(Functions(), "F ");
    EXPECT_EQ(reports.exceptions, 0);
}

TEST_F(Analysis, PassesTheScriptsOwnWordOnTheDefaultsToTheSetup) {
    ASSERT_TRUE(Run("({})"));
    EXPECT_FALSE(setup.GetScriptsRemoval().has_value());
    EXPECT_FALSE(setup.DecideRemoval(false));
    EXPECT_TRUE(setup.DecideRemoval(true));
}

TEST_F(Analysis, KnowsTheTextOfAGoodRunAsLongAsTheSameDefaultsStay) {
    const QString text = QStringLiteral("({ Device: { Status: 1 }, Info: { Title: 'Lamp' } })");
    EXPECT_FALSE(analysis.Knows(QString()));
    ASSERT_TRUE(Run(qPrintable(text)));
    EXPECT_TRUE(analysis.Knows(text));
    EXPECT_EQ(analysis.GetDescription().title, QStringLiteral("Lamp"));
    setup.SetPendingRemoval(true);
    EXPECT_FALSE(analysis.Knows(text)) << "Status would be one of the script's own";
    setup.SetPendingRemoval(std::nullopt);
    EXPECT_TRUE(analysis.Knows(text));
    EXPECT_FALSE(Run("({"));
    EXPECT_FALSE(analysis.Knows(text));
    EXPECT_FALSE(analysis.Knows(QStringLiteral("({")));
}

TEST_F(Analysis, ShowsAFileThatCannotBeReadAsAnEmptyScriptAndTellsTheUser) {
    EXPECT_FALSE(analysis.LoadFile("/no/such/file.js"));
    EXPECT_EQ(reports.shownFile, "/no/such/file.js");
    EXPECT_EQ(reports.shownText, "");
    EXPECT_EQ(reports.users, std::vector<std::string>{DeviceText::kUnreadableFile});
    EXPECT_FALSE(analysis.LoadFile(nullptr));
}

TEST_F(Analysis, ShowsATextWithoutLookingAtIt) {
    EXPECT_TRUE(analysis.LoadText(QStringLiteral("throw 1")));
    EXPECT_EQ(reports.shownFile, "");
    EXPECT_EQ(reports.shownText, "throw 1");
    EXPECT_TRUE(reports.dialogs.empty());
}

} // namespace
