#pragma once

#include <QElapsedTimer>
#include <QList>
#include <QStringList>
#include <QTimer>

namespace projector {

/// As the protocol numbers them.
enum class Power { Off, On, Cooling, WarmingUp };

/// What the projector is made of; does not change while it works.
struct Description {
    QString name = QStringLiteral("Projector");
    QString maker = QStringLiteral("House technics");
    QString product = QStringLiteral("Loopback");
    QString other = QStringLiteral("1");
    int warmUp = 3000;   ///< ms from off to on
    int coolDown = 3000; ///< ms from on to off
    QStringList inputs{QStringLiteral("11"), QStringLiteral("21"), QStringLiteral("31"), QStringLiteral("32")};
    QList<int> lampHours{0}; ///< one for each lamp
    QString errors =
        QStringLiteral("000000"); ///< fan, lamp, temperature, cover, filter, other: 0 fine, 1 warning, 2 error
    bool broken = false;          ///< power, input and mute fail
};

/// The state of a projector: lamp, input, mute. One thread, with an event loop that moves the time.
class Projector {
public:
    explicit Projector(Description description);

    const Description& About() const { return m_description; }
    Power GetPower() const { return m_power; }

    /// Warms up, or does nothing when it is on or warming up. @return false while it cools.
    bool TurnOn();
    /// Cools down, or does nothing when it is off or cooling. @return false while it warms up.
    bool TurnOff();

    QString Input() const { return m_input; }
    bool HasInput(const QString& input) const { return m_description.inputs.contains(input); }
    void SelectInput(const QString& input) { m_input = input; }

    bool PictureMuted() const { return m_pictureMuted; }
    bool SoundMuted() const { return m_soundMuted; }
    void MutePicture(bool mute) { m_pictureMuted = mute; }
    void MuteSound(bool mute) { m_soundMuted = mute; }

    /// Whole hours of one lamp, those of this run included.
    int LampHours(int lamp) const;

private:
    void Begin(Power passing, Power target, int milliseconds);
    void Arrive(Power target);

    const Description m_description;
    Power m_power = Power::Off;
    QString m_input;
    bool m_pictureMuted = false;
    bool m_soundMuted = false;
    QTimer m_passage; ///< runs while it warms up or cools
    Power m_target = Power::Off;
    QElapsedTimer m_lit;    ///< since the lamps were lit; only valid while they are
    qint64 m_litBefore = 0; ///< ms of earlier times in this run
};

} // namespace projector
