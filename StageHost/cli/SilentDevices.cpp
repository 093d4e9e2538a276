#include "SilentDevices.h"

#include "Output.h"

namespace stagehost {

/// A failure stands in the log behind the name of the device; what scripts write there themselves begins otherwise.
void SilentDevices::Take(const QString& line) {
    for (const QString& device : devices_) {
        const QString mark = QStringLiteral(": CalverinScript_ [%1] ").arg(device);
        const int place = line.indexOf(mark);
        if (place < 0)
            continue;
        const QString failure = line.mid(place + mark.size());
        if (device != awaited_)
            PrintProblem(device + QStringLiteral(": ") + failure);
        else if (failure_.isEmpty())
            failure_ = failure;
        return;
    }
}

void SilentDevices::Begin(const QString& device) {
    awaited_ = device;
    failure_.clear();
}

QString SilentDevices::End() {
    awaited_.clear();
    return failure_;
}

} // namespace stagehost
