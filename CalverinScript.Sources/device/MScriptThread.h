#pragma once

#include <cstddef>

#include <QThread>

class MCalverinScript_Device;

/// The script thread of one device: it runs Qt's event loop and nothing else, from the device's
/// construction to its end.
class MScriptThread : public QThread {
    Q_OBJECT

public:
    /// The device that lives on this thread, set before start. Not owned.   [host main]
    void SetDevice(MCalverinScript_Device* scriptDevice) { m_device = scriptDevice; }

    /// The stack in bytes that was asked for. The system thread gets the platform's default, which is larger: a
    /// script engine does not fit into less.   [host main]
    void SetRequestedStackSize(std::size_t bytes) { m_requestedStackSize = bytes; }
    std::size_t GetRequestedStackSize() const { return m_requestedStackSize; }

Q_SIGNALS:
    /// The event loop has ended.   [script]
    void terminated();

protected:
    void run() override;

private:
    MCalverinScript_Device* m_device = nullptr;
    std::size_t m_requestedStackSize = 0;
};
