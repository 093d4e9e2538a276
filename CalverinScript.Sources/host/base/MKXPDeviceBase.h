#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

class TiXmlElement;

/// What every device has: a name, run flags, the root element of
/// its setup, and a place in the process-wide list of devices.
class MKXPDeviceBase {
public:
    MKXPDeviceBase();
    MKXPDeviceBase(const MKXPDeviceBase&) = delete;
    MKXPDeviceBase& operator=(const MKXPDeviceBase&) = delete;
    virtual ~MKXPDeviceBase();

    /// Takes a copy of the name; null is the empty text.   [host main]
    virtual void SetName(const char* newName);
    /// The name, never null. Owned by the device, valid until the next SetName but one, so that a thread of the host
    /// may still be reading when the name changes.   [any host thread]
    virtual const char* GetName();
    /// A copy of the name, for threads that do not know when it changes.   [any]
    std::string CopyName() const;
    /// A process-wide number that only grows, unless the device gave itself another.   [any]
    virtual std::uint32_t GetDeviceNumber() const;
    virtual void SetStarted(bool flag);
    virtual bool IsStarted() const;
    virtual void SetRunning(bool flag);
    virtual bool IsRunning() const;

    /// A new element "DeviceData" with Version, Name and DeviceInternalVersion 1. Owned by the caller.   [host main]
    virtual TiXmlElement* MakeDataElement(int version);
    /// Reads such an element: the name, and its Version into out.
    /// @param version not used.
    /// @return 0, -1 for null or an element of another name, 2 without a readable Version.   [host main]
    virtual int ReadDataElement(const TiXmlElement* element, int version, int* out);

    /// Count of devices in this process.   [any]
    static std::uint32_t GetCount();
    /// The device of that index from 0, in order of creation; null past the end.   [host main]
    static MKXPDeviceBase* GetByIndex(std::uint32_t index);

protected:
    /// Takes the device out of the list and the count before its destructor does.   [host main]
    void Unlist();

    std::uint32_t deviceNumber;

private:
    mutable std::mutex m_nameLock;
    std::unique_ptr<const std::string> m_name;     ///< under m_nameLock; never null
    std::unique_ptr<const std::string> m_lastName; ///< under m_nameLock; the one before, which may still be read
    std::atomic<bool> m_started{false};            ///< written by host threads, read by all
    std::atomic<bool> m_running{false};            ///< written by host threads, read by the tick thread
    bool m_listed = true;                          ///< host main
};
