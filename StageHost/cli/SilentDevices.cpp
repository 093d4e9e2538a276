#include "SilentDevices.h"

#include "Output.h"

namespace stagehost {

/// A failure stands in the log behind the name of the device; what scripts write there themselves begins otherwise.
void SilentDevices::Take(const QString& line) {
    for (const QString& device : m_devices) {
        const QString mark = QStringLiteral(": CalverinScript_ [%1] ").arg(device);
        const int place = line.indexOf(mark);
        if (place < 0)
            continue;
        const QString failure = line.mid(place + mark.size());
        if (device != m_awaited)
            PrintProblem(device + QStringLiteral(": ") + failure);
        else if (m_failure.isEmpty())
            m_failure = failure;
        return;
    }
}

void SilentDevices::Begin(const QString& device) {
    m_awaited = device;
    m_failure.clear();
}

QString SilentDevices::End() {
    m_awaited.clear();
    return m_failure;
}

} // namespace stagehost
