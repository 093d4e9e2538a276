#include "Hardware.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "HostCodes.h"
#include "Notes.h"
#include "UniverseRecorder.h"
#include "UserDialogs.h"

using namespace stagehost;

namespace {

/// A handler of all kinds, as a module has them.
class AnyHandler : public ISerialResourceHandler, public IDMXResourceHandler, public IIOResourceChannelHandler {
public:
    virtual ~AnyHandler() = default;

    KXPCode QueryInterface(const char*, void**) override { return KXP_NO_INTERFACE; }
    void OnStateChanged() override { notes.Add("state " + std::to_string(asked == nullptr ? 9 : asked->GetState())); }
    const char* GetOwnerName() override { return "owner"; }
    KXPCode Reserved4(void*, void*, void*, void*) override { return 0; }
    void OnData(ISerialResource*, const std::uint8_t* data, std::int32_t length, std::uint32_t) override {
        notes.Add("data " + std::string(reinterpret_cast<const char*>(data), static_cast<std::size_t>(length)));
    }
    void OnEvent(ISerialResource*, std::int32_t type, std::int32_t state, std::uint32_t) override {
        notes.Add("event " + std::to_string(type) + " " + std::to_string(state));
    }
    void OnData(IDMXResource*, const std::uint8_t* data, std::int32_t length, std::uint32_t) override {
        notes.Add("frame of " + std::to_string(length) + ": " + std::to_string(data[0]));
    }
    void OnValueChanged(IIOResourceChannel*, std::int32_t value, std::uint32_t) override {
        notes.Add("value " + std::to_string(value));
    }
    KXPCode Reserved2(void*, void*, void*, void*) override { return 0; }
    const char* GetOwnerName(IIOResourceChannel*) override { return "owner"; }

    IResource* asked = nullptr;
    Notes notes;
};

ChannelsPlan HouseChannels() {
    ChannelsPlan plan;
    plan[static_cast<std::size_t>(ChannelType::DigitalIn)] = {{"Door", 0, 0, 1}, {"Window", 1, 0, 1}};
    plan[static_cast<std::size_t>(ChannelType::DigitalOut)] = {{"Bell", 0, 0, 1}};
    plan[static_cast<std::size_t>(ChannelType::AnalogOut)] = {{"Fan", 0, 0, 100}};
    plan[static_cast<std::size_t>(ChannelType::AnalogIn)] = {{"Light", 5, -10, 1000}};
    return plan;
}

class AShowsHardware : public testing::Test {
protected:
    AShowsHardware() {
        DmxOutPlan out;
        DmxInPlan in;
        out.port = in.port = FreeUdpPort();
        HardwareSpec spec;
        spec.push_back({1, "Desk port", SerialPlan{folder.filePath(QStringLiteral("no such port")), {}}});
        spec.push_back({2, "Lamp", out});
        spec.push_back({3, "Console", in});
        spec.push_back({4, "House", HouseChannels()});
        hardware.emplace(spec, faces, feed, [this](const std::string& text) { said.Add(text); });
        handler.asked = nullptr;
    }

    template <typename Interface>
    Interface* Get(std::uint32_t kind, std::int32_t id, std::uint32_t subtype, const char* name) {
        IMInterface* resource = hardware->GetResource(kind, id, subtype);
        void* face = nullptr;
        return resource != nullptr && resource->QueryInterface(name, &face) == KXP_OK ? static_cast<Interface*>(face)
                                                                                      : nullptr;
    }

    IDMXResource* Lamp() { return Get<IDMXResource>(KXP_DMX_RESOURCE, 2, KXP_RESOURCE_OUT, "IDMXResource"); }
    IDMXResource* Console() { return Get<IDMXResource>(KXP_DMX_RESOURCE, 3, KXP_RESOURCE_IN, "IDMXResource"); }
    ISerialResource* Port() {
        return Get<ISerialResource>(KXP_SERIAL_RESOURCE, 1, KXP_RESOURCE_BOTH, "ISerialResource");
    }
    IIOResource* House() { return Get<IIOResource>(KXP_IO_RESOURCE, 4, KXP_RESOURCE_BOTH, "IIOResource"); }

    ResourceObject& Object(const std::string& name) {
        for (const auto& object : hardware->Objects()) {
            if (object->Name() == name)
                return static_cast<ResourceObject&>(*object);
        }
        throw std::runtime_error("there is no object " + name);
    }

    QTemporaryDir folder;
    FaceTable faces;
    ChangeFeed feed;
    Notes said;
    AnyHandler handler;
    std::optional<Hardware> hardware;
};

} // namespace

TEST_F(AShowsHardware, IsFoundByKindNumberAndDirection) {
    EXPECT_NE(Lamp(), nullptr);
    EXPECT_NE(Console(), nullptr);
    EXPECT_NE(Port(), nullptr);
    EXPECT_NE(House(), nullptr);
    EXPECT_EQ(hardware->GetResource(KXP_DMX_RESOURCE, 2, KXP_RESOURCE_IN), nullptr);
    EXPECT_EQ(hardware->GetResource(KXP_SERIAL_RESOURCE, 2, KXP_RESOURCE_BOTH), nullptr);
    EXPECT_EQ(hardware->GetResource(KXP_SERIAL_RESOURCE, 99, KXP_RESOURCE_BOTH), nullptr);
    void* provider = nullptr;
    EXPECT_EQ(faces.Find("IResourceProvider", &provider), KXP_OK);
    EXPECT_EQ(provider, static_cast<IResourceProvider*>(&*hardware));
}

TEST_F(AShowsHardware, TellsWhoItIs) {
    auto* proxy = Get<IResourceProxy>(KXP_IO_RESOURCE, 4, KXP_RESOURCE_BOTH, "IResourceProxy");
    ASSERT_NE(proxy, nullptr);
    EXPECT_STREQ(proxy->GetName(), "House");
    EXPECT_EQ(proxy->GetResourceID(), 4);
    void* back = nullptr;
    EXPECT_EQ(proxy->QueryInterface("IIOResource", &back), KXP_OK);
    EXPECT_EQ(back, House());
    EXPECT_EQ(proxy->QueryInterface("IDMXResource", &back), KXP_NO_INTERFACE);
    EXPECT_EQ(proxy->QueryInterface(nullptr, &back), KXP_BAD_INTERFACE_ARG);
}

TEST_F(AShowsHardware, SelectsNothingWithoutDialogs) {
    EXPECT_EQ(hardware->SelectResource(KXP_SERIAL_RESOURCE, KXP_RESOURCE_BOTH, 1, 0), -1);
    EXPECT_EQ(hardware->SelectChannel(KXP_DIGITAL_INPUT, "", 0), nullptr);
}

namespace {

/// A user who chooses the name at a place, or cancels.
class ChoosingUser final : public UserDialogs {
public:
    std::optional<std::size_t> place;
    std::string asked; ///< "title: name name [chosen name]"

    std::optional<std::size_t> ChooseName(const std::string& title, const std::vector<std::string>& names, int chosen,
                                          KXPWindow) override {
        asked = title + ":";
        for (std::size_t at = 0; at < names.size(); ++at)
            asked += static_cast<int>(at) == chosen ? " [" + names[at] + "]" : " " + names[at];
        return place;
    }
    std::optional<CalendarDay> ChooseDay(const CalendarDay&, KXPWindow) override { return std::nullopt; }
};

} // namespace

TEST_F(AShowsHardware, LetsTheUserChooseAmongTheResourcesOfAKind) {
    ChoosingUser user;
    FaceTable others;
    HardwareSpec spec;
    spec.push_back({7, "First port", SerialPlan{folder.filePath(QStringLiteral("none")), {}}});
    spec.push_back({9, "Second port", SerialPlan{folder.filePath(QStringLiteral("neither")), {}}});
    spec.push_back({4, "House", HouseChannels()});
    Hardware offered(spec, others, feed, {}, &user);
    EXPECT_EQ(offered.SelectResource(KXP_SERIAL_RESOURCE, KXP_RESOURCE_BOTH, 9, 0), -1) << "cancelled";
    EXPECT_EQ(user.asked, "Resource: First port [Second port]");
    user.place = 0;
    EXPECT_EQ(offered.SelectResource(KXP_SERIAL_RESOURCE, KXP_RESOURCE_BOTH, 3, 0), 7);
    EXPECT_EQ(user.asked, "Resource: First port Second port");
}

TEST_F(AShowsHardware, LetsTheUserChooseAmongTheChannelsOfAType) {
    ChoosingUser user;
    FaceTable others;
    HardwareSpec spec;
    spec.push_back({4, "House", HouseChannels()});
    Hardware offered(spec, others, feed, {}, &user);
    EXPECT_EQ(offered.SelectChannel(KXP_DIGITAL_INPUT, "Desk", 0), nullptr);
    EXPECT_EQ(user.asked, "Channel of Desk: House.Door House.Window");
    user.place = 1;
    IIOResourceChannel* const window = offered.SelectChannel(KXP_DIGITAL_INPUT, nullptr, 0);
    ASSERT_NE(window, nullptr);
    EXPECT_STREQ(window->GetName(), "Window");
    EXPECT_EQ(window->GetChannelIndex(), 1);
    EXPECT_EQ(user.asked, "Channel: House.Door House.Window");
}

TEST_F(AShowsHardware, ALampTakesLevelsWhileItIsOpen) {
    IDMXResource* lamp = Lamp();
    lamp->AddHandler(&handler);
    handler.asked = lamp;
    const std::uint8_t levels[] = {9, 8};
    EXPECT_EQ(lamp->WriteBlock(levels, 0, 2, 0), 0u);
    EXPECT_EQ(lamp->Open(), KXP_OK);
    EXPECT_TRUE(handler.notes.WaitFor("state 2"));
    EXPECT_NE(lamp->WriteBlock(levels, 511, 2, 0), 0u); // cut
    EXPECT_EQ(lamp->WriteBlock(levels, 512, 2, 0), 0u);
    EXPECT_EQ(lamp->WriteBlock(levels, -1, 2, 0), 0u);
    EXPECT_EQ(lamp->WriteBlock(nullptr, 0, 2, 0), 0u);
    std::uint8_t read[4] = {7, 7, 7, 7};
    EXPECT_NE(lamp->ReadOutput(read, 510, 4), 0u);
    EXPECT_EQ(read[0], 0);
    EXPECT_EQ(read[1], 9);
    EXPECT_EQ(read[2], 7); // beyond the universe
    EXPECT_EQ(lamp->ReadInput(read, 0, 1), 0u);
    EXPECT_EQ(Object("Lamp").Property("Levels"), "512=9");
    lamp->Close();
    EXPECT_TRUE(handler.notes.WaitFor("state 0"));
    lamp->RemoveHandler(&handler);
}

TEST_F(AShowsHardware, AConsoleIsHeardAndReadAndSetByHand) {
    IDMXResource* console = Console();
    console->AddHandler(&handler);
    handler.asked = console;
    console->Open();
    ASSERT_TRUE(handler.notes.WaitFor("state 2"));
    Lamp()->Open();
    const std::uint8_t levels[] = {200};
    Lamp()->WriteBlock(levels, 0, 1, 0);
    EXPECT_TRUE(handler.notes.WaitFor("frame of 512: 200"));
    std::uint8_t read = 0;
    EXPECT_NE(console->ReadInput(&read, 0, 1), 0u);
    EXPECT_EQ(read, 200);
    EXPECT_EQ(console->WriteBlock(levels, 0, 1, 0), 0u);
    EXPECT_EQ(Object("Console").SetValue("1=300"), kBadValue);
    EXPECT_EQ(Object("Console").SetValue("1=7 5-6=9"), KXP_OK);
    EXPECT_TRUE(handler.notes.WaitFor("frame of 512: 7"));
    EXPECT_EQ(Object("Console").Property("Levels"), "1=7 5-6=9");
    console->RemoveHandler(&handler);
}

TEST_F(AShowsHardware, AMissingPortIsToldByAnEventAndInWords) {
    ISerialResource* port = Port();
    port->AddHandler(&handler, KXP_SERIAL_DATA | KXP_SERIAL_EVENTS);
    port->Open();
    EXPECT_TRUE(handler.notes.WaitFor("event 5 1"));
    EXPECT_TRUE(said.WaitFor("Desk port: cannot open "));
    EXPECT_EQ(port->GetState(), KXP_RESOURCE_CLOSED);
    EXPECT_NE(port->Write(reinterpret_cast<const std::uint8_t*>("x"), 1, 0), KXP_OK);
    EXPECT_EQ(Object("Desk port").Property("Problem"), "there is no such port");
    EXPECT_EQ(Object("Desk port").Property("Refused"), "1");
    EXPECT_EQ(port->AddHandler(nullptr, 3), KXP_NULL_ARGUMENT);
    port->RemoveHandler(&handler);
}

TEST_F(AShowsHardware, ASettingThatNoPortHasIsToldAndRefused) {
    EXPECT_EQ(Port()->SetBaudRate(19200), KXP_OK); // kept until it opens
    EXPECT_NE(Port()->SetDTRHandshake(true), KXP_OK);
    EXPECT_TRUE(said.WaitFor("Desk port: cannot do DTR handshake: "));
    EXPECT_NE(Port()->SetDSROutFlow(true), KXP_OK);
    EXPECT_TRUE(said.WaitFor("Desk port: cannot do DSR flow control: "));
    EXPECT_EQ(Port()->SetDSROutFlow(false), KXP_OK);
}

TEST_F(AShowsHardware, ChannelsAreOpenForAsManyAsHaveThemOpen) {
    AnyHandler other;
    handler.asked = other.asked = House();
    EXPECT_EQ(House()->GetState(), KXP_RESOURCE_CLOSED);
    House()->Open(static_cast<ISerialResourceHandler*>(&handler));
    House()->Open(static_cast<ISerialResourceHandler*>(&handler));
    House()->Open(static_cast<ISerialResourceHandler*>(&other));
    EXPECT_EQ(other.notes.All(), std::vector<std::string>{"state 2"});
    House()->Close(static_cast<ISerialResourceHandler*>(&handler));
    EXPECT_EQ(House()->GetState(), KXP_RESOURCE_OPEN);
    House()->Close(static_cast<ISerialResourceHandler*>(&other));
    EXPECT_EQ(other.notes.All().back(), "state 0");
    EXPECT_EQ(House()->Close(static_cast<ISerialResourceHandler*>(&other)), KXP_OK);
    EXPECT_EQ(House()->Open(nullptr), KXP_NULL_ARGUMENT);
}

TEST_F(AShowsHardware, OutputsStandFromTheFlushOn) {
    House()->Open(static_cast<ISerialResourceHandler*>(&handler));
    IIOResourceChannel* fan = House()->GetChannel(KXP_ANALOG_OUTPUT, 0);
    ASSERT_NE(fan, nullptr);
    fan->AddHandler(&handler);
    EXPECT_NE(fan->SetValue(60), 0u);
    EXPECT_EQ(fan->GetValue(), 0);
    House()->Flush();
    EXPECT_EQ(fan->GetValue(), 60);
    EXPECT_TRUE(handler.notes.WaitFor("value 60"));
    EXPECT_EQ(fan->SetValue(101), 0u);
    EXPECT_EQ(Object("House.Fan").Property("Value"), "60");
    fan->RemoveHandler(&handler);
    House()->Close(static_cast<ISerialResourceHandler*>(&handler));
}

TEST_F(AShowsHardware, ADigitalOutputIsOnForAllButNought) {
    House()->Open(static_cast<ISerialResourceHandler*>(&handler));
    IIOResourceChannel* bell = House()->GetChannel(KXP_DIGITAL_OUTPUT, 0);
    EXPECT_NE(bell->SetValue(255), 0u);
    House()->Flush();
    EXPECT_EQ(bell->GetValue(), 1);
    House()->Close(static_cast<ISerialResourceHandler*>(&handler));
    EXPECT_EQ(bell->SetValue(0), 0u); // closed
}

TEST_F(AShowsHardware, InputsAreSetByTheUserAlone) {
    IIOResourceChannel* door = House()->GetChannel(KXP_DIGITAL_INPUT, 0);
    House()->Open(static_cast<ISerialResourceHandler*>(&handler));
    door->AddHandler(&handler);
    EXPECT_EQ(door->SetValue(1), 0u);
    EXPECT_EQ(Object("House.Door").SetValue("1"), KXP_OK);
    EXPECT_TRUE(handler.notes.WaitFor("value 1"));
    EXPECT_EQ(door->GetValue(), 1);
    EXPECT_EQ(Object("House.Door").SetValue("2"), kBadValue);
    EXPECT_EQ(Object("House.Door").SetValue("open"), kBadValue);
    EXPECT_EQ(Object("House").SetValue("1"), kReadOnly);
    door->RemoveHandler(&handler);
    House()->Close(static_cast<ISerialResourceHandler*>(&handler));
}

TEST_F(AShowsHardware, AChannelRampsInStepsToItsValue) {
    IIOResourceChannel* light = House()->GetChannel(KXP_ANALOG_INPUT, 0);
    EXPECT_EQ(light->GetValue(), 5);
    light->AddHandler(&handler);
    EXPECT_EQ(Object("House.Light").Ramp(1001, std::chrono::milliseconds(10)), kBadValue);
    EXPECT_EQ(Object("House.Light").Ramp(1000, std::chrono::milliseconds(300)), KXP_OK);
    EXPECT_TRUE(handler.notes.WaitFor("value 1000"));
    EXPECT_GT(handler.notes.All().size(), 1u);
    light->RemoveHandler(&handler);
}

TEST_F(AShowsHardware, ChannelsThatAreNotThereAreNull) {
    EXPECT_EQ(House()->GetChannel(KXP_DIGITAL_INPUT, 2), nullptr);
    EXPECT_EQ(House()->GetChannel(KXP_DIGITAL_INPUT, -1), nullptr);
    EXPECT_EQ(House()->GetChannel(4, 0), nullptr);
    IIOResourceChannel* window = House()->GetChannel(KXP_DIGITAL_INPUT, 1);
    EXPECT_EQ(window->GetChannelIndex(), 1);
    EXPECT_STREQ(window->GetName(), "Window");
    EXPECT_EQ(window->GetValue(), 1);
    EXPECT_EQ(window->GetResource(), House());
}

TEST_F(AShowsHardware, ChangesReachThoseWhoWatch) {
    Notes changes;
    const Subscription subscription = feed.Subscribe(
        [&](const ShowChange& change) { changes.Add(change.object + " " + change.property + "=" + change.value); });
    Lamp()->Open();
    EXPECT_TRUE(changes.WaitFor("Lamp State=Open"));
    Object("House.Door").SetValue("1");
    EXPECT_TRUE(changes.WaitFor("House.Door Value=1"));
}
