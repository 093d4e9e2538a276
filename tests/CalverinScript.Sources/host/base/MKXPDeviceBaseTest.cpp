#include "MKXPDeviceBase.h"

#include <atomic>
#include <fstream>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <tinyxml.h>

namespace {

/// A device that leaves the list before it ends.
class LeavingDevice : public MKXPDeviceBase {
public:
    using MKXPDeviceBase::Unlist;
};

TEST(MKXPDeviceBase, WithANullNameHasTheEmptyName) {
    MKXPDeviceBase device;
    EXPECT_STREQ(device.GetName(), "");
    device.SetName("Desk");
    device.SetName(nullptr);
    EXPECT_STREQ(device.GetName(), "");
}

TEST(MKXPDeviceBase, KeepsACopyOfItsName) {
    MKXPDeviceBase device;
    std::string name = "Desk";
    device.SetName(name.c_str());
    name = "Other";
    EXPECT_STREQ(device.GetName(), "Desk");
}

TEST(MKXPDeviceBase, TakesItsOwnName) {
    MKXPDeviceBase device;
    device.SetName("Desk");
    device.SetName(device.GetName());
    EXPECT_STREQ(device.GetName(), "Desk");
}

TEST(MKXPDeviceBase, KeepsTheNameReadableThatItHadBefore) {
    MKXPDeviceBase device;
    device.SetName("first");
    const char* first = device.GetName();
    device.SetName("second");
    device.SetName("second");
    EXPECT_STREQ(first, "first");
    EXPECT_STREQ(device.GetName(), "second");
    EXPECT_EQ(device.CopyName(), "second");
}

TEST(MKXPDeviceBase, KeepsTwoNamesHoweverOftenItIsRenamed) {
    constexpr int kRenames = 2000;
    constexpr std::size_t kLength = 10000;
    const auto residentKb = [] {
        std::ifstream status("/proc/self/status");
        std::string word;
        long kb = 0;
        while (status >> word)
            if (word == "VmRSS:")
                status >> kb;
        return kb;
    };
    MKXPDeviceBase device;
    const long before = residentKb();
    for (int i = 0; i < kRenames; ++i)
        device.SetName(std::string(kLength, static_cast<char>('a' + i % 26)).c_str());
    EXPECT_LT(residentKb() - before, MEMORY_ALLOWANCE_KB) << "kB; all of them are 19,600";
}

TEST(MKXPDeviceBase, MayBeRenamedWhileOthersReadItsName) {
    MKXPDeviceBase device;
    device.SetName("name 0");
    std::atomic<bool> over{false};
    std::atomic<int> wrong{0};
    std::thread reader([&] {
        while (!over)
            wrong += device.CopyName().rfind("name ", 0) != 0 ? 1 : 0;
    });
    for (int i = 0; i < 2000; ++i)
        device.SetName(("name " + std::to_string(i)).c_str());
    over = true;
    reader.join();
    EXPECT_EQ(wrong, 0);
}

TEST(MKXPDeviceBase, IsNeitherStartedNorRunningAtFirst) {
    MKXPDeviceBase device;
    EXPECT_FALSE(device.IsStarted());
    EXPECT_FALSE(device.IsRunning());
    device.SetStarted(true);
    EXPECT_TRUE(device.IsStarted());
    EXPECT_FALSE(device.IsRunning());
    device.SetRunning(true);
    device.SetStarted(false);
    EXPECT_FALSE(device.IsStarted());
    EXPECT_TRUE(device.IsRunning());
}

TEST(MKXPDeviceBase, GetsANumberThatIsNeverGivenAgain) {
    auto first = std::make_unique<MKXPDeviceBase>();
    const std::uint32_t number = first->GetDeviceNumber();
    first.reset();
    EXPECT_EQ(MKXPDeviceBase().GetDeviceNumber(), number + 1);
    EXPECT_EQ(MKXPDeviceBase().GetDeviceNumber(), number + 2);
}

TEST(MKXPDeviceBase, IsCountedAndFoundInOrderOfCreation) {
    ASSERT_EQ(MKXPDeviceBase::GetCount(), 0u);
    MKXPDeviceBase first;
    auto second = std::make_unique<MKXPDeviceBase>();
    MKXPDeviceBase third;
    EXPECT_EQ(MKXPDeviceBase::GetCount(), 3u);
    EXPECT_EQ(MKXPDeviceBase::GetByIndex(0), &first);
    EXPECT_EQ(MKXPDeviceBase::GetByIndex(1), second.get());
    second.reset();
    EXPECT_EQ(MKXPDeviceBase::GetCount(), 2u);
    EXPECT_EQ(MKXPDeviceBase::GetByIndex(1), &third);
    EXPECT_EQ(MKXPDeviceBase::GetByIndex(2), nullptr);
    EXPECT_EQ(MKXPDeviceBase::GetByIndex(0xFFFFFFFF), nullptr);
}

TEST(MKXPDeviceBase, LeavesTheListOnceOnly) {
    MKXPDeviceBase other;
    {
        LeavingDevice device;
        device.Unlist();
        EXPECT_EQ(MKXPDeviceBase::GetCount(), 1u);
        device.Unlist();
        EXPECT_EQ(MKXPDeviceBase::GetCount(), 1u);
    }
    EXPECT_EQ(MKXPDeviceBase::GetCount(), 1u);
}

TEST(MKXPDeviceBase, MayBeMadeAndEndedOnSeveralThreadsAtOnce) {
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int k = 0; k < 500; ++k) {
                const MKXPDeviceBase device;
                MKXPDeviceBase::GetByIndex(0);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(MKXPDeviceBase::GetCount(), 0u);
}

TEST(MKXPDeviceBase, MakesADataElementWithVersionNameAndInternalVersion) {
    MKXPDeviceBase device;
    device.SetName("Desk & \"Co\"");
    const std::unique_ptr<TiXmlElement> element(device.MakeDataElement(7));
    TiXmlPrinter printer;
    printer.SetStreamPrinting();
    element->Accept(&printer);
    EXPECT_STREQ(printer.CStr(),
                 "<DeviceData Version=\"7\" Name='Desk &amp; &quot;Co&quot;' DeviceInternalVersion=\"1\" />");
}

TEST(MKXPDeviceBase, WithoutANameMakesADataElementWithTheEmptyName) {
    const std::unique_ptr<TiXmlElement> element(MKXPDeviceBase().MakeDataElement(1));
    EXPECT_STREQ(element->Attribute("Name"), "");
}

TEST(MKXPDeviceBase, RefusesAnElementOfAnotherName) {
    MKXPDeviceBase device;
    int version = 3;
    EXPECT_EQ(device.ReadDataElement(nullptr, 1, &version), -1);
    const TiXmlElement other("deviceData");
    EXPECT_EQ(device.ReadDataElement(&other, 1, &version), -1);
    EXPECT_EQ(version, 3);
}

TEST(MKXPDeviceBase, RefusesADataElementWithoutAReadableVersion) {
    MKXPDeviceBase device;
    device.SetName("kept");
    int version = 0;
    TiXmlElement element("DeviceData");
    element.SetAttribute("Name", "new");
    EXPECT_EQ(device.ReadDataElement(&element, 1, &version), 2);
    element.SetAttribute("Version", "one");
    EXPECT_EQ(device.ReadDataElement(&element, 1, &version), 2);
    EXPECT_EQ(device.ReadDataElement(&element, 1, nullptr), 2);
    EXPECT_STREQ(device.GetName(), "kept");
}

TEST(MKXPDeviceBase, ReadsVersionAndNameBackAndIgnoresTheVersionAskedFor) {
    MKXPDeviceBase device;
    device.SetName("Desk");
    const std::unique_ptr<TiXmlElement> element(device.MakeDataElement(7));
    MKXPDeviceBase other;
    int version = 0;
    EXPECT_EQ(other.ReadDataElement(element.get(), 99, &version), 0);
    EXPECT_EQ(version, 7);
    EXPECT_STREQ(other.GetName(), "Desk");
}

TEST(MKXPDeviceBase, ReadingAnElementWithoutANameClearsTheName) {
    MKXPDeviceBase device;
    device.SetName("Desk");
    TiXmlElement element("DeviceData");
    element.SetAttribute("Version", 1);
    int version = 0;
    EXPECT_EQ(device.ReadDataElement(&element, 1, &version), 0);
    EXPECT_STREQ(device.GetName(), "");
}

} // namespace
