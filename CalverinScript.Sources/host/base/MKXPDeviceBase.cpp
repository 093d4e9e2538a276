#include "MKXPDeviceBase.h"

#include <algorithm>
#include <iterator>
#include <list>
#include <mutex>
#include <string>

#include <tinyxml.h>

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

MKXPDeviceBase::MKXPDeviceBase()
    : m_name(std::make_unique<const std::string>()) {
    DeviceList& list = Devices();
    const std::lock_guard<std::mutex> guard(list.lock);
    list.devices.push_back(this);
    deviceNumber = ++list.lastNumber;
}

MKXPDeviceBase::~MKXPDeviceBase() {
    Unlist();
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
    auto text = std::make_unique<const std::string>(newName != nullptr ? newName : "");
    const std::lock_guard<std::mutex> guard(m_nameLock);
    if (*text == *m_name)
        return;
    m_lastName = std::move(m_name);
    m_name = std::move(text);
}

const char* MKXPDeviceBase::GetName() {
    const std::lock_guard<std::mutex> guard(m_nameLock);
    return m_name->c_str();
}

std::string MKXPDeviceBase::CopyName() const {
    const std::lock_guard<std::mutex> guard(m_nameLock);
    return *m_name;
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
