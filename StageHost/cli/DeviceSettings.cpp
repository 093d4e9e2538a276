#include "DeviceSettings.h"

namespace stagehost {

namespace {

QString PlaceOf(const Show& show, std::size_t device, const QString& setting) {
    return QStringLiteral("%1: devices[%2].settings.%3").arg(show.file).arg(device).arg(setting);
}

QString NamesText(const Show& show) {
    QStringList names;
    for (const auto& device : show.devices)
        names += device.name;
    return names.join(QStringLiteral(", "));
}

} // namespace

QString DeviceSettings::Take(const Show& show, const QStringList& sets) {
    for (std::size_t index = 0; index < show.devices.size(); ++index) {
        const ShowDevice& device = show.devices[index];
        for (const auto& [name, text] : device.settings)
            m_given[device.name].push_back({name, text, PlaceOf(show, index, name)});
    }
    for (const QString& set : sets) {
        const QString problem = AddSet(show, set);
        if (!problem.isEmpty())
            return QStringLiteral("--set %1: %2").arg(set, problem);
    }
    return {};
}

/// A device's name has no point, a setting's may.
QString DeviceSettings::AddSet(const Show& show, const QString& set) {
    const int equals = set.indexOf(QLatin1Char('='));
    const QString left = set.left(equals);
    const QString device = left.section(QLatin1Char('.'), 0, 0);
    const bool isNamed = left.contains(QLatin1Char('.')) && show.FindDevice(device) != nullptr;
    if (!isNamed && show.devices.size() != 1)
        return QStringLiteral("the show has %1 devices; the form is DEVICE.NAME=VALUE, with one of %2")
            .arg(show.devices.size())
            .arg(NamesText(show));
    const QString name = isNamed ? left.section(QLatin1Char('.'), 1) : left;
    m_given[isNamed ? device : show.devices.front().name].push_back(
        {name, set.mid(equals + 1), QStringLiteral("--set ") + set});
    return {};
}

std::vector<GivenSetting> DeviceSettings::Given(const QString& device) const {
    const auto given = m_given.find(device);
    return given == m_given.end() ? std::vector<GivenSetting>() : given->second;
}

QString DeviceSettings::PutInto(const QString& device, QString& setup) {
    const auto given = m_given.find(device);
    if (given == m_given.end())
        return {};
    const QString below = setup;
    const QStringList complaints = GiveSettings(setup, given->second);
    if (complaints.isEmpty())
        m_below[device] = below;
    return complaints.join(QLatin1Char('\n'));
}

QString DeviceSettings::TakeOutOf(const QString& device, const QString& setup) const {
    const auto below = m_below.find(device);
    if (below == m_below.end())
        return setup;
    QStringList names;
    for (const auto& given : m_given.at(device))
        names += given.name;
    return WithSettingsOf(setup, below->second, names);
}

std::vector<GivenSetting> DeviceSettings::Changed(const QString& device, const QString& setup) const {
    std::vector<GivenSetting> changed;
    const auto below = m_below.find(device);
    if (below == m_below.end())
        return changed;
    QString given = setup;
    GiveSettings(given, m_given.at(device));
    for (const auto& one : m_given.at(device)) {
        const auto now = SettingOfSetup(setup, one.name);
        if (now && now != SettingOfSetup(given, one.name))
            changed.push_back({one.name, *now, one.place});
    }
    return changed;
}

} // namespace stagehost
