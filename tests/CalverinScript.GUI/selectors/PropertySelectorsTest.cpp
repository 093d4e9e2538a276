#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QWindow>

#include "Contrast.h"
#include "Deadline.h"
#include "MSelectorWizard.h"
#include "SetupFixture.h"

namespace {

constexpr const char* kParameter = "what";

/// The parameters of one command with one parameter of the name that a host would ask for.
class Parameters : public IObjectParams {
public:
    virtual ~Parameters() = default;
    KXPCode QueryInterface(const char*, void**) override { return KXP_NO_INTERFACE; }
    KXPCode Release() override { return KXP_OK; }
    KXPCode SetProperty(const char* name, const char* text, std::uint32_t, std::uint32_t) override {
        m_properties[name] = text;
        return KXP_OK;
    }
    std::function<void()> onProperty;

    const char* GetProperty(const char* name) override {
        if (onProperty)
            onProperty();
        const auto found = m_properties.find(name);
        return found != m_properties.end() ? found->second.c_str() : nullptr;
    }
    IObjectParam* GetParam(std::uint32_t index) override {
        return index == 0 ? nullptr : index == 1 ? &other : index == 2 ? &value : nullptr;
    }
    std::uint32_t GetParamCount() override { return 3; }

    plain::Value other{"other", KXP_STRING_DATA, "untouched"};
    plain::Value value{kParameter, KXP_STRING_DATA, ""};

private:
    std::map<std::string, std::string> m_properties;
};

class TheSelectors : public SetupFixture {
protected:
    void SetUp() override {
        SetupFixture::SetUp();
        module.devices.Add(device);
        device->GetStoredSetup().SetDeviceNumber(1);
        MSelectorWizard::SetPlace(host.Root(), &module);
    }
    void TearDown() override {
        MSelectorWizard::SetPlace(nullptr, nullptr);
        if (second != nullptr)
            second->Release();
        SetupFixture::TearDown();
        EXPECT_EQ(plain::Value::OutstandingTexts(), 0);
    }
    void GivenSecondDevice(const char* name, const char* script, std::uint32_t number = 2) {
        second = new MCalverinScript_Device(&module, &setup, name);
        second->SetDeviceVariables(&m_secondVariables);
        module.devices.Add(second);
        second->GetStoredSetup().SetDeviceNumber(number);
        DeviceSetup stored;
        stored.name = QLatin1String(name);
        stored.script = SetupScript();
        stored.script->text = QLatin1String(script);
        ASSERT_EQ(second->SetSetup(PrintSetup(stored).c_str()), KXP_OK);
    }
    void GivenDeviceId(const char* id) { params.SetProperty("ObjectParamDescriptor::DeviceID", id, 0, 0); }
    /// Lets a selector ask, and the user answer.
    std::uint32_t Select(IPropertySelector& selector, const std::function<void(QWidget&)>& answer) {
        dialogs.Expect(answer);
        return selector.Select(nullptr, &params, kParameter, nullptr);
    }
    static QListWidget& List(QWidget& dialog) { return Find<QListWidget>(dialog, "listWidgetFunctionList"); }
    static std::string Lines(QWidget& dialog) {
        std::string lines;
        for (int row = 0; row < List(dialog).count(); ++row)
            lines += List(dialog).item(row)->text().toStdString() + "\n";
        return lines;
    }
    static void ClickRow(QWidget& dialog, int row, bool twice = false) {
        const QPoint place = List(dialog).visualItemRect(List(dialog).item(row)).center();
        QTest::mouseClick(List(dialog).viewport(), Qt::LeftButton, Qt::NoModifier, place);
        if (twice)
            QTest::mouseDClick(List(dialog).viewport(), Qt::LeftButton, Qt::NoModifier, place);
    }
    /// As a user does for characters that are not on the keyboard.
    static void Paste(QWidget& field, const QString& text) {
        QApplication::clipboard()->setText(text);
        QTest::keyClick(&field, Qt::Key_V, Qt::ControlModifier);
    }
    /// Gives the file dialog a file's path.
    static std::function<void(QWidget&)> ChooseFile(const std::string& path) {
        return [path](QWidget& dialog) {
            Find<QLineEdit>(dialog, "fileNameEdit").selectAll();
            Paste(Find<QLineEdit>(dialog, "fileNameEdit"), QString::fromStdString(path));
            QTest::keyClick(&Find<QLineEdit>(dialog, "fileNameEdit"), Qt::Key_Return);
        };
    }
    static void Escape(QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }

    Parameters params;
    MScriptSelectorWizard files;
    MScriptTextSelectorWizard texts;
    MFunctionSelectorWizard functions;
    MCalverinScript_Device* second = nullptr;

private:
    plain::Variables m_secondVariables;
};

struct SelectorRow {
    const char* registeredName;
    const char* name;
    MSelectorWizard* (*make)();
};

/// Two names are the same, as is meant.
const SelectorRow kSelectorRows[] = {
    {"IScriptSelector", "Select Script File", []() -> MSelectorWizard* { return new MScriptSelectorWizard(true); }},
    {"IScriptTextSelector", "Select Script Function",
     []() -> MSelectorWizard* { return new MScriptTextSelectorWizard(true); }},
    {"IFunctionSelector", "Select Script Function",
     []() -> MSelectorWizard* { return new MFunctionSelectorWizard(true); }}};

TEST_F(TheSelectors, AreCalledAsHostsKnowThem) {
    for (const SelectorRow& row : kSelectorRows) {
        MSelectorWizard* selector = row.make();
        EXPECT_STREQ(selector->GetName(), row.name);
        EXPECT_STREQ(selector->GetRegisteredName(), row.registeredName);
        EXPECT_EQ(selector->Reserved3(nullptr), 1u);
        EXPECT_EQ(selector->Release(), KXP_OK);
    }
}

TEST_F(TheSelectors, AnswerTheNamesOfTheirTwoFaces) {
    for (MSelectorWizard* selector : std::initializer_list<MSelectorWizard*>{&files, &texts, &functions}) {
        auto* face = static_cast<IPropertySelector*>(selector);
        auto* factory = static_cast<IObjectFactory*>(selector);
        for (IMInterface* root : std::initializer_list<IMInterface*>{face, factory}) {
            EXPECT_EQ(QueryFace<IMInterface>(root, "IMInterface"), static_cast<IMInterface*>(face));
            EXPECT_EQ(QueryFace<IPropertySelector>(root, "IPropertySelector"), face);
            EXPECT_EQ(QueryFace<IObjectFactory>(root, "IObjectFactory"), factory);
            void* out = root;
            EXPECT_EQ(root->QueryInterface("IScriptSelector", &out), KXPCode{KXP_NO_INTERFACE});
            EXPECT_EQ(out, nullptr);
            EXPECT_EQ(root->QueryInterface(nullptr, &out), KXPCode{KXP_BAD_INTERFACE_ARG});
            EXPECT_EQ(root->QueryInterface("IMInterface", nullptr), KXPCode{KXP_BAD_INTERFACE_ARG});
        }
    }
}

TEST_F(TheSelectors, MakeMoreOfTheirOwnKindAndOfNoOther) {
    for (const SelectorRow& row : kSelectorRows) {
        MSelectorWizard* selector = row.make();
        IMInterface* made = selector->CreateObject(row.registeredName);
        auto* another = QueryFace<IPropertySelector>(made, "IPropertySelector");
        ASSERT_NE(another, nullptr);
        EXPECT_NE(another, static_cast<IPropertySelector*>(selector));
        EXPECT_STREQ(another->GetName(), row.name);
        EXPECT_EQ(another->Release(), KXP_OK);
        for (const char* other : {"", "ISelector", "IPropertySelector", static_cast<const char*>(nullptr)})
            EXPECT_EQ(selector->CreateObject(other), nullptr);
        selector->Release();
    }
}

TEST_F(TheSelectors, OfTheModuleStayWhenAHostReleasesThem) {
    EXPECT_EQ(static_cast<IPropertySelector&>(files).Release(), KXP_OK);
    EXPECT_STREQ(files.GetName(), "Select Script File");
}

TEST_F(TheSelectors, AskNothingWithoutAParameterToFill) {
    for (MSelectorWizard* selector : std::initializer_list<MSelectorWizard*>{&files, &texts, &functions}) {
        EXPECT_EQ(selector->Select(nullptr, nullptr, kParameter, nullptr), 0u) << "no parameters";
        EXPECT_EQ(selector->Select(nullptr, &params, nullptr, nullptr), 0u) << "no name";
        EXPECT_EQ(selector->Select(nullptr, &params, "unknown", nullptr), 0u);
    }
}

TEST_F(TheSelectors, AskNothingWhereThereIsNoScreen) {
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (platform != "offscreen")
        GTEST_SKIP() << "there is one";
    qunsetenv("QT_QPA_PLATFORM"); // the platform was chosen for want of another
    EXPECT_EQ(texts.Select(nullptr, &params, kParameter, nullptr), 0u);
    qputenv("QT_QPA_PLATFORM", platform);
}

TEST_F(TheSelectors, AFileThatIsPickedBecomesTheParametersText) {
    const std::string path = WriteLibrary("lamp.js", "({})");
    EXPECT_EQ(Select(files,
                     [&](QWidget& dialog) {
                         auto& file = dynamic_cast<QFileDialog&>(dialog);
                         EXPECT_EQ(file.windowTitle(), QStringLiteral("Open Calverin Script"));
                         EXPECT_EQ(file.nameFilters(), (QStringList{QStringLiteral("Calverin Script (*.js)"),
                                                                    QStringLiteral("All Files (*)")}));
                         EXPECT_EQ(file.directory().path().toStdString(), Library()) << "where the scripts are";
                         ChooseFile(path)(dialog);
                     }),
              1u);
    EXPECT_EQ(params.value.Text(), path);
    EXPECT_EQ(params.other.Text(), "untouched");
}

TEST_F(TheSelectors, TheFileDialogBeginsWithThePresentFile) {
    Write(Project() + "/here.js", "({})");
    params.value.SetValueFromString((Project() + "/here.js").c_str(), 0, 0);
    Select(files, [&](QWidget& dialog) {
        EXPECT_EQ(dynamic_cast<QFileDialog&>(dialog).directory().path().toStdString(), Project());
        EXPECT_EQ(Find<QLineEdit>(dialog, "fileNameEdit").text(), QStringLiteral("here.js"));
        Escape(dialog);
    });
}

TEST_F(TheSelectors, CancellingTheFileDialogLeavesTheParameterAndIsHandled) {
    params.value.SetValueFromString("before", 0, 0);
    EXPECT_EQ(Select(files, Escape), 1u);
    EXPECT_EQ(params.value.Text(), "before");
}

TEST_F(TheSelectors, AFileWhoseNameTheHostCannotCarryIsRefusedAndAskedForAgain) {
    const std::string path = WriteLibrary("\xD0\x9B.js", "({})"); // a Cyrillic letter
    dialogs.Expect(ChooseFile(path));
    dialogs.Expect(Press("pushButtonOk", "characters that the host does not know"));
    dialogs.Expect(Escape);
    EXPECT_EQ(files.Select(nullptr, &params, kParameter, nullptr), 1u);
    EXPECT_EQ(params.value.History().size(), 0u);
}

TEST_F(TheSelectors, AVariableThatIsBoundToTheParameterStaysAsItIs) {
    plain::Value variable("Bound", KXP_STRING_DATA, "bound");
    params.value.SetBound(&variable);
    const std::string path = WriteLibrary("lamp.js", "({})");
    Select(files, ChooseFile(path));
    EXPECT_EQ(variable.Text(), "bound");
    EXPECT_EQ(params.value.Text(), path);
}

TEST_F(TheSelectors, TheTextSelectorEditsThePresentText) {
    params.value.SetValueFromString("({\n\tA: 1\n})", 0, 0);
    EXPECT_EQ(Select(texts,
                     [](QWidget& dialog) {
                         EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Script Text Selector"));
                         auto& editor = Find<QPlainTextEdit>(dialog, "plainTextEdit");
                         EXPECT_TRUE(editor.hasFocus());
                         EXPECT_EQ(editor.toPlainText(), QStringLiteral("({\n\tA: 1\n})"));
                         editor.moveCursor(QTextCursor::End);
                         Paste(editor, QStringLiteral(" // \u00E4"));
                         Click(dialog, "pushButtonOk");
                     }),
              1u);
    EXPECT_EQ(params.value.Text(), "({\n\tA: 1\n}) // \xE4") << "in the host's 8 bits";
}

TEST_F(TheSelectors, TheTextSelectorKeepsCharactersThatOnlyLookLikeBlanks) {
    params.value.SetValueFromString("a\xA0z", 0, 0);
    Select(texts, [](QWidget& dialog) { Click(dialog, "pushButtonOk"); });
    EXPECT_EQ(params.value.Text(), "a\xA0z");
}

TEST_F(TheSelectors, CancellingTheTextLeavesTheParameter) {
    params.value.SetValueFromString("before", 0, 0);
    for (const char* key : {"pushButtonCancel", ""}) {
        EXPECT_EQ(Select(texts,
                         [key](QWidget& dialog) {
                             QTest::keyClicks(&Find<QPlainTextEdit>(dialog, "plainTextEdit"), QStringLiteral("more"));
                             if (*key != '\0')
                                 Click(dialog, key);
                             else
                                 Escape(dialog);
                         }),
                  1u);
        EXPECT_EQ(params.value.Text(), "before");
    }
}

TEST_F(TheSelectors, ATextThatTheHostGetsOnlyInPartIsAskedAbout) {
    const auto typeCyrillic = [](QWidget& dialog) {
        Paste(Find<QPlainTextEdit>(dialog, "plainTextEdit"), QStringLiteral("x\u041B"));
        Click(dialog, "pushButtonOk");
        if (dialog.isVisible())
            Click(dialog, "pushButtonCancel");
    };
    dialogs.Expect(typeCyrillic);
    dialogs.Expect(Press("pushButtonCancel", "characters that the host does not know"));
    texts.Select(nullptr, &params, kParameter, nullptr);
    EXPECT_EQ(params.value.History().size(), 0u);
    dialogs.Expect(typeCyrillic);
    dialogs.Expect(Press("pushButtonOk", "characters that the host does not know"));
    texts.Select(nullptr, &params, kParameter, nullptr);
    EXPECT_EQ(params.value.Text(), "x?");
}

TEST_F(TheSelectors, WithoutADeviceAllDevicesAreListedUnderTheirHeadings) {
    GivenScript("({ Play: function() {}, Halt: function() {} })");
    GivenSecondDevice("Lamp", "({ On: function() {} })");
    for (const char* id : {"", "0"}) {
        GivenDeviceId(id);
        EXPECT_EQ(Select(functions,
                         [](QWidget& dialog) {
                             EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Script Function Selector"));
                             EXPECT_EQ(Lines(dialog), "---- DEVICE Desk ----\nPlay\nHalt\n---- DEVICE Lamp ----\nOn\n");
                             Escape(dialog);
                         }),
                  1u);
    }
}

TEST_F(TheSelectors, OfADeviceItsOwnFunctionsAloneAreListed) {
    GivenScript("({ Play: function() {}, _hidden: function() {} })");
    GivenSecondDevice("Lamp", "({ On: function() {} })");
    GivenDeviceId("2");
    Select(functions, [](QWidget& dialog) {
        EXPECT_EQ(Lines(dialog), "On\n");
        Escape(dialog);
    });
    GivenDeviceId("1");
    Select(functions, [](QWidget& dialog) {
        EXPECT_EQ(Lines(dialog), "Play\n");
        Escape(dialog);
    });
}

TEST_F(TheSelectors, TwoDevicesOfOneNumberAreListedUnderTheirHeadings) {
    GivenScript("({ Play: function() {} })");
    GivenSecondDevice("Lamp", "({ On: function() {} })", 1);
    GivenDeviceId("1");
    Select(functions, [](QWidget& dialog) {
        EXPECT_EQ(Lines(dialog), "---- DEVICE Desk ----\nPlay\n---- DEVICE Lamp ----\nOn\n");
        Escape(dialog);
    });
}

TEST_F(TheSelectors, OfADeviceThatIsGoneNothingIsListed) {
    GivenScript("({ Play: function() {} })");
    GivenDeviceId("7");
    Select(functions, [](QWidget& dialog) {
        EXPECT_EQ(Lines(dialog), "");
        EXPECT_FALSE(Find<QPushButton>(dialog, "pushButtonOk").isEnabled());
        Escape(dialog);
    });
    MSelectorWizard::SetPlace(nullptr, nullptr);
    GivenDeviceId("1");
    EXPECT_EQ(Select(functions,
                     [](QWidget& dialog) {
                         EXPECT_EQ(Lines(dialog), "") << "without a module";
                         Escape(dialog);
                     }),
              1u);
}

TEST_F(TheSelectors, OfADeviceThatRunsTheRunningScriptCounts) {
    GivenScript("({ Stored: function() {} })");
    GivenDeviceId("1");
    device->Start();
    auto load = plain::Params({"({ Loaded: function() {} })"});
    ASSERT_EQ(device->ExecuteCommand(1, &load, nullptr), KXP_OK);
    ASSERT_TRUE(variables.functions.WaitFor("Loaded\n"));
    Select(functions, [](QWidget& dialog) {
        EXPECT_EQ(Lines(dialog), "Loaded\n");
        Escape(dialog);
    });
    device->Stop();
    Select(functions, [](QWidget& dialog) {
        EXPECT_EQ(Lines(dialog), "Stored\n");
        Escape(dialog);
    });
}

TEST_F(TheSelectors, APickedFunctionIsStoredByItsBareName) {
    GivenScript("({ Play: function() {}, Halt: function() {} })");
    EXPECT_EQ(Select(functions,
                     [](QWidget& dialog) {
                         EXPECT_FALSE(Find<QPushButton>(dialog, "pushButtonOk").isEnabled());
                         ClickRow(dialog, 2);
                         EXPECT_TRUE(Find<QPushButton>(dialog, "pushButtonOk").isEnabled());
                         Click(dialog, "pushButtonOk");
                     }),
              1u);
    EXPECT_EQ(params.value.Text(), "Halt");
}

TEST_F(TheSelectors, ADoubleClickPicksAFunctionAndDoesNothingOnAHeading) {
    GivenScript("({ Play: function() {} })");
    Select(functions, [](QWidget& dialog) {
        ClickRow(dialog, 0, true);
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(List(dialog).currentItem(), nullptr);
        EXPECT_FALSE(Find<QPushButton>(dialog, "pushButtonOk").isEnabled());
        ClickRow(dialog, 1, true);
    });
    EXPECT_EQ(params.value.Text(), "Play");
}

TEST_F(TheSelectors, AHeadingCanBeRead) {
    GivenScript("({ Play: function() {} })");
    Select(functions, [](QWidget& dialog) {
        const QPalette palette = List(dialog).palette();
        EXPECT_GE(Contrast(palette.color(QPalette::Disabled, QPalette::Text),
                           palette.color(QPalette::Disabled, QPalette::Base)),
                  4.5);
        Escape(dialog);
    });
}

TEST_F(TheSelectors, KeysPassOverAHeading) {
    GivenScript("({ Play: function() {} })");
    GivenSecondDevice("Lamp", "({ On: function() {} })");
    Select(functions, [](QWidget& dialog) {
        QWidget& list = List(dialog);
        EXPECT_TRUE(list.hasFocus());
        QTest::keyClick(&list, Qt::Key_Down);
        EXPECT_EQ(List(dialog).currentItem()->text(), QStringLiteral("Play"));
        QTest::keyClick(&list, Qt::Key_Up);
        EXPECT_EQ(List(dialog).currentItem()->text(), QStringLiteral("Play"));
        QTest::keyClick(&list, Qt::Key_Down);
        EXPECT_EQ(List(dialog).currentItem()->text(), QStringLiteral("On"));
        QTest::keyClick(&list, Qt::Key_Return);
    });
    EXPECT_EQ(params.value.Text(), "On");
}

TEST_F(TheSelectors, ThePresentFunctionIsChosenAtFirst) {
    GivenScript("({ Play: function() {}, Halt: function() {} })");
    params.value.SetValueFromString("Halt", 0, 0);
    Select(functions, [](QWidget& dialog) {
        EXPECT_EQ(List(dialog).currentItem()->text(), QStringLiteral("Halt"));
        QTest::keyClick(&dialog, Qt::Key_O, Qt::AltModifier);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !dialog.isVisible(); }, kDeadlineMs));
    });
    EXPECT_EQ(params.value.Text(), "Halt");
}

TEST_F(TheSelectors, StandOnTheHostsWindowInItsColours) {
    QWidget window;
    window.setGeometry(100, 50, 1000, 800);
    window.show();
    host.mainWindow = window.winId();
    host.colors = {{0, 0x00302010}, {1, 0x00F0E0D0}, {6, 0}, {7, 0x00FFFFFF}, {8, 0x00403020}};
    for (IPropertySelector* selector : std::initializer_list<IPropertySelector*>{&files, &texts, &functions})
        Select(*selector, [&](QWidget& dialog) {
            EXPECT_EQ(dialog.windowHandle()->transientParent(), window.windowHandle());
            EXPECT_EQ(dialog.frameGeometry().center().x(), window.frameGeometry().center().x());
            EXPECT_TRUE(dialog.styleSheet().contains(QStringLiteral("QDialog{background-color: rgb(16,32,48)")));
            Escape(dialog);
        });
}

TEST_F(TheSelectors, AreLeftWhenTheHostsWindowGoes) {
    for (IPropertySelector* selector : std::initializer_list<IPropertySelector*>{&files, &texts, &functions}) {
        auto window = std::make_unique<QWidget>();
        window->resize(1000, 800);
        window->show();
        host.mainWindow = window->winId();
        EXPECT_EQ(Select(*selector,
                         [&](QWidget& dialog) {
                             window.reset();
                             EXPECT_FALSE(dialog.isVisible());
                         }),
                  1u);
        EXPECT_EQ(params.value.History().size(), 0u);
    }
}

TEST_F(TheSelectors, MayBeReleasedWhileTheyAsk) {
    for (MSelectorWizard* maker : std::initializer_list<MSelectorWizard*>{&files, &texts, &functions}) {
        auto* made = QueryFace<IPropertySelector>(maker->CreateObject(maker->GetRegisteredName()), "IPropertySelector");
        EXPECT_EQ(Select(*made,
                         [&](QWidget& dialog) {
                             made->Release();
                             Escape(dialog);
                         }),
                  1u);
    }
}

TEST_F(TheSelectors, MayBeReleasedFromWhatTheyAskTheHost) {
    for (MSelectorWizard* maker : std::initializer_list<MSelectorWizard*>{&files, &texts, &functions}) {
        auto* made = QueryFace<IPropertySelector>(maker->CreateObject(maker->GetRegisteredName()), "IPropertySelector");
        host.isAsked = [&](const std::string& operation) {
            if (operation == "GetMainWindow" && made != nullptr)
                std::exchange(made, nullptr)->Release();
        };
        IPropertySelector& asking = *made;
        EXPECT_EQ(Select(asking, [](QWidget& dialog) { Escape(dialog); }), 1u);
        EXPECT_EQ(made, nullptr);
        host.isAsked = nullptr;
    }
}

TEST_F(TheSelectors, AskNobodyWhenTheModuleIsReleasedFromWhatTheyAskTheHost) {
    for (IPropertySelector* selector : std::initializer_list<IPropertySelector*>{&files, &texts, &functions}) {
        MSelectorWizard::SetPlace(host.Root(), &module);
        params.onProperty = [] { MSelectorWizard::SetPlace(nullptr, nullptr); };
        EXPECT_EQ(selector->Select(nullptr, &params, kParameter, nullptr), 0u);
        EXPECT_EQ(params.value.History().size(), 0u);
    }
}

TEST_F(TheSelectors, OutliveTheDeviceWhoseFunctionsTheyShow) {
    GivenScript("({ Play: function() {} })");
    Select(functions, [&](QWidget& dialog) {
        device->Release();
        device = nullptr;
        ClickRow(dialog, 1);
        Click(dialog, "pushButtonOk");
    });
    EXPECT_EQ(params.value.Text(), "Play");
}

TEST_F(TheSelectors, WorkOnAHostThatTellsNothingOfItself) {
    host.offerRuntimeInfo = false;
    params.value.SetValueFromString("x", 0, 0);
    EXPECT_EQ(Select(texts, [](QWidget& dialog) { Click(dialog, "pushButtonOk"); }), 1u);
    EXPECT_EQ(params.value.Text(), "x");
}

} // namespace
