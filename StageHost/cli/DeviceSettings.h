#pragma once

#include <map>
#include <vector>

#include <QString>
#include <QStringList>

#include "SetupText.h"
#include "Show.h"

namespace stagehost {

/// What "settings" in a show file and --set on the command line say of the settings of its devices. They stand over the
/// setups: the one of the show file over that which is stored or made of the driver, and --set over both.   [host main]
class DeviceSettings {
public:
    /// @param sets of the form [DEVICE.]NAME=VALUE. @return what is wrong; empty when each names a device.
    QString Take(const Show& show, const QStringList& sets);

    /// Those of a device, the strongest last.
    std::vector<GivenSetting> Given(const QString& device) const;
    bool HasAny(const QString& device) const { return m_given.count(device) != 0; }

    /// Gives a device's setup the values, and remembers the setup that lies below.
    /// @return what is wrong, a line for each; the setup is left alone then.
    QString PutInto(const QString& device, QString& setup);

    /// A setup of the device with the values of the one that lies below, as it may be stored.
    QString TakeOutOf(const QString& device, const QString& setup) const;

    /// Those of the show file that somebody has given another value in the setup, with that value.
    std::vector<GivenSetting> Changed(const QString& device, const QString& setup) const;

private:
    QString AddSet(const Show& show, const QString& set);

    std::map<QString, std::vector<GivenSetting>> m_given; ///< by device, the strongest last
    std::map<QString, QString> m_below;                   ///< setups by device
};

} // namespace stagehost
