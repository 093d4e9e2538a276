#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QSpinBox>
#include <QTest>
#include <QTimeEdit>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include "Deadline.h"
#include "DriverTables.h"
#include "FormFields.h"
#include "MyDateEdit.h"
#include "MyResourceSelector.h"
#include "SettingsForm.h"

namespace {

constexpr int kKinds = kLastResourceWidget + 1;

class TheForm : public testing::Test {
protected:
    MScriptSetting& Given(const char* name, int widget, const char* value) {
        MScriptSetting setting;
        setting.name = QLatin1String(name);
        setting.widget = widget;
        setting.value = QLatin1String(value);
        settings.push_back(setting);
        return settings.back();
    }
    static void With(MScriptSetting& setting, const char* property, const char* text) {
        setting.properties.append({QLatin1String(property), QLatin1String(text)});
    }
    void Show() {
        form.resize(700, 600);
        form.ShowSettings(settings);
        form.show();
    }
    QGridLayout& Grid() const { return *form.findChild<QGridLayout*>(QStringLiteral("gridLayoutMainSetup")); }
    template <typename Field>
    Field* FieldAt(int row) const {
        QLayoutItem* item = Grid().itemAtPosition(row, 1);
        return item != nullptr ? qobject_cast<Field*>(item->widget()) : nullptr;
    }
    std::string LabelAt(int row) const {
        QLayoutItem* item = Grid().itemAtPosition(row, 0);
        auto* label = item != nullptr ? qobject_cast<QLabel*>(item->widget()) : nullptr;
        return label != nullptr ? label->text().toStdString() : "(none)";
    }
    /// The values after reading the form back, blanks between.
    std::string ReadBack() {
        form.ReadBack(settings);
        QStringList values;
        for (const MScriptSetting& setting : settings)
            values += setting.value;
        return values.join(QLatin1Char(' ')).toStdString();
    }

    ScriptSettings settings;
    SettingsForm form;
};

TEST_F(TheForm, HasOneRowForEachOfTheKindsByItsName) {
    for (int kind = 0; kind < kKinds; ++kind)
        EXPECT_STREQ(FieldKindOf(kind).name, WidgetName(kind));
    EXPECT_STREQ(FieldKindOf(-1).name, "LineEdit");
    EXPECT_STREQ(FieldKindOf(kKinds).name, "LineEdit");
}

TEST_F(TheForm, EachKindHasItsFieldItsPlaceAndItsSize) {
    struct Row {
        const char* type; ///< null for none
        bool hasLabel;
        Qt::Alignment alignment;
        QSize fixed; ///< 0 where it is free
    };
    const Qt::Alignment left = Qt::AlignLeft | Qt::AlignVCenter;
    const Row resource = {"MyResourceSelector", true, left, {}};
    const Row none = {nullptr, true, {}, {}};
    const Row rows[kKinds] = {{"QLineEdit", true, Qt::AlignVCenter, {0, 35}},
                              none,
                              {"QSpinBox", true, left, {200, 35}},
                              {"QDoubleSpinBox", true, left, {200, 35}},
                              {"QComboBox", true, left, {}},
                              {"MyDateEdit", true, left, {}},
                              {"QTimeEdit", true, left, {200, 35}},
                              none,
                              {"QCheckBox", false, left, {}},
                              none,
                              none,
                              none,
                              {"QLabel", false, {}, {}},
                              {"QFrame", false, {}, {}},
                              resource,
                              resource,
                              resource,
                              resource,
                              resource,
                              resource,
                              resource};
    for (int kind = 0; kind < kKinds; ++kind)
        Given(WidgetName(kind), kind, "");
    With(Given("Narrow", 0, ""), "Width", "90");
    Show();
    for (int kind = 0; kind < kKinds; ++kind) {
        const Row& row = rows[kind];
        const QWidget* field = FieldAt<QWidget>(kind);
        ASSERT_EQ(field != nullptr, row.type != nullptr) << WidgetName(kind);
        EXPECT_EQ(LabelAt(kind) == WidgetName(kind), row.hasLabel) << WidgetName(kind);
        EXPECT_TRUE(!row.hasLabel ||
                    Grid().itemAtPosition(kind, 0)->alignment() == (Qt::AlignRight | Qt::AlignVCenter));
        if (field == nullptr)
            continue;
        EXPECT_STREQ(field->metaObject()->className(), row.type);
        EXPECT_EQ(field->property("ScriptSetupVarName").toString(), QLatin1String(WidgetName(kind)));
        EXPECT_EQ(Grid().itemAtPosition(kind, 1)->alignment(), row.alignment) << WidgetName(kind);
        EXPECT_TRUE(row.fixed.width() <= 0 || field->minimumWidth() == row.fixed.width()) << WidgetName(kind);
        EXPECT_TRUE(row.fixed.height() <= 0 || field->maximumHeight() == row.fixed.height()) << WidgetName(kind);
    }
    EXPECT_EQ(Grid().itemAtPosition(kKinds, 1)->alignment(), left) << "one with a width of its own";
    const QSpacerItem* rest = Grid().itemAtPosition(kKinds + 2, 0)->spacerItem();
    ASSERT_NE(rest, nullptr) << "what is left belongs to no row";
    EXPECT_EQ(rest->sizeHint(), QSize(40, 20));
}

TEST_F(TheForm, ShowsALabelAloneForKindsWithoutAField) {
    for (int kind : {1, 7, 9, 10, 11})
        Given(WidgetName(kind), kind, "kept");
    Show();
    for (int row = 0; row < 5; ++row) {
        EXPECT_EQ(LabelAt(row), settings[static_cast<std::size_t>(row)].name.toStdString());
        EXPECT_EQ(FieldAt<QWidget>(row), nullptr);
    }
    EXPECT_EQ(ReadBack(), "kept kept kept kept kept");
}

TEST_F(TheForm, ReadsATypedTextBackAndHoldsItToItsLength) {
    With(Given("Address", 0, "10.0.0.1"), "MaxLength", "4");
    Show();
    auto* field = FieldAt<QLineEdit>(0);
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->text(), QStringLiteral("10.0"));
    EXPECT_EQ(field->height(), 35);
    EXPECT_EQ(field->property("ScriptSetupVarName").toString(), QStringLiteral("Address"));
    field->selectAll();
    QTest::keyClicks(field, QStringLiteral("abcdef"));
    EXPECT_EQ(ReadBack(), "abcd");
}

TEST_F(TheForm, ALineEditTakesAllTheWidthUnlessItHasOneOfItsOwn) {
    Given("Wide", 0, "");
    With(Given("Narrow", 0, ""), "Width", "90");
    Show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&form, kDeadlineMs));
    EXPECT_GT(FieldAt<QLineEdit>(0)->width(), 400);
    EXPECT_EQ(FieldAt<QLineEdit>(1)->width(), 90);
}

TEST_F(TheForm, ANegativeLengthOrWidthIsNone) {
    MScriptSetting& setting = Given("Text", 0, "abc");
    With(setting, "MaxLength", "-1");
    With(setting, "Width", "-1");
    Show();
    EXPECT_EQ(FieldAt<QLineEdit>(0)->text(), QStringLiteral("abc"));
    EXPECT_GT(FieldAt<QLineEdit>(0)->maxLength(), 30000);
}

TEST_F(TheForm, AWholeNumberHasItsLimitsItsTextsAndItsSize) {
    MScriptSetting& setting = Given("Channel", 2, "600");
    With(setting, "MinValue", "1");
    With(setting, "MaxValue", "512");
    With(setting, "Prefix", "ch ");
    With(setting, "Suffix", " dmx");
    Show();
    auto* box = FieldAt<QSpinBox>(0);
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->text(), QStringLiteral("ch 512 dmx"));
    EXPECT_EQ(box->size(), QSize(200, 35));
    QTest::keyClick(box, Qt::Key_Down);
    EXPECT_EQ(ReadBack(), "511");
}

TEST_F(TheForm, AWholeNumberWithoutLimitsIsNotCut) {
    Given("Big", 2, "2147483647");
    Given("Small", 2, "-2147483648");
    Given("None", 2, "text");
    Show();
    EXPECT_EQ(ReadBack(), "2147483647 -2147483648 0");
}

TEST_F(TheForm, ARealNumberStepsByItsLastDigit) {
    for (int precision = 1; precision <= 5; ++precision)
        With(Given("Real", 3, "1"), "Precision", std::to_string(precision).c_str());
    With(Given("Real", 3, "1"), "Precision", "6");
    With(Given("Real", 3, "1"), "Precision", "0");
    Show();
    const double steps[] = {0.1, 0.01, 0.001, 0.0001, 0.00001, 1, 1};
    for (int row = 0; row < 7; ++row)
        EXPECT_DOUBLE_EQ(FieldAt<QDoubleSpinBox>(row)->singleStep(), steps[row]) << row;
    EXPECT_EQ(FieldAt<QDoubleSpinBox>(0)->decimals(), 1);
}

TEST_F(TheForm, ARealNumberThatIsEnteredIsReadBackWithSixDigitsAsMeant) {
    Given("Gain", 3, "0");
    Given("Small", 3, "0");
    Show();
    FieldAt<QDoubleSpinBox>(0)->setValue(-1234567.5);
    FieldAt<QDoubleSpinBox>(1)->setValue(0.25);
    EXPECT_EQ(ReadBack(), "-1.23457e+06 0.25");
}

TEST_F(TheForm, ARealNumberThatIsNotTouchedKeepsAllItsDigits) {
    for (const char* value : {"3.14159265", "-1234567.5", "1e-7", "0.10"})
        Given("Real", 3, value);
    With(Given("Coarse", 3, "2.71828"), "Precision", "1");
    With(Given("Limited", 3, "7.123456789"), "MaxValue", "5");
    Given("None", 3, "soon");
    for (MScriptSetting& setting : settings)
        setting.name += QString::number(&setting - &settings[0]);
    Show();
    EXPECT_EQ(ReadBack(), "3.14159265 -1234567.5 1e-7 0.10 2.71828 5 0");
}

TEST_F(TheForm, AChoiceIsItsIndex) {
    MScriptSetting& setting = Given("Mode", 4, "1");
    setting.items = QStringList{QStringLiteral("off"), QStringLiteral("on"), QStringLiteral("auto")};
    MScriptSetting& byText = Given("Start", 4, "auto");
    byText.items = settings[0].items;
    Show();
    auto* box = FieldAt<QComboBox>(0);
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->currentText(), QStringLiteral("on"));
    EXPECT_EQ(FieldAt<QComboBox>(1)->currentText(), QStringLiteral("auto"));
    EXPECT_GE(box->width(), 200);
    QTest::keyClick(box, Qt::Key_Up);
    EXPECT_EQ(ReadBack(), "0 2");
}

TEST_F(TheForm, AChoiceOfAnItemThatIsNotThereShowsItAndKeepsItUntilAnotherIsChosen) {
    Given("Mode", 4, "77").items = QStringList{QStringLiteral("off"), QStringLiteral("on")};
    Show();
    EXPECT_EQ(FieldAt<QComboBox>(0)->placeholderText(), QStringLiteral("77 (no item)"));
    EXPECT_EQ(ReadBack(), "77");
    QTest::keyClick(FieldAt<QComboBox>(0), Qt::Key_Down);
    EXPECT_EQ(ReadBack(), "0");
}

TEST_F(TheForm, AChoiceWithoutItemsSaysSoAndKeepsItsValue) {
    Given("Mode", 4, "3");
    Show();
    EXPECT_EQ(FieldAt<QComboBox>(0)->placeholderText(), QStringLiteral("no items (Type is not \"Enum\")"));
    QTest::keyClick(FieldAt<QComboBox>(0), Qt::Key_Down);
    EXPECT_EQ(ReadBack(), "3");
}

TEST_F(TheForm, ADateIsATextOrANumberOfDays) {
    Given("Text", 5, "24/12/2026");
    Given("Days", 5, "366");
    Given("Neither", 5, "soon");
    Show();
    EXPECT_NE(FieldAt<MyDateEdit>(0), nullptr);
    EXPECT_EQ(ReadBack(), "24/12/2026 366 01/01/1900");
    FieldAt<MyDateEdit>(1)->SetDate(2, 1, 1902);
    EXPECT_EQ(ReadBack(), "24/12/2026 02/01/1902 01/01/1900");
}

TEST_F(TheForm, ATimeComesBackToTheSameFrameInEachTimeCode) {
    const char* times[] = {"01:02:03/23", "01:02:03/24", "01:02:03/29", "01:02:03/29", "01:02:03/99", "01:02:03/999"};
    for (int type = 0; type < 6; ++type)
        With(Given(std::to_string(type).c_str(), 6, times[type]), "TimeCodeType", std::to_string(type).c_str());
    Show();
    EXPECT_EQ(FieldAt<QTimeEdit>(1)->text(), QStringLiteral("01:02:03/960"));
    EXPECT_EQ(FieldAt<QTimeEdit>(0)->size(), QSize(200, 35));
    for (MScriptSetting& setting : settings)
        setting.value = QStringLiteral("00:00:00/00"); // the field is read, not the value
    EXPECT_EQ(ReadBack(), "01:02:03/23 01:02:03/24 01:02:03/29 01:02:03/29 01:02:03/99 01:02:03/999");
}

TEST_F(TheForm, EveryFrameOfASecondComesBack) {
    const int rates[] = {24, 25, 30, 30, 100, 1000};
    for (int type = 0; type < 6; ++type) {
        for (int frame = 0; frame < rates[type]; ++frame) {
            settings.clear();
            MScriptSetting& setting = Given("Time", 6, "");
            setting.value = QStringLiteral("10:00:01/%1").arg(frame, type == 5 ? 3 : 2, 10, QLatin1Char('0'));
            With(setting, "TimeCodeType", std::to_string(type).c_str());
            const std::string before = setting.value.toStdString();
            form.ShowSettings(settings);
            settings[0].value = QStringLiteral("00:00:00/00");
            ASSERT_EQ(ReadBack(), before) << type;
        }
    }
}

TEST_F(TheForm, ATimeThatIsNotTouchedKeepsItsForm) {
    for (const char* value : {"1.5", "1:02:03", "25:00:00/00", "90061", "soon", ""})
        With(Given("Time", 6, value), "TimeCodeType", "5");
    for (MScriptSetting& setting : settings)
        setting.name += QString::number(&setting - &settings[0]);
    Show();
    EXPECT_EQ(ReadBack(), "1.5 1:02:03 25:00:00/00 90061 00:00:00/000 00:00:00/000");
}

TEST_F(TheForm, ATimeOfATypeThatIsNoneCountsHundredths) {
    With(Given("Time", 6, "00:00:01/50"), "TimeCodeType", "99");
    With(Given("Other", 6, "00:00:01/50"), "TimeCodeType", "-1");
    Show();
    EXPECT_EQ(FieldAt<QTimeEdit>(0)->time(), QTime(0, 0, 1, 500));
    EXPECT_EQ(FieldAt<QTimeEdit>(1)->time(), QTime(0, 0, 1, 500));
    FieldAt<QTimeEdit>(0)->setTime(QTime(0, 0, 2, 250));
    EXPECT_EQ(ReadBack(), "00:00:02/25 00:00:01/50");
}

TEST_F(TheForm, ATimeWithoutATypeCountsHundredths) {
    Given("Time", 6, "00:00:01/50");
    Show();
    EXPECT_EQ(FieldAt<QTimeEdit>(0)->time(), QTime(0, 0, 1, 500));
}

TEST_F(TheForm, ACheckBoxSaysItsNameItself) {
    Given("Talk & listen", 8, "0");
    Show();
    auto* box = FieldAt<QCheckBox>(0);
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(LabelAt(0), "(none)");
    EXPECT_EQ(box->text(), QStringLiteral("Talk && listen"));
    QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, QPoint(8, box->height() / 2));
    EXPECT_EQ(ReadBack(), "1");
}

TEST_F(TheForm, ALabelAndADividerTakeTheWholeRow) {
    Given("Head", 12, "Network");
    Given("Line", 13, "");
    Show();
    auto* label = FieldAt<QLabel>(0);
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->text(), QStringLiteral("Network"));
    EXPECT_EQ(FieldAt<QFrame>(1)->frameShape(), QFrame::HLine);
    EXPECT_EQ(Grid().itemAtPosition(0, 0)->widget(), label);
    EXPECT_EQ(ReadBack(), "Network ");
}

TEST_F(TheForm, AResourceKeepsItsIdAndItsChannelWithoutAHostThatOffersAny) {
    Given("Port", 14, "{ \"Type\":\"Serial\", \"ResourceID\":3, \"ChannelIndex\":0 }");
    Given("In", 17, "{\"ResourceID\":2,\"ChannelIndex\":7}");
    Given("None", 20, "nonsense");
    Show();
    form.ReadBack(settings);
    EXPECT_EQ(settings[0].value, QStringLiteral("{ \"Type\":\"Serial\", \"ResourceID\":3 }"));
    EXPECT_EQ(settings[1].value, QStringLiteral("{ \"Type\":\"DigitalIn\", \"ResourceID\":2, \"ChannelIndex\":7 }"));
    EXPECT_EQ(settings[2].value, QStringLiteral("{ \"Type\":\"AnalogOut\", \"ResourceID\":-1, \"ChannelIndex\":-1 }"));
}

TEST_F(TheForm, IsMadeAnewWithoutTracesOfTheLastOne) {
    for (int row = 0; row < 10; ++row)
        Given("Old", 0, "old");
    Show();
    settings.clear();
    Given("New", 0, "new");
    form.ShowSettings(settings);
    EXPECT_EQ(form.findChildren<QLineEdit*>().size(), 1);
    EXPECT_EQ(LabelAt(0), "New");
    EXPECT_EQ(FieldAt<QLineEdit>(1), nullptr);
    EXPECT_EQ(Grid().columnStretch(1), 2);
}

TEST_F(TheForm, ReadsNothingIntoSettingsThatItDoesNotShow) {
    Given("Shown", 0, "a");
    Show();
    settings.clear();
    Given("Other", 0, "b");
    EXPECT_EQ(ReadBack(), "b");
}

TEST_F(TheForm, EveryFieldThatCanBeWorkedHasAnAccessibleName) {
    for (int kind = 0; kind < kKinds; ++kind)
        Given(WidgetName(kind), kind, "");
    Show();
    for (int row = 0; row < kKinds; ++row) {
        QWidget* field = FieldAt<QWidget>(row);
        if (field == nullptr || field->inherits("QLabel") || row == 13)
            continue;
        QWidget* focus = field->focusProxy() != nullptr ? field->focusProxy() : field;
        EXPECT_EQ(focus->accessibleName(), QLatin1String(WidgetName(row)));
        EXPECT_NE(focus->focusPolicy(), Qt::NoFocus) << WidgetName(row);
    }
}

TEST_F(TheForm, TheWheelChangesNoFieldThatIsNotBeingWorked) {
    Given("Level", 2, "5");
    Given("Other", 0, "");
    Show();
    auto* box = FieldAt<QSpinBox>(0);
    FieldAt<QLineEdit>(1)->setFocus();
    const QPointF at = box->rect().center();
    QWheelEvent turn(at, box->mapToGlobal(at.toPoint()), QPoint(), QPoint(0, 120), Qt::NoButton, Qt::NoModifier,
                     Qt::NoScrollPhase, false);
    QApplication::sendEvent(box, &turn);
    EXPECT_EQ(box->value(), 5);
}

} // namespace
