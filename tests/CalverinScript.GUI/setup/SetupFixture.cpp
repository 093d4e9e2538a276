#include "SetupFixture.h"

#include <cstdio>
#include <fstream>
#include <iterator>

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>

#include "Deadline.h"
#include "FaceAnswer.h"
#include "ModuleResources.h"

LibraryModule::LibraryModule()
    : m_definition(FindModuleResource(ModuleResource::RawData, kDefinitionId).toStdString()) {}

void LibraryModule::GetConfigFilePath(char* buffer) {
    if (configIsAskedFor)
        configIsAskedFor();
    std::snprintf(buffer, kConfigPathSize, "%s", config.c_str());
}

/// Devices ask on the threads on which they are started, too.
KXPCode WindowHost::QueryInterface(const char* name, void** out) {
    const std::lock_guard<std::mutex> guard(m_asking);
    if (!colors.empty() && AnswerFace(name, out, {{"IThemeManager", static_cast<IThemeManager*>(this)}}) == KXP_OK)
        return KXP_OK;
    return plain::Host::QueryInterface(name, out);
}

DialogDriver::DialogDriver() {
    constexpr int kWatchMs = 100;
    QObject::connect(&m_watch, &QTimer::timeout, &m_context, [this] { CloseUnexpected(); });
    m_watch.start(kWatchMs);
}

void DialogDriver::CloseUnexpected() {
    constexpr int kPatience = 30;
    QWidget* dialog = m_answers.empty() ? FindNew() : nullptr;
    m_unexpected = dialog != nullptr ? m_unexpected + 1 : 0;
    if (m_unexpected < kPatience)
        return;
    auto* message = dialog->findChild<QLabel*>();
    ADD_FAILURE() << "nobody expected " << dialog->objectName().toStdString() << ": "
                  << (message != nullptr ? message->text().toStdString() : "");
    dialog->close();
}

void DialogDriver::Expect(std::function<void(QWidget&)> answer) {
    m_answers.push_back(std::move(answer));
    if (!m_waits)
        Wait(QDeadlineTimer(kDeadlineMs));
}

void DialogDriver::Wait(QDeadlineTimer deadline) {
    m_waits = true;
    QTimer::singleShot(1, &m_context, [this, deadline] {
        m_waits = false;
        QWidget* dialog = FindNew();
        if (m_answers.empty())
            return;
        if (dialog != nullptr)
            Work(*dialog);
        else if (!deadline.hasExpired())
            Wait(deadline);
        else
            GiveUp();
    });
}

void DialogDriver::GiveUp() {
    ADD_FAILURE() << "a dialog did not come";
    m_answers.clear();
    if (QWidget* dialog = QApplication::activeModalWidget())
        dialog->close();
}

/// A modal dialog first, since it is in front of all others.
QWidget* DialogDriver::FindNew() const {
    QWidgetList candidates = QApplication::topLevelWidgets();
    candidates.prepend(QApplication::activeModalWidget());
    for (QWidget* candidate : candidates)
        if (candidate != nullptr && candidate->inherits("QDialog") && candidate->isVisible() &&
            !m_open.contains(candidate))
            return candidate;
    return nullptr;
}

void DialogDriver::Work(QWidget& dialog) {
    const auto answer = m_answers.front();
    m_answers.pop_front();
    m_open.append(&dialog);
    const QPointer<QWidget> kept(&dialog);
    if (!m_answers.empty())
        Wait(QDeadlineTimer(kDeadlineMs));
    try {
        EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog, kDeadlineMs));
        answer(dialog);
    } catch (const std::exception& problem) {
        ADD_FAILURE() << problem.what();
    }
    m_open.removeLast();
    if (kept && kept->isVisible()) {
        ADD_FAILURE() << "left open: " << kept->objectName().toStdString();
        kept->close();
    }
    if (!m_answers.empty() && !m_waits)
        Wait(QDeadlineTimer(kDeadlineMs));
}

void Click(QWidget& window, const char* name) {
    auto& button = Find<QAbstractButton>(window, name);
    ASSERT_TRUE(button.isVisible() && button.isEnabled()) << name;
    const bool hasMark = !button.inherits("QPushButton");
    QTest::mouseClick(&button, Qt::LeftButton, Qt::NoModifier,
                      hasMark ? QPoint(8, button.height() / 2) : button.rect().center());
}

void Type(QWidget& window, const char* name, const char* text) {
    auto& field = Find<QLineEdit>(window, name);
    field.setFocus();
    field.selectAll();
    QTest::keyClick(&field, Qt::Key_Delete);
    QTest::keyClicks(&field, QString::fromUtf8(text));
}

std::string TextOf(QWidget& window, const char* name) {
    auto& part = Find<QWidget>(window, name);
    if (auto* editor = qobject_cast<QPlainTextEdit*>(&part))
        return editor->toPlainText().toStdString();
    return part.property("text").toString().toStdString();
}

void CloseBox(QWidget& window) {
    window.close();
}

std::function<void(QWidget&)> Press(const char* button, const char* partOfText) {
    return [button, partOfText](QWidget& dialog) {
        EXPECT_NE(TextOf(dialog, "labelMessage").find(partOfText), std::string::npos) << TextOf(dialog, "labelMessage");
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Warning"));
        Click(dialog, button);
    };
}

void SetupFixture::SetUp() {
    QDir().mkpath(QString::fromStdString(Library()));
    QDir().mkpath(QString::fromStdString(Project()));
    host.folders[KXP_FOLDER_PROJECT_USER_DATA] = Project();
    module.host = host.Root();
    module.library = Library();
    device = new MCalverinScript_Device(&module, &setup, "Desk");
    device->SetDeviceVariables(&variables);
    ASSERT_TRUE(device->IsUsable());
}

void SetupFixture::TearDown() {
    if (device != nullptr)
        device->Release();
    EXPECT_TRUE(dialogs.IsDone());
}

void SetupFixture::GivenScript(const std::string& text, bool programming) {
    DeviceSetup stored;
    stored.name = QStringLiteral("Desk");
    SetupScript script;
    script.text = QString::fromStdString(text);
    script.programmingMode = programming;
    stored.script = script;
    ASSERT_EQ(device->SetSetup(PrintSetup(stored).c_str()), KXP_OK);
}

void SetupFixture::GivenScriptFile(const std::string& name, const std::string& text) {
    WriteLibrary(name, text);
    Write(Project() + "/" + name, text);
    GivenScript(text);
    device->GetStoredSetup().SetScript(QString::fromStdString(Project() + "/" + name), QString::fromStdString(text));
}

std::string SetupFixture::WriteLibrary(const std::string& name, const std::string& content) {
    Write(Library() + "/" + name, content);
    return Library() + "/" + name;
}

void SetupFixture::Write(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

std::string SetupFixture::Read(const std::string& folder, const std::string& name) const {
    std::ifstream file(folder + "/" + name, std::ios::binary);
    return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "(none)";
}

KXPCode SetupFixture::Show(const std::function<void(QWidget&)>& work, const char* scriptName) {
    dialogs.Expect(work);
    return device->ShowSetupDialog(scriptName);
}
