#include "MKXPDeviceBase.h"

#include <algorithm>
#include <iterator>
#include <list>
#include <mutex>
#include <string>

#include <tinyxml.h>

struct MKXPDeviceBase::NameNode {
    std::string text;
    std::unique_ptr<const NameNode> older;
};

namespace {

/// The process-wide list. `lock` guards both fields.
struct DeviceList {
    std::mutex lock;
    std::list<MKXPDeviceBase*> devices;
    std::uint32_t lastNumber = 0;
};

DeviceList& Devices() {
    static DeviceList list;
    return list;
}

} // namespace

MKXPDeviceBase::MKXPDeviceBase() {
    DeviceList& list = Devices();
    const std::lock_guard<std::mutex> guard(list.lock);
    list.devices.push_back(this);
    deviceNumber = ++list.lastNumber;
}

MKXPDeviceBase::~MKXPDeviceBase() {
    Unlist();
    delete m_names.load();
}

void MKXPDeviceBase::Unlist() {
    if (!m_listed)
        return;
    m_listed = false;
    DeviceList& list = Devices();
    const std::lock_guard<std::mutex> guard(list.lock);
    list.devices.remove(this);
}

void MKXPDeviceBase::SetName(const char* newName) {
    std::string text = newName != nullptr ? newName : "";
    if (text == MKXPDeviceBase::GetName())
        return;
    const NameNode* older = m_names.load();
    m_names = new NameNode{std::move(text), std::unique_ptr<const NameNode>(older)};
}

const char* MKXPDeviceBase::GetName() {
    const NameNode* newest = m_names.load();
    return newest != nullptr ? newest->text.c_str() : "";
}

std::uint32_t MKXPDeviceBase::GetDeviceNumber() const {
    return deviceNumber;
}

void MKXPDeviceBase::SetStarted(bool flag) {
    m_started = flag;
}

bool MKXPDeviceBase::IsStarted() const {
    return m_started;
}

void MKXPDeviceBase::SetRunning(bool flag) {
    m_running = flag;
}

bool MKXPDeviceBase::IsRunning() const {
    return m_running;
}

TiXmlElement* MKXPDeviceBase::MakeDataElement(int version) {
    auto* element = new TiXmlElement("DeviceData");
    element->SetAttribute("Version", version);
    element->SetAttribute("Name", GetName());
    element->SetAttribute("DeviceInternalVersion", 1);
    return element;
}

int MKXPDeviceBase::ReadDataElement(const TiXmlElement* element, int /*version*/, int* out) {
    if (element == nullptr || element->ValueStr() != "DeviceData")
        return -1;
    if (out == nullptr || element->QueryIntAttribute("Version", out) != TIXML_SUCCESS)
        return 2;
    SetName(element->Attribute("Name"));
    return 0;
}

std::uint32_t MKXPDeviceBase::GetCount() {
    DeviceList& list = Devices();
    const std::lock_guard<std::mutex> guard(list.lock);
    return static_cast<std::uint32_t>(list.devices.size());
}

MKXPDeviceBase* MKXPDeviceBase::GetByIndex(std::uint32_t index) {
    DeviceList& list = Devices();
    const std::lock_guard<std::mutex> guard(list.lock);
    return index < list.devices.size() ? *std::next(list.devices.begin(), index) : nullptr;
}
