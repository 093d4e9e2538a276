#include <memory>
#include <utility>

#include <QDateEdit>
#include <QLineEdit>
#include <QPushButton>

#include "FakeDialogs.h"
#include "FakeResources.h"
#include "MyDateEdit.h"
#include "MyResourceSelector.h"
#include "SetupDialogFixture.h"

namespace {

constexpr KXPWindow kWindow = 77;

/// A date of the form in a host with a dialog for dates.
class ADateOfTheForm : public testing::Test {
protected:
    void Offer() {
        field->SetDialogManager(&dialogs);
        field->SetParentWindow(kWindow);
        field->SetDate(24, 12, 2026);
        field->show();
    }
    std::string Shown() { return Find<QDateEdit>(*field, "dateEdit").date().toString(Qt::ISODate).toStdString(); }

    plain::FakeDialogs dialogs;
    std::unique_ptr<MyDateEdit> field = std::make_unique<MyDateEdit>();
};

TEST_F(ADateOfTheForm, HasAButtonOnlyInAHostWithADialogForDates) {
    field->show();
    auto& button = Find<QPushButton>(*field, "pushButtonDateWizard");
    EXPECT_FALSE(button.isVisible());
    EXPECT_FALSE(button.icon().isNull());
    EXPECT_EQ(Find<QDateEdit>(*field, "dateEdit").width(), 200);
    field->SetDialogManager(&dialogs);
    EXPECT_TRUE(button.isVisible());
    field->SetDialogManager(nullptr);
    EXPECT_FALSE(button.isVisible());
}

TEST_F(ADateOfTheForm, IsTheOneThatTheUserHasChosen) {
    Offer();
    dialogs.chosen[0] = 2027;
    dialogs.chosen[1] = 1;
    dialogs.chosen[2] = 2;
    Click(*field, "pushButtonDateWizard");
    EXPECT_EQ(dialogs.asked, "77: 2026-12-24");
    EXPECT_EQ(Shown(), "2027-01-02");
    EXPECT_EQ(dialogs.open, 0);
}

TEST_F(ADateOfTheForm, StaysWhenTheUserCancelsAndWhenTheHostMakesNoDialogOrGivesNoDate) {
    Offer();
    dialogs.answer = 13;
    Click(*field, "pushButtonDateWizard");
    EXPECT_EQ(Shown(), "2026-12-24");
    dialogs.answer = 0;
    Click(*field, "pushButtonDateWizard");
    EXPECT_EQ(Shown(), "2026-12-24") << "the year 0 is no date";
    dialogs.makesDialogs = false;
    Click(*field, "pushButtonDateWizard");
    EXPECT_EQ(Shown(), "2026-12-24");
    EXPECT_EQ(dialogs.open, 0);
}

TEST_F(ADateOfTheForm, MayGoWhileTheHostsDialogIsUp) {
    Offer();
    dialogs.whileUp = [&] { field.reset(); };
    QMetaObject::invokeMethod(field.get(), "SlotOpenWizard");
    EXPECT_EQ(dialogs.open, 0);
}

/// A resource of the form.
class AResourceOfTheForm : public testing::Test {
protected:
    void SetUp() override {
        provider.resources[{1, 3, 3}] = port.Root();
        provider.resources[{1, 5, 3}] = other.Root();
        provider.resources[{5, 2, 3}] = house.Root();
        house.Channel(KXP_DIGITAL_INPUT, 4);
    }
    void Offer(const char* type, std::int32_t id, std::int32_t channel = -1) {
        field->SetProvider(&provider);
        field->SetParentWindow(kWindow);
        field->SetOwnerText("Desk");
        ResourceSignature signature;
        signature.type = QLatin1String(type);
        signature.resourceId = id;
        signature.channelIndex = channel;
        field->SetResource(signature);
        field->show();
        provider.calls.Take();
    }
    std::string Shown() { return TextOf(*field, "lineEdit"); }
    std::string Signature() { return field->GetSignature().toStdString(); }

    plain::FakeSerial port{3};
    plain::FakeSerial other{5};
    plain::FakeIo house{2};
    plain::FakeProvider provider;
    std::unique_ptr<MyResourceSelector> field = std::make_unique<MyResourceSelector>();
};

TEST_F(AResourceOfTheForm, IsShownByItsName) {
    Offer("Serial", 3);
    EXPECT_EQ(Shown(), "ISerialResource");
    EXPECT_EQ(Signature(), "{ \"Type\":\"Serial\", \"ResourceID\":3 }");
    Offer("DigitalIn", 2, 4);
    EXPECT_EQ(Shown(), "channel");
    EXPECT_EQ(Signature(), "{ \"Type\":\"DigitalIn\", \"ResourceID\":2, \"ChannelIndex\":4 }");
}

TEST_F(AResourceOfTheForm, ThatTheHostDoesNotHaveIsUnspecifiedAndHasTheNumberZero) {
    for (const auto& [type, id] : {std::pair("Serial", 9), std::pair("Serial", -1), std::pair("DMXOut", 3)}) {
        Offer(type, id);
        EXPECT_EQ(Shown(), "Unspecified") << type << id;
        EXPECT_NE(Signature().find("\"ResourceID\":0"), std::string::npos) << Signature();
    }
    Offer("DigitalIn", 2, 5);
    EXPECT_EQ(Shown(), "Unspecified") << "the resource is there, its channel is not";
}

TEST_F(AResourceOfTheForm, KeepsItsNumberWithoutAHostThatOffersAny) {
    ResourceSignature signature;
    signature.type = QStringLiteral("Serial");
    signature.resourceId = 9;
    field->SetResource(signature);
    field->show();
    EXPECT_EQ(Shown(), "Unspecified");
    EXPECT_EQ(Signature(), "{ \"Type\":\"Serial\", \"ResourceID\":9 }");
    EXPECT_FALSE(Find<QPushButton>(*field, "pushButtonWizard").isEnabled());
}

TEST_F(AResourceOfTheForm, IsTheOneThatTheUserHasChosen) {
    struct Row {
        const char* type;
        const char* asked;
    };
    const Row rows[] = {{"Serial", "select:1,3,0,77"}, {"DMXIn", "select:2,1,0,77"}, {"DMXOut", "select:2,2,0,77"}};
    for (const Row& row : rows) {
        Offer(row.type, 0);
        provider.chosenResource = -1;
        Click(*field, "pushButtonWizard");
        EXPECT_EQ(provider.calls.Take(), row.asked);
        EXPECT_NE(Signature().find("\"ResourceID\":0"), std::string::npos) << "cancelled";
        provider.chosenResource = 5;
        Click(*field, "pushButtonWizard");
        EXPECT_NE(Signature().find("\"ResourceID\":5"), std::string::npos) << row.type;
    }
    Offer("Serial", 3);
    Click(*field, "pushButtonWizard");
    EXPECT_EQ(Shown(), "ISerialResource");
    EXPECT_EQ(Signature(), "{ \"Type\":\"Serial\", \"ResourceID\":5 }");
}

TEST_F(AResourceOfTheForm, IsTheChannelThatTheUserHasChosen) {
    struct Row {
        const char* type;
        const char* asked;
    };
    const Row rows[] = {{"DigitalIn", "channel:1,Desk,77"},
                        {"DigitalOut", "channel:0,Desk,77"},
                        {"AnalogIn", "channel:3,Desk,77"},
                        {"AnalogOut", "channel:2,Desk,77"}};
    for (const Row& row : rows) {
        Offer(row.type, 0, 0);
        provider.chosenChannel = nullptr;
        Click(*field, "pushButtonWizard");
        EXPECT_EQ(provider.calls.Take(), row.asked);
        provider.chosenChannel = &house.Channel(KXP_DIGITAL_INPUT, 4);
        Click(*field, "pushButtonWizard");
        EXPECT_NE(Signature().find("\"ResourceID\":2, \"ChannelIndex\":4"), std::string::npos) << Signature();
    }
}

TEST_F(AResourceOfTheForm, OfNoKnownTypeAsksTheHostNothing) {
    Offer("Toaster", 3);
    Click(*field, "pushButtonWizard");
    EXPECT_EQ(provider.calls.Take(), "");
    EXPECT_EQ(Shown(), "Unspecified");
    EXPECT_EQ(Signature(), "{ \"Type\":\"Toaster\", \"ResourceID\":3 }");
}

TEST_F(AResourceOfTheForm, MayGoWhileTheHostsDialogIsUp) {
    Offer("Serial", 3);
    provider.chosenResource = 5;
    provider.calls.onCall = [&](const std::string&) { field.reset(); };
    QMetaObject::invokeMethod(field.get(), "SlotOpenWizard");
    EXPECT_EQ(field, nullptr);
}

/// The form in the setup dialog of a device.
class TheFormInTheDialog : public TheSetupDialog {
protected:
    void SetUp() override {
        provider.resources[{1, 3, 3}] = port.Root();
        provider.resources[{1, 5, 3}] = other.Root();
        host.resourceProvider = &provider;
        host.dialogs = &dates;
        TheSetupDialog::SetUp();
        GivenScript("({ Setup: { Line: '{ \"Type\":\"Serial\", \"ResourceID\":3 }', Since: '24/12/2026' }, "
                    "Info: { Setup: { Line: { Widget: 'Serial' }, Since: { Type: 'Date' } } } })");
        provider.calls.Take();
    }
    plain::FakeSerial port{3};
    plain::FakeSerial other{5};
    plain::FakeProvider provider;
    plain::FakeDialogs dates;
};

TEST_F(TheFormInTheDialog, HasAResourceOfTheHostThatTheDeviceTakesAtOnce) {
    provider.chosenResource = 5;
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  EXPECT_EQ(TextOf(*dialog.findChild<MyResourceSelector*>(), "lineEdit"), "ISerialResource");
                  provider.calls.Take();
                  Click(*dialog.findChild<MyResourceSelector*>(), "pushButtonWizard");
                  const std::string calls = provider.calls.Take();
                  EXPECT_EQ(calls.find("select:1,3,3,0 1,5,3"), 0u) << calls;
                  Click(dialog, "pushButtonOk");
              }),
              0u);
    EXPECT_EQ(StoredValue("Line"), "{ \"Type\":\"Serial\", \"ResourceID\":5 }");
}

TEST_F(TheFormInTheDialog, ThatIsCancelledGivesTheChosenResourceBack) {
    Show(Ok());
    provider.chosenResource = 5;
    Show([&](QWidget& dialog) {
        Click(*dialog.findChild<MyResourceSelector*>(), "pushButtonWizard");
        provider.calls.Take();
        Click(dialog, "pushButtonCancel");
    });
    EXPECT_EQ(provider.calls.Take(), "1,3,3") << "the device takes its own again";
    EXPECT_EQ(StoredValue("Line"), "{ \"Type\":\"Serial\", \"ResourceID\":3 }");
}

TEST_F(TheFormInTheDialog, HasADateOfTheHostsDialog) {
    dates.chosen[0] = 2027;
    dates.chosen[1] = 1;
    dates.chosen[2] = 2;
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  Click(*dialog.findChild<MyDateEdit*>(), "pushButtonDateWizard");
                  Click(dialog, "pushButtonOk");
              }),
              0u);
    EXPECT_EQ(StoredValue("Since"), "02/01/2027");
}

TEST_F(TheFormInTheDialog, IsLeftWhenTheHostReleasesTheDeviceInItsDialog) {
    provider.chosenResource = 5;
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  provider.calls.onCall = [&](const std::string& call) {
                      if (call.find("select") == 0)
                          std::exchange(device, nullptr)->Release();
                  };
                  Click(*dialog.findChild<MyResourceSelector*>(), "pushButtonWizard");
                  EXPECT_FALSE(dialog.isVisible());
              }),
              13u);
}

} // namespace
