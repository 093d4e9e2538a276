#include <algorithm>
#include <cstdio>
#include <utility>

#include <QIcon>
#include <QImage>
#include <QListWidget>
#include <QStandardItemModel>
#include <tinyxml.h>

#include "CompletionTable.h"
#include "CompletionText.h"
#include "DialogInsertHelper.h"
#include "DialogInsertPerformHelper.h"
#include "HostXml.h"
#include "ModuleShared.h"
#include "SetupCompletionFixture.h"

namespace {

constexpr int kObjects = 14;

bool IsDrawnInTheColourOfTheTextWhenSelected(const QIcon& picture) {
    const QImage image = picture.pixmap(16, 16, QIcon::Selected).toImage();
    const QRgb text = QApplication::palette().color(QPalette::HighlightedText).rgb();
    int drawn = 0;
    for (int at = 0; at < 256; ++at)
        drawn += image.pixel(at % 16, at / 16) == text;
    return drawn > 0;
}

bool IsDrawn(const QIcon& picture) {
    const QImage image = picture.pixmap(16, 16).toImage();
    int drawn = 0;
    for (int at = 0; at < 256; ++at)
        drawn += qAlpha(image.pixel(at % 16, at / 16)) > 128;
    return drawn > 20 && drawn < 200;
}

TEST_F(TheDialogInAShow, OffersCallsAndObjectsOnceThreeLettersAreTyped) {
    GivenCompletion(true);
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 1);
        QAbstractItemView& list = TypeIntoEditor(dialog, "la");
        EXPECT_FALSE(list.isVisible());
        QTest::keyClick(&Editor(dialog), Qt::Key_M);
        EXPECT_TRUE(list.isVisible());
        EXPECT_EQ(Offered(dialog), (QStringList{QStringLiteral("Lamp name"), QStringLiteral("Lampenpult")}));
        QTest::keyClick(&list, Qt::Key_Down);
        QTest::keyClick(&list, Qt::Key_Return);
        EXPECT_EQ(Editor(dialog).toPlainText(), QStringLiteral("Lampenpult"));
        TypeIntoEditor(dialog, "qca");
        EXPECT_EQ(Offered(dialog).size(), kOfferedCalls);
        QTest::keyClick(&list, Qt::Key_Escape);
        EXPECT_FALSE(list.isVisible());
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheDialogInAShow, InsertsEachCallWithTheCaretAtItsFirstArgument) {
    GivenCompletion(true);
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 1);
        for (const ScriptCall& call : kScriptCalls) {
            QAbstractItemView& list = TypeIntoEditor(dialog, "qca");
            const int row = Offered(dialog).indexOf(QLatin1String(call.name));
            list.setCurrentIndex(Completer(dialog).completionModel()->index(row, 0));
            QTest::keyClick(&list, Qt::Key_Return);
            const QString text = QLatin1String(call.insertion);
            const int caret = CaretOffset(text);
            EXPECT_EQ(Editor(dialog).toPlainText(), text);
            EXPECT_EQ(Editor(dialog).textCursor().position(), caret > 0 ? caret : text.size()) << call.insertion;
        }
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheDialogInAShow, HasEachRowOfTheTableInTheOrderOfTheNamesWithAPicture) {
    GivenCompletion(true);
    Show([&](QWidget& dialog) {
        const auto& table = dynamic_cast<QStandardItemModel&>(*Completer(dialog).model());
        EXPECT_EQ(table.rowCount(), kOfferedCalls + kObjects);
        for (int row = 0; row < table.rowCount(); ++row) {
            EXPECT_TRUE(IsDrawn(table.item(row)->icon())) << row;
            EXPECT_TRUE(IsDrawnInTheColourOfTheTextWhenSelected(table.item(row)->icon())) << row;
            EXPECT_TRUE(row == 0 || table.item(row - 1)->text() <= table.item(row)->text()) << row;
        }
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheDialogInAShow, OpenedWithCompletionAsksTheHostOnceHoweverOftenTheBoxIsTicked) {
    GivenCompletion(true);
    Show([&](QWidget& dialog) {
        const std::size_t asked = link.calls.size();
        EXPECT_GT(asked, 6u);
        ClickTab(dialog, 3);
        Click(dialog, "checkBoxEnableAutoCompletion");
        EXPECT_EQ(Completer(dialog).model()->rowCount(), 0);
        Click(dialog, "checkBoxEnableAutoCompletion");
        EXPECT_EQ(Completer(dialog).model()->rowCount(), kOfferedCalls + kObjects);
        EXPECT_EQ(link.calls.size(), asked);
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheDialogInAShow, OpenedWithoutCompletionAsksTheHostEachTimeTheBoxIsTicked) {
    GivenCompletion(false);
    Show([&](QWidget& dialog) {
        EXPECT_TRUE(link.calls.empty());
        EXPECT_EQ(Completer(dialog).model()->rowCount(), 0);
        ClickTab(dialog, 3);
        Click(dialog, "checkBoxEnableAutoCompletion");
        EXPECT_EQ(Completer(dialog).model()->rowCount(), kOfferedCalls + kObjects);
        const std::size_t asked = link.calls.size();
        Click(dialog, "checkBoxEnableAutoCompletion");
        link.lists[3] = HostList("Task", {"One more"});
        Click(dialog, "checkBoxEnableAutoCompletion");
        EXPECT_EQ(link.calls.size(), 2 * asked);
        EXPECT_EQ(Completer(dialog).model()->rowCount(), kOfferedCalls + kObjects - 1);
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheDialogInAShow, WithoutCompletionKeepsTheEditorsCompleterWithAnEmptyList) {
    GivenCompletion(true);
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 3);
        Click(dialog, "checkBoxEnableAutoCompletion");
        ClickTab(dialog, 1);
        EXPECT_FALSE(TypeIntoEditor(dialog, "qca").isVisible());
        EXPECT_EQ(Completer(dialog).widget(), &Editor(dialog));
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheDialogInAShow, OffersTheCallsAloneWhenTheHostIsOutOfReach) {
    host.remote = nullptr;
    GivenCompletion(true);
    Show([&](QWidget& dialog) {
        EXPECT_EQ(Completer(dialog).model()->rowCount(), kOfferedCalls);
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheDialogInAShow, DoesNotComeUpWhenTheHostReleasesTheDeviceWhileItIsAsked) {
    GivenCompletion(true);
    link.onList = [&] {
        if (device != nullptr)
            std::exchange(device, nullptr)->Release();
    };
    EXPECT_EQ(device->ShowSetupDialog(nullptr), 13u);
    EXPECT_EQ(ModuleShared::Get(), nullptr);
}

TEST_F(TheDialogInAShow, IsLeftWhenTheHostReleasesTheDeviceWhileTheBoxIsTicked) {
    GivenCompletion(false);
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  ClickTab(dialog, 3);
                  link.onList = [&] {
                      if (device != nullptr)
                          std::exchange(device, nullptr)->Release();
                  };
                  Click(dialog, "checkBoxEnableAutoCompletion");
                  EXPECT_FALSE(dialog.isVisible());
              }),
              13u);
}

class TheDialogInALargeShow : public TheDialogInAShow {
protected:
    void SetUp() override {
        TheDialogInAShow::SetUp();
        Fill(6, "Variable", 3000, "=StringData");
        Fill(1, "Device", 1000, "");
        Fill(3, "Task", 500, "");
        Fill(28, "Cue", 250, "");
        Fill(8, "UserScreen", 125, "");
        Fill(27, "UserGroup", 125, "");
    }
    void Fill(std::uint32_t list, const char* type, int count, const char* value) {
        std::vector<std::string> names;
        for (int number = 0; number < count; ++number)
            names.push_back(std::string("Lamp ") + type + ' ' + std::to_string(number) + value);
        link.lists[list] = HostList(type, names);
    }
    /// Asks for all lists and parses them.
    void ReadLists() {
        for (const auto& list : link.lists) {
            char* text = nullptr;
            link.GetObjectList("GrantedRootGroup", list.first, &text);
            TiXmlDocument document;
            EXPECT_TRUE(ParseHostXml(document, text));
            link.FreeText(&text);
        }
    }
};

TEST_F(TheDialogInALargeShow, FillsTheTableInLittleMoreTimeThanReadingTheListsTakes) {
    const double ratio = SmallestRatio([&] { device->RebuildCompletionTable(true); }, [&] { ReadLists(); });
    EXPECT_EQ(ModuleShared::Get()->completionModel->rowCount(), kOfferedCalls + 5000);
    std::printf("        the table takes %.2f times what reading 5000 objects takes\n", ratio);
    EXPECT_LT(ratio, 4);
}

TEST_F(TheDialogInALargeShow, FillsTheInsertionDialogsInNoMoreTimeThanReadingTheListsTakes) {
    device->RebuildCompletionTable(true);
    const QStandardItemModel& table = *ModuleShared::Get()->completionModel;
    DialogInsertHelper insertion(nullptr);
    DialogInsertPerformHelper composer(nullptr);
    const double ratio = SmallestRatio(
        [&] {
            insertion.Init(&table, InsertKind::Variable);
            composer.SetModel(&table);
        },
        [&] { ReadLists(); });
    EXPECT_EQ(Find<QListWidget>(insertion, "listObjectList").count(), 3000);
    EXPECT_EQ(Find<QListWidget>(composer, "listDeviceList").count(), 1000);
    std::printf("        4000 names in two dialogs take %.2f times what reading 5000 objects takes\n", ratio);
    EXPECT_LT(ratio, 4);
}

TEST_F(TheDialogInALargeShow, AnswersAKeyBeforeTheUserNotices) {
    GivenCompletion(true);
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 1);
        TypeIntoEditor(dialog, "lam");
        EXPECT_EQ(Offered(dialog).size(), 5000);
        const double key = ShortestRun([&] {
            QTest::keyClick(&Editor(dialog), Qt::Key_P);
            QTest::keyClick(&Editor(dialog), Qt::Key_Backspace);
            QCoreApplication::processEvents();
        });
        std::printf("        two keys with 5000 completions: %.1f ms\n", key);
        EXPECT_LT(key, 200);
        Click(dialog, "pushButtonCancel");
    });
}

} // namespace
