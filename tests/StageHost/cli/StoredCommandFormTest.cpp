#include "StoredCommandForm.h"

#include <memory>

#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "ShowFile.h"
#include "StageHostProcess.h"

using namespace stagehost;

namespace {

constexpr const char* kScript = R"(({
    Info: { Commands: {
        Fade: { Name: "Fade to", Params: { level: { Type: "Integer", MinValue: 0, MaxValue: 100 },
                                           curve: { Type: "Enum", Items: ["linear", "soft", "hard"] } } },
        Name: { Params: { text: { Type: "String" } } }
    } },
    Fade: function (level, curve) {},
    Name: function (text) {}
}))";

/// A show with two stored commands, "Half" and "Title", on the form.
class FormOfStoredCommands : public testing::Test {
protected:
    void SetUp() override {
        host.File(QStringLiteral("desk.js"), kScript);
        const QString show =
            host.File(QStringLiteral("show.json"), R"({"devices":[{"name":"desk","driver":"desk.js"}]})");
        GivenCommand({QStringLiteral("store"), show, QStringLiteral("Half"), QStringLiteral("desk"),
                      QStringLiteral("Fade to"), QStringLiteral("level=50"), QStringLiteral("curve=soft")});
        GivenCommand({QStringLiteral("store"), show, QStringLiteral("Title"), QStringLiteral("desk"),
                      QStringLiteral("Name"), QStringLiteral("text=act one")});
        ASSERT_FALSE(file.Open(show).has_value());
        session = std::make_unique<Session>(options);
        ASSERT_FALSE(session->Open(file.Content()).has_value());
        form = std::make_unique<StoredCommandForm>(*session, nullptr);
        form->show();
    }
    void GivenCommand(const QStringList& words) {
        host.Run(words);
        ASSERT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    }
    void Choose(const char* command) {
        form->findChild<QComboBox*>(QStringLiteral("comboBoxCommand"))->setCurrentText(QLatin1String(command));
    }
    QLineEdit& Field(const char* parameter) { return *form->findChild<QLineEdit*>(QLatin1String(parameter)); }
    void Type(const char* parameter, const char* text) {
        Field(parameter).selectAll();
        QTest::keyClicks(&Field(parameter), QLatin1String(text));
    }
    void Store() {
        QTest::mouseClick(form->findChild<QPushButton*>(QStringLiteral("pushButtonStore")), Qt::LeftButton);
    }
    std::string News() {
        for (const QLabel* label : form->findChildren<QLabel*>())
            if (label->buddy() == nullptr && !label->text().isEmpty())
                return label->text().toStdString();
        return {};
    }
    /// Closes the form. @param answer what a question is answered with. @return what it asked; empty when nothing was
    /// asked.
    std::string Leave(QMessageBox::StandardButton answer) {
        std::string asked;
        QTimer::singleShot(0, form.get(), [&] {
            auto* question = form->findChild<QMessageBox*>();
            if (question == nullptr)
                return;
            asked = question->text().toStdString();
            QTest::mouseClick(question->button(answer), Qt::LeftButton);
        });
        QTest::mouseClick(form->findChild<QPushButton*>(QStringLiteral("pushButtonClose")), Qt::LeftButton);
        QCoreApplication::processEvents();
        return asked;
    }

    StageHostProcess host;
    Options options;
    ShowFile file;
    std::unique_ptr<Session> session;
    std::unique_ptr<StoredCommandForm> form;
};

} // namespace

TEST_F(FormOfStoredCommands, ShowsWhatIsStored) {
    Choose("Half");
    EXPECT_EQ(Field("level").text().toStdString(), "50");
    EXPECT_EQ(Field("curve").text().toStdString(), "soft");
    Choose("Title");
    EXPECT_EQ(Field("text").text().toStdString(), "act one");
}

TEST_F(FormOfStoredCommands, OffersTheItemsOfAnEnumeration) {
    Choose("Half");
    auto* list = qobject_cast<QComboBox*>(Field("curve").parentWidget());
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->count(), 3);
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Down);
    EXPECT_EQ(Field("curve").text().toStdString(), "hard");
    Store();
    EXPECT_EQ(News(), "Stored.");
    ASSERT_EQ(form->Stored().size(), 1U);
    EXPECT_TRUE(form->Stored().at(QStringLiteral("Half")).contains(QLatin1String("hard")));
}

TEST_F(FormOfStoredCommands, SaysWhatDoesNotFitAndStoresNothing) {
    Choose("Half");
    Type("level", "101");
    Store();
    EXPECT_NE(News(), "");
    EXPECT_NE(News(), "Stored.");
    EXPECT_TRUE(form->Stored().empty());
}

TEST_F(FormOfStoredCommands, KeepsWhatWasTypedWhileAnotherCommandIsLookedAt) {
    Choose("Half");
    Type("level", "75");
    Choose("Title");
    EXPECT_EQ(News(), "");
    Choose("Half");
    EXPECT_EQ(Field("level").text().toStdString(), "75");
    EXPECT_EQ(News(), "Not stored yet.");
    Store();
    Choose("Title");
    Choose("Half");
    EXPECT_EQ(News(), "") << "it is stored now";
    EXPECT_EQ(Field("level").text().toStdString(), "75");
}

TEST_F(FormOfStoredCommands, AsksBeforeItDropsWhatWasTyped) {
    Choose("Half");
    Type("level", "75");
    Choose("Title");
    EXPECT_EQ(Leave(QMessageBox::No), "Changed and not stored: Half.\nLeave without storing?");
    EXPECT_TRUE(form->isVisible());
    Leave(QMessageBox::Yes);
    EXPECT_FALSE(form->isVisible());
    EXPECT_TRUE(form->Stored().empty());
}

TEST_F(FormOfStoredCommands, LeavesWithoutAQuestionWhenNothingIsLost) {
    Choose("Half");
    Type("level", "75");
    Store();
    Choose("Title");
    EXPECT_EQ(Leave(QMessageBox::No), "");
    EXPECT_FALSE(form->isVisible());
}
