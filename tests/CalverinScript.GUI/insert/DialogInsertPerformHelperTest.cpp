#include "DialogInsertPerformHelper.h"

#include <atomic>
#include <optional>
#include <thread>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QScriptEngine>
#include <QTableWidget>
#include <QTextEdit>

#include "CompletionTable.h"
#include "CustomDelegate.h"
#include "Deadline.h"
#include "MScriptMngRemote.h"
#include "SetupCompletionFixture.h"
#include "SlowRemote2.h"

namespace {

constexpr const char* kDesk = R"(<?xml version="1.0" encoding="UTF-8"?>
<Device Name="Dmx">
  <Info/>
  <Commands>
    <Command ID="4" Name="Set"><ObjectParams>
      <ObjectParam><IntegerData ID="0" Name="Level" Value="5"/></ObjectParam>
    </ObjectParams></Command>
    <Command ID="5"><ObjectParams/></Command>
    <Command ID="6" Name="Off"><ObjectParams Version="0"/></Command>
    <Command ID="7" Name="All"><ObjectParams Version="0">
      <ObjectParam VarType="2"><StringData Name="Text" String="hello"><Properties>
        <Property Name="DataDescriptor::AcceptVariable" Value="true"/>
        <Property Name="DataDescriptor::VarDirection" Value="mddIn"/></Properties></StringData></ObjectParam>
      <ObjectParam><EnumData Name="Mode" Current="2"><EnumStrings>
        <EnumString Name="Slow" Value="0"/><EnumString Name="Quick" Value="1"/><EnumString Name="Cut" Value="2"/>
        <EnumString Value="3"/><EnumString Name="None" Value="x"/></EnumStrings></EnumData></ObjectParam>
      <ObjectParam><IntegerData Name="Count" Value="7"><Properties>
        <Property Name="DataDescriptor::VarDirection" Value="mddInOut"/></Properties></IntegerData></ObjectParam>
      <ObjectParam><RealData Name="Gain" Value="0.5"><Properties>
        <Property Name="DataDescriptor::VarDirection" Value="mddOut"/></Properties></RealData></ObjectParam>
      <ObjectParam><TimeData Name="At" Time="10"/></ObjectParam>
      <ObjectParam><DateData Name="On" Value="1/1/2026"/></ObjectParam>
      <ObjectParam><StringData Name="Bare"/></ObjectParam>
      <ObjectParam><StringData String="no name"/></ObjectParam>
      <ObjectParam/>
      <Properties><Property Name="ObjectParamDescriptor::DeviceID" Value="0"/></Properties>
    </ObjectParams></Command>
  </Commands>
</Device>)";

/// The composer over a table with three devices.
class TheComposer : public testing::Test {
protected:
    void SetUp() override {
        FillCompletionTable(table, {{1, HostList("Device", {"Projector", "Dmx", "Lamps"})}});
        link.text = kDesk;
    }
    void Open() { Open(std::make_unique<MScriptMngRemote>(nullptr, nullptr, &link, nullptr, &engine)); }
    void Open(std::unique_ptr<MScriptMngRemote> asker) {
        remote = std::move(asker);
        dialog.emplace(nullptr);
        dialog->SetRemote(remote.get());
        dialog->SetModel(&table);
        dialog->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&*dialog, kDeadlineMs));
    }
    void OpenOnOlderLink(IManagerRemote* older) {
        Open(std::make_unique<MScriptMngRemote>(nullptr, older, nullptr, nullptr, &engine));
    }
    QListWidget& Devices() { return Find<QListWidget>(*dialog, "listDeviceList"); }
    QListWidget& Commands() { return Find<QListWidget>(*dialog, "listCommandList"); }
    QTableWidget& Params() { return Find<QTableWidget>(*dialog, "tableWidgetParams"); }
    bool IsOkEnabled() { return Find<QPushButton>(*dialog, "pushButtonOk").isEnabled(); }
    std::string Result() { return Find<QTextEdit>(*dialog, "textEditResult").toPlainText().toStdString(); }
    static std::string NamesIn(const QListWidget& list) {
        QStringList names;
        for (int row = 0; row < list.count(); ++row)
            names += list.item(row)->text();
        return names.join(QLatin1Char(' ')).toStdString();
    }
    static void ClickItem(QListWidget& list, const char* name) {
        const auto found = list.findItems(QLatin1String(name), Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1) << name;
        list.scrollToItem(found.front());
        QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, list.visualItemRect(found.front()).center());
    }
    void Choose(const char* device, const char* command) {
        ClickItem(Devices(), device);
        ClickItem(Commands(), command);
    }
    QPoint CellPoint(int row, int column) {
        const QModelIndex cell = Params().model()->index(row, column);
        Params().scrollTo(cell);
        return Params().visualRect(cell).center();
    }
    void TypeIntoCell(int row, const char* text) {
        QWidget* cells = Params().viewport();
        QTest::mouseClick(cells, Qt::LeftButton, Qt::NoModifier, CellPoint(row, 3));
        QTest::mouseDClick(cells, Qt::LeftButton, Qt::NoModifier, CellPoint(row, 3));
        QWidget* editor = QApplication::focusWidget();
        ASSERT_TRUE(editor != nullptr && editor->inherits("QLineEdit"));
        QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(editor, QLatin1String(text));
    }
    void FinishCell() { QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return); }
    /// The value of a parameter in the result.
    std::string ValueOf(const char* name) {
        const std::string text = Result();
        const std::string begin = std::string("<parameter name='") + name + "' value='";
        const std::size_t at = text.find(begin);
        if (at == std::string::npos)
            return "(none)";
        return text.substr(at + begin.size(), text.find("'/> ", at) - at - begin.size());
    }

    QScriptEngine engine;
    FakeRemote2 link;
    QStandardItemModel table;
    std::unique_ptr<MScriptMngRemote> remote;
    std::optional<DialogInsertPerformHelper> dialog;
};

TEST_F(TheComposer, HasItsTitleItsFixedSizeAndItsParts) {
    Open();
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Define a QCalverin.Perform action"));
    EXPECT_FALSE(dialog->windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
    EXPECT_EQ(dialog->minimumSize(), dialog->maximumSize());
    EXPECT_EQ(TextOf(*dialog, "checkBoxPerformAsync"), "Perform Async");
    EXPECT_EQ(TextOf(*dialog, "labelDevices"), "Devices:");
    EXPECT_EQ(TextOf(*dialog, "labelCommands"), "Commands:");
    EXPECT_EQ(TextOf(*dialog, "labelProperties"), "Properties:");
    EXPECT_EQ(TextOf(*dialog, "labelResult"), "Result:");
    EXPECT_EQ(TextOf(*dialog, "pushButtonOk"), "&Ok");
    EXPECT_EQ(TextOf(*dialog, "pushButtonCancel"), "Ca&ncel");
    EXPECT_TRUE(Find<QTextEdit>(*dialog, "textEditResult").isReadOnly());
    EXPECT_EQ(QApplication::focusWidget(), &Devices());
}

TEST_F(TheComposer, BeginsWithTheDevicesInTheOrderOfTheirNamesAndNothingChosen) {
    Open();
    EXPECT_EQ(NamesIn(Devices()), "Dmx Lamps Projector");
    EXPECT_EQ(Devices().iconSize(), QSize(32, 32));
    EXPECT_EQ(Devices().currentItem(), nullptr);
    EXPECT_EQ(Commands().count(), 0);
    EXPECT_EQ(Result(), "");
    EXPECT_TRUE(dialog->GetText().isEmpty());
    EXPECT_FALSE(IsOkEnabled());
    EXPECT_TRUE(link.calls.empty());
}

TEST_F(TheComposer, TheTableHasSixColumnsOfWhichTwoHaveNoWidth) {
    Open();
    QTableWidget& params = Params();
    const char* const headers[] = {"Type", "Name", "Direction", "Value", "Wizard", "VarSelector"};
    const QHeaderView::ResizeMode modes[] = {QHeaderView::Fixed, QHeaderView::ResizeToContents,
                                             QHeaderView::Fixed, QHeaderView::Stretch,
                                             QHeaderView::Fixed, QHeaderView::Fixed};
    ASSERT_EQ(params.columnCount(), 6);
    for (int column = 0; column < 6; ++column) {
        EXPECT_EQ(params.horizontalHeaderItem(column)->text().toStdString(), headers[column]);
        EXPECT_EQ(params.horizontalHeader()->sectionResizeMode(column), modes[column]) << column;
    }
    EXPECT_EQ(params.columnWidth(0), 22);
    EXPECT_EQ(params.columnWidth(2), 22);
    EXPECT_EQ(params.columnWidth(4), 0);
    EXPECT_EQ(params.columnWidth(5), 0);
    EXPECT_TRUE(params.horizontalHeader()->isHidden());
    EXPECT_TRUE(params.verticalHeader()->isHidden());
    EXPECT_FALSE(params.showGrid());
    EXPECT_EQ(params.selectionBehavior(), QAbstractItemView::SelectRows);
    EXPECT_EQ(params.verticalHeader()->defaultSectionSize(), std::max(20, params.fontMetrics().height() + 2));
    EXPECT_NE(dynamic_cast<CustomDelegate*>(params.itemDelegate()), nullptr);
}

TEST_F(TheComposer, AsksTheHostOnceForTheTextOfTheChosenDevice) {
    Open();
    ClickItem(Devices(), "Lamps");
    EXPECT_EQ(link.calls, std::vector<std::string>{"GetObject|Lamps|0"});
    EXPECT_EQ(link.handler, nullptr);
}

TEST_F(TheComposer, ShowsTheNamedCommandsInTheirOrderWithTheirElement) {
    Open();
    ClickItem(Devices(), "Dmx");
    EXPECT_EQ(NamesIn(Commands()), "Set Off All");
    EXPECT_EQ(Commands().currentItem(), nullptr);
    EXPECT_FALSE(IsOkEnabled());
    for (int row = 0; row < 3; ++row) {
        EXPECT_FALSE(Commands().item(row)->icon().isNull());
        EXPECT_TRUE(Commands().item(row)->data(256).toString().startsWith(QStringLiteral("<Command ID=\"")));
    }
}

TEST_F(TheComposer, GivesTheLineOfScriptForACommandWithItsValue) {
    Open();
    Choose("Dmx", "Set");
    EXPECT_EQ(Result(), "QCalverin.Perform( \"Dmx\", \"Set\", \"XML\", "
                        "\"<parameters> <parameter name='Level' value='5'/> </parameters>\" );");
    EXPECT_EQ(dialog->GetText().toStdString(), Result());
    EXPECT_TRUE(IsOkEnabled());
}

TEST_F(TheComposer, ACommandWithoutParametersGivesAnEmptyListOfThem) {
    Open();
    Choose("Projector", "Off");
    EXPECT_EQ(Params().rowCount(), 0);
    EXPECT_EQ(Result(), "QCalverin.Perform( \"Projector\", \"Off\", \"XML\", \"<parameters> </parameters>\" );");
}

TEST_F(TheComposer, AsynchronousTheLineHasNoFunctionAsMeant) {
    Open();
    Choose("Dmx", "Off");
    Click(*dialog, "checkBoxPerformAsync");
    EXPECT_EQ(Result(), "QCalverin.PerformAsync( \"Dmx\", \"Off\", \"XML\", \"<parameters> </parameters>\" );");
    Click(*dialog, "checkBoxPerformAsync");
    EXPECT_EQ(Result(), "QCalverin.Perform( \"Dmx\", \"Off\", \"XML\", \"<parameters> </parameters>\" );");
}

TEST_F(TheComposer, NamesAndValuesAreNotEscapedAsMeant) {
    link.text =
        R"(<Device><Commands><Command Name="Say &quot;x&quot;"><ObjectParams><ObjectParam>)"
        R"(<StringData Name="a'b" String="&lt;&amp;&quot;'"/></ObjectParam></ObjectParams></Command></Commands></Device>)";
    Open();
    Choose("Dmx", "Say \"x\"");
    EXPECT_EQ(Result(), "QCalverin.Perform( \"Dmx\", \"Say \"x\"\", \"XML\", "
                        "\"<parameters> <parameter name='a'b' value='<&\"''/> </parameters>\" );");
}

TEST_F(TheComposer, EachParameterHasItsRowByItsType) {
    struct Row {
        const char* name;
        const char* type;
        const char* direction;
        const char* value; ///< null: there is no item
    };
    const Row rows[] = {
        {"Text", "StringData", "in", "hello"},
        {"Mode", "EnumData", "in", nullptr},
        {"Count", "IntegerData", "in and out", "7"},
        {"Gain", "RealData", "out", "0.5"},
        {"At", "TimeData", "in", nullptr},
        {"On", "DateData", "in", nullptr},
        {"Bare", "StringData", "in", ""},
    };
    Open();
    Choose("Dmx", "All");
    ASSERT_EQ(Params().rowCount(), static_cast<int>(std::size(rows)));
    for (int row = 0; row < Params().rowCount(); ++row) {
        EXPECT_EQ(Params().item(row, 1)->text().toStdString(), rows[row].name);
        EXPECT_EQ(Params().item(row, 0)->toolTip().toStdString(), rows[row].type);
        EXPECT_EQ(Params().item(row, 2)->toolTip().toStdString(), rows[row].direction);
        for (int column = 0; column < 3; ++column)
            EXPECT_EQ(Params().item(row, column)->flags(), Qt::ItemIsSelectable | Qt::ItemIsEnabled);
        for (const int column : {0, 2}) {
            EXPECT_TRUE(Params().item(row, column)->text().isEmpty());
            EXPECT_FALSE(Params().item(row, column)->icon().isNull());
        }
        const QTableWidgetItem* value = Params().item(row, 3);
        ASSERT_EQ(value == nullptr, rows[row].value == nullptr) << rows[row].name;
        if (value != nullptr) {
            EXPECT_EQ(value->text().toStdString(), rows[row].value);
            EXPECT_EQ(value->flags(), Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsEditable);
        }
        EXPECT_EQ(Params().item(row, 4), nullptr);
        EXPECT_EQ(Params().item(row, 5), nullptr);
    }
}

TEST_F(TheComposer, AnEnumerationIsChosenFromItsNamedItems) {
    Open();
    Choose("Dmx", "All");
    auto* box = qobject_cast<QComboBox*>(Params().cellWidget(1, 3));
    ASSERT_NE(box, nullptr);
    QStringList items;
    for (int at = 0; at < box->count(); ++at)
        items += box->itemText(at);
    EXPECT_EQ(items.join(QLatin1Char(' ')), QStringLiteral("Slow Quick Cut"));
    EXPECT_EQ(ValueOf("Mode"), "Cut");
    QTest::keyClick(box, Qt::Key_Up);
    EXPECT_EQ(ValueOf("Mode"), "Quick");
}

TEST_F(TheComposer, ATypedValueIsInTheResultAtOnceAndReturnLeavesTheDialogOpen) {
    Open();
    Choose("Dmx", "Set");
    TypeIntoCell(0, "80");
    FinishCell();
    EXPECT_TRUE(QTest::qWaitFor([&] { return ValueOf("Level") == "80"; }, kDeadlineMs));
    EXPECT_TRUE(dialog->isVisible());
}

TEST_F(TheComposer, TheKeyboardBeginsAtTheFirstValueAndTypingOpensIt) {
    Open();
    Choose("Dmx", "Set");
    auto& shown = Find<QTableWidget>(*dialog, "tableWidgetParams");
    shown.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&shown, Qt::Key_8);
    ASSERT_NE(QApplication::focusWidget(), &shown);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_0);
    FinishCell();
    EXPECT_TRUE(QTest::qWaitFor([&] { return ValueOf("Level") == "80"; }, kDeadlineMs));
}

TEST_F(TheComposer, ATimeHasNoValueUntilOneIsTyped) {
    Open();
    Choose("Dmx", "All");
    EXPECT_EQ(ValueOf("At"), "");
    EXPECT_EQ(ValueOf("On"), "");
    TypeIntoCell(4, "00:00:10/00");
    FinishCell();
    EXPECT_TRUE(QTest::qWaitFor([&] { return ValueOf("At") == "00:00:10/00"; }, kDeadlineMs));
}

TEST_F(TheComposer, WhatIsStillBeingTypedCountsWhenOkIsPressedByItsKey) {
    Open();
    Choose("Dmx", "Set");
    TypeIntoCell(0, "33");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_O, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !dialog->isVisible(); }, kDeadlineMs));
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_EQ(ValueOf("Level"), "33");
}

TEST_F(TheComposer, TheKeysChooseDeviceAndCommand) {
    Open();
    QTest::keyClick(&Devices(), Qt::Key_Down);
    QTest::keyClick(&Devices(), Qt::Key_Down);
    EXPECT_EQ(link.calls, (std::vector<std::string>{"GetObject|Dmx|0", "GetObject|Lamps|0"}));
    QTest::keyClick(&Devices(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), &Commands());
    QTest::keyClick(&Commands(), Qt::Key_Down);
    QTest::keyClick(&Commands(), Qt::Key_Down);
    EXPECT_EQ(Result(), "QCalverin.Perform( \"Lamps\", \"Off\", \"XML\", \"<parameters> </parameters>\" );");
    QTest::keyClick(&Commands(), Qt::Key_Return);
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
}

TEST_F(TheComposer, AnotherDeviceTakesCommandsParametersAndResultAway) {
    Open();
    Choose("Dmx", "All");
    link.text = "<Device><Commands><Command Name='Run'/></Commands></Device>";
    ClickItem(Devices(), "Lamps");
    EXPECT_EQ(NamesIn(Commands()), "Run");
    EXPECT_EQ(Params().rowCount(), 0);
    EXPECT_EQ(Result(), "");
    EXPECT_FALSE(IsOkEnabled());
}

TEST_F(TheComposer, ADeviceThatTellsNoCommandsHasNone) {
    Open();
    for (const char* text : {"<Device/>", "<Device><Commands/></Device>",
                             "<Device><Commands><Command/></Commands></Device>", "<Device><Commands>", "", "no xml"}) {
        link.text = text;
        ClickItem(Devices(), "Dmx");
        EXPECT_EQ(Commands().count(), 0) << text;
        ClickItem(Devices(), "Lamps");
    }
    link.text = nullptr;
    ClickItem(Devices(), "Dmx");
    EXPECT_EQ(Commands().count(), 0) << "no text at all";
    link.text = kDesk;
    link.code = 64;
    ClickItem(Devices(), "Lamps");
    EXPECT_EQ(Commands().count(), 0) << "a device that has gone";
}

TEST_F(TheComposer, NamesOfHostsWithPlain8BitTextAreRead) {
    link.text = "<Device><Commands><Command Name='B\xFChne'/></Commands></Device>";
    Open();
    ClickItem(Devices(), "Dmx");
    EXPECT_EQ(NamesIn(Commands()), "B\xC3\xBChne");
}

TEST_F(TheComposer, AsksTheOlderLinkWithoutANewerOneAndGivesTheTextBack) {
    FakeRemote older;
    older.text = kDesk;
    OpenOnOlderLink(&older);
    ClickItem(Devices(), "Dmx");
    EXPECT_EQ(NamesIn(Commands()), "Set Off All");
    EXPECT_EQ(older.calls, (std::vector<std::string>{"GetObject|Dmx|0", "FreeText"}));
    EXPECT_EQ(older.textsOut, 0);
    older.code = 64;
    ClickItem(Devices(), "Lamps");
    EXPECT_EQ(Commands().count(), 0);
}

TEST_F(TheComposer, WithoutALinkWithoutAScriptsHostAndWithoutATableNothingIsOffered) {
    OpenOnOlderLink(nullptr);
    ClickItem(Devices(), "Dmx");
    EXPECT_EQ(Commands().count(), 0);
    dialog->SetRemote(nullptr);
    ClickItem(Devices(), "Lamps");
    EXPECT_EQ(Commands().count(), 0);
    dialog->SetModel(nullptr);
    EXPECT_EQ(Devices().count(), 0);
    EXPECT_FALSE(IsOkEnabled());
}

TEST_F(TheComposer, AsksNobodyAnyMoreWhenTheDeviceOfTheScriptHasGone) {
    Open();
    remote.reset();
    ClickItem(Devices(), "Dmx");
    EXPECT_TRUE(link.calls.empty());
    EXPECT_EQ(Commands().count(), 0);
}

TEST_F(TheComposer, ALateAnswerFromAnotherThreadIsShownAndASecondOneIsNot) {
    SlowRemote2 slow;
    Open(std::make_unique<MScriptMngRemote>(nullptr, nullptr, &slow, nullptr, &engine));
    ClickItem(Devices(), "Dmx");
    EXPECT_EQ(Commands().count(), 0);
    std::thread([&] { slow.Answer(kDesk); }).join();
    EXPECT_EQ(Commands().count(), 0) << "it comes through the event loop";
    EXPECT_TRUE(QTest::qWaitFor([&] { return NamesIn(Commands()) == "Set Off All"; }, kDeadlineMs));
    ClickItem(Commands(), "Off");
    slow.Answer("<Device><Commands><Command Name='Other'/></Commands></Device>");
    QApplication::processEvents();
    EXPECT_EQ(NamesIn(Commands()), "Set Off All");
    EXPECT_NE(Result(), "");
}

TEST_F(TheComposer, AnAnswerFromInsideTheCallIsShownAtOnce) {
    SlowRemote2 slow;
    slow.onQuestion = [&](IExecContext2* context) {
        slow.Hold(context);
        slow.Answer(kDesk);
    };
    Open(std::make_unique<MScriptMngRemote>(nullptr, nullptr, &slow, nullptr, &engine));
    ClickItem(Devices(), "Dmx");
    EXPECT_EQ(NamesIn(Commands()), "Set Off All");
}

TEST_F(TheComposer, ALateRefusalShowsNoCommands) {
    SlowRemote2 slow;
    Open(std::make_unique<MScriptMngRemote>(nullptr, nullptr, &slow, nullptr, &engine));
    dialog->SetPatience(1);
    ClickItem(Devices(), "Dmx");
    EXPECT_TRUE(QTest::qWaitFor([&] { return Commands().count() == 1; }, kDeadlineMs));
    slow.Answer(kDesk, 75);
    EXPECT_TRUE(QTest::qWaitFor([&] { return Commands().count() == 0; }, kDeadlineMs));
}

TEST_F(TheComposer, AHostThatDoesNotAnswerIsTalkedOfAndMayStillAnswer) {
    SlowRemote2 slow;
    Open(std::make_unique<MScriptMngRemote>(nullptr, nullptr, &slow, nullptr, &engine));
    dialog->SetPatience(1);
    ClickItem(Devices(), "Dmx");
    EXPECT_TRUE(QTest::qWaitFor([&] { return NamesIn(Commands()) == "The host has not answered yet."; }, kDeadlineMs));
    ClickItem(Commands(), "The host has not answered yet.");
    EXPECT_EQ(Commands().currentItem(), nullptr);
    EXPECT_FALSE(IsOkEnabled());
    slow.Answer(kDesk);
    EXPECT_TRUE(QTest::qWaitFor([&] { return NamesIn(Commands()) == "Set Off All"; }, kDeadlineMs));
}

TEST_F(TheComposer, AnAnswerAboutADeviceThatIsNotChosenAnyMoreIsDropped) {
    SlowRemote2 slow;
    Open(std::make_unique<MScriptMngRemote>(nullptr, nullptr, &slow, nullptr, &engine));
    ClickItem(Devices(), "Dmx");
    IExecContext2* const first = std::exchange(slow.held, nullptr);
    ClickItem(Devices(), "Lamps");
    first->SetResultText(kDesk);
    first->End();
    first->Release();
    QApplication::processEvents();
    EXPECT_EQ(Commands().count(), 0);
    slow.Answer("<Device><Commands><Command Name='Mine'/></Commands></Device>");
    EXPECT_TRUE(QTest::qWaitFor([&] { return NamesIn(Commands()) == "Mine"; }, kDeadlineMs));
}

TEST_F(TheComposer, AnAnswerThatComesWhileTheDialogGoesIsDropped) {
    SlowRemote2 slow;
    Open(std::make_unique<MScriptMngRemote>(nullptr, nullptr, &slow, nullptr, &engine));
    for (int round = 0; round < 50; ++round) {
        ClickItem(Devices(), round % 2 == 0 ? "Dmx" : "Lamps");
        std::atomic<bool> goes{false};
        std::thread host([&] {
            while (!goes)
                std::this_thread::yield();
            slow.Answer(kDesk);
        });
        goes = true;
        dialog.reset();
        host.join();
        dialog.emplace(nullptr);
        dialog->SetRemote(remote.get());
        dialog->SetModel(&table);
        dialog->show();
        QApplication::processEvents();
    }
    EXPECT_EQ(Commands().count(), 0);
}

TEST_F(TheComposer, AHostThatLetsTheUserChooseAnotherDeviceMeanwhileIsHeardOfThatOne) {
    Open();
    link.onCall = [&](IExecContext2*) {
        link.onCall = nullptr;
        link.text = "<Device><Commands><Command Name='Inner'/></Commands></Device>";
        ClickItem(Devices(), "Lamps");
    };
    ClickItem(Devices(), "Dmx");
    EXPECT_EQ(NamesIn(Commands()), "Inner");
}

TEST_F(TheComposer, EscapeCancelAndTheWindowsBoxLeaveIt) {
    Open();
    QTest::keyClick(&Devices(), Qt::Key_Escape);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    Open();
    Click(*dialog, "pushButtonCancel");
    EXPECT_FALSE(dialog->isVisible());
    Open();
    Choose("Dmx", "Off");
    CloseBox(*dialog);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
}

TEST_F(TheComposer, DrawsALineBelowEachCellAndOneBesideTheDirection) {
    Open();
    Choose("Dmx", "Off");
    const CustomDelegate delegate(Params());
    EXPECT_EQ(delegate.GetPen().widthF(), 0);
    EXPECT_EQ(delegate.GetPen().style(), Params().gridStyle());
    EXPECT_EQ(delegate.GetPen().capStyle(), Qt::SquareCap);
    EXPECT_EQ(delegate.GetPen().joinStyle(), Qt::BevelJoin);
    QStandardItemModel cells(1, 6);
    for (int column = 0; column < 6; ++column) {
        QImage paper(40, 20, QImage::Format_ARGB32);
        paper.fill(Qt::white);
        QPainter painter(&paper);
        QStyleOptionViewItem option;
        option.rect = QRect(0, 0, 30, 15);
        delegate.paint(&painter, option, cells.index(0, column));
        painter.end();
        EXPECT_EQ(paper.pixelColor(10, 5), QColor(Qt::white)) << column;
        EXPECT_NE(paper.pixelColor(10, 14), QColor(Qt::white)) << column;
        EXPECT_EQ(paper.pixelColor(29, 5) != QColor(Qt::white), column == 2) << column;
    }
}

} // namespace
