#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include <QAbstractItemView>
#include <QCompleter>

#include "ListingRemote.h"
#include "ScriptCalls.h"
#include "SetupDialogFixture.h"

inline constexpr int kOfferedCalls = static_cast<int>(std::size(kScriptCalls));

/// A list as a host gives it. @param rows "name" or "name=value".
inline std::string HostList(const char* type, const std::vector<std::string>& rows) {
    std::string text = "<Objects>";
    for (const std::string& row : rows) {
        const std::size_t sign = std::min(row.find('='), row.size());
        const std::string value = sign < row.size() ? row.substr(sign + 1) : "";
        text += "<Object Name=\"" + row.substr(0, sign) + "\" Type=\"" + type + "\" Value=\"" + value + "\"/>";
    }
    return text + "</Objects>";
}

/// The shortest of several runs, in milliseconds: what else the machine does makes them longer, never shorter.
inline double ShortestRun(const std::function<void()>& work) {
    constexpr int kRuns = 7;
    double shortest = 1e9;
    for (int run = 0; run < kRuns; ++run) {
        const auto begin = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double, std::milli> lasted = std::chrono::steady_clock::now() - begin;
        shortest = std::min(shortest, lasted.count());
    }
    return shortest;
}

/// How many times as long as other work some work takes, at best: both are done in turns, so that what else the machine does slows
/// both alike in at least one of them.
inline double SmallestRatio(const std::function<void()>& work, const std::function<void()>& other) {
    constexpr int kTurns = 15;
    double smallest = 1e9;
    for (int turn = 0; turn < kTurns; ++turn) {
        const auto begin = std::chrono::steady_clock::now();
        other();
        const auto between = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> first = between - begin;
        const std::chrono::duration<double> second = std::chrono::steady_clock::now() - between;
        smallest = std::min(smallest, second / first);
    }
    return smallest;
}

/// The setup dialog in a host that lists its objects.
class TheDialogInAShow : public TheSetupDialog {
protected:
    void SetUp() override {
        link.lists[6] = HostList("Variable", {"Level=IntegerData", "Lamp name=StringData", "Dimmer=RealData"});
        link.lists[27] = HostList("UserGroup", {"Stage", "Hall"});
        link.lists[3] = HostList("Task", {"Opening", "Curtain"});
        link.lists[28] = HostList("Cue", {"Cue 1", "Blackout"});
        link.lists[8] = HostList("UserScreen", {"Main", "Service"});
        link.lists[1] = HostList("Device", {"Projector", "Desk", "Lampenpult"});
        host.offerRemoteManager = true;
        host.remote = &link;
        TheSetupDialog::SetUp();
    }
    /// A device whose dialog has been left with the option ticked or not.
    void GivenCompletion(bool isEnabled) {
        DeviceSetup stored;
        stored.name = QStringLiteral("Desk");
        SetupScript script;
        script.programmingMode = true;
        script.autoCompletion = isEnabled;
        stored.script = script;
        ASSERT_EQ(device->SetSetup(PrintSetup(stored).c_str()), KXP_OK);
    }
    static QCompleter& Completer(QWidget& dialog) {
        auto* completer = dialog.findChild<QCompleter*>();
        if (completer == nullptr)
            throw std::runtime_error("there is no completer");
        return *completer;
    }
    /// Types into an empty editor. @return the list of completions.
    static QAbstractItemView& TypeIntoEditor(QWidget& dialog, const char* text) {
        QPlainTextEdit& editor = Editor(dialog);
        editor.setFocus();
        editor.selectAll();
        QTest::keyClick(&editor, Qt::Key_Delete);
        QTest::keyClicks(&editor, QLatin1String(text));
        return *Completer(dialog).popup();
    }
    /// What is offered at the moment.
    static QStringList Offered(QWidget& dialog) {
        const QAbstractItemModel& model = *Completer(dialog).completionModel();
        QStringList names;
        for (int row = 0; row < model.rowCount(); ++row)
            names += model.index(row, 0).data().toString();
        return names;
    }

    ListingRemote link;
};
