#pragma once

#include <stdexcept>

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTabBar>
#include <QTableWidget>
#include <QTabWidget>

#include "SetupFixture.h"

/// A script with a form, variables and a command.
inline constexpr const char* kDriver = R"(({
    Setup: { Address: "10.0.0.1", Channel: 3 },
    Device: { Level: 5, Gain: 0.5, Name: "x" },
    Play: function(a) {},
    Info: { Title: "Lamp", Version: "1.2", Author: "Ada", Description: "Two\nlines" }
}))";

/// The setup dialog with what a user does in it.
class TheSetupDialog : public SetupFixture {
protected:
    static QTabWidget& Tabs(QWidget& dialog) { return Find<QTabWidget>(dialog, "tabWidget"); }
    static void ClickTab(QWidget& dialog, int index) {
        QTabBar* bar = Tabs(dialog).tabBar();
        QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->tabRect(index).center());
    }
    static QPlainTextEdit& Editor(QWidget& dialog) { return Find<QPlainTextEdit>(dialog, "plainTextEditScript"); }
    static void TypeScript(QWidget& dialog, const char* text) {
        ClickTab(dialog, 1);
        QPlainTextEdit& editor = Editor(dialog);
        editor.setFocus();
        editor.selectAll();
        QApplication::clipboard()->setText(QString::fromUtf8(text));
        QTest::keyClick(&editor, Qt::Key_V, Qt::ControlModifier);
    }
    static QLineEdit& Field(QWidget& dialog, const char* setting) {
        for (QLineEdit* field : dialog.findChildren<QLineEdit*>())
            if (field->property("ScriptSetupVarName").toString() == QLatin1String(setting))
                return *field;
        throw std::runtime_error(std::string("no field ") + setting);
    }
    static QTableWidget& Table(QWidget& dialog) { return Find<QTableWidget>(dialog, "tableWidgetVar"); }
    static std::string Cell(QWidget& dialog, int row, int column) {
        const QTableWidgetItem* item = Table(dialog).item(row, column);
        return item != nullptr ? item->text().toStdString() : "(none)";
    }
    static QPoint CellPoint(QWidget& dialog, int row, int column) {
        return Table(dialog).visualItemRect(Table(dialog).item(row, column)).center();
    }
    static void DoubleClickCell(QWidget& dialog, int row, int column) {
        QWidget* view = Table(dialog).viewport();
        QTest::mouseClick(view, Qt::LeftButton, Qt::NoModifier, CellPoint(dialog, row, column));
        QTest::mouseDClick(view, Qt::LeftButton, Qt::NoModifier, CellPoint(dialog, row, column));
    }
    static void ClickCheckMark(QWidget& dialog, int row) {
        const QRect cell = Table(dialog).visualItemRect(Table(dialog).item(row, 3));
        QTest::mouseClick(Table(dialog).viewport(), Qt::LeftButton, Qt::NoModifier,
                          QPoint(cell.left() + 11, cell.center().y()));
    }
    static auto Cancel() {
        return [](QWidget& dialog) { Click(dialog, "pushButtonCancel"); };
    }
    static auto Ok() {
        return [](QWidget& dialog) { Click(dialog, "pushButtonOk"); };
    }
    std::string StoredValue(const char* setting) const {
        for (const MScriptSetting& stored : device->GetStoredSetup().GetSettings())
            if (stored.name == QLatin1String(setting))
                return stored.value.toStdString();
        return "(none)";
    }
};
