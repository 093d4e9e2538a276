#pragma once

#include <QStringList>

namespace stagehost {

/// Devices that show no variable "Error", since their drivers have removed the default variables. What their scripts
/// throw is taken from the log, and printed unless somebody waits for it.   [host main]
class SilentDevices {
public:
    void Add(const QString& device) { m_devices += device; }

    /// Looks at a line of the log.
    void Take(const QString& line);

    /// From now on what the device fails with is kept for End.
    void Begin(const QString& device);
    /// @return what the device has failed with since Begin; empty when it has not, or is none of these devices.
    QString End();

private:
    QStringList m_devices;
    QString m_awaited; ///< empty when nobody waits
    QString m_failure;
};

} // namespace stagehost
