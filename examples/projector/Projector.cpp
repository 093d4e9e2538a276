#include "Projector.h"

namespace projector {

namespace {

constexpr qint64 kHour = 3600 * 1000; // ms

} // namespace

Projector::Projector(Description description)
    : m_description(std::move(description))
    , m_input(m_description.inputs.value(0)) {
    m_passage.setSingleShot(true);
    m_passage.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_passage, &QTimer::timeout, [this] { Arrive(m_target); });
}

bool Projector::TurnOn() {
    if (m_power == Power::Cooling)
        return false;
    if (m_power == Power::Off)
        Begin(Power::WarmingUp, Power::On, m_description.warmUp);
    return true;
}

bool Projector::TurnOff() {
    if (m_power == Power::WarmingUp)
        return false;
    if (m_power == Power::On)
        Begin(Power::Cooling, Power::Off, m_description.coolDown);
    return true;
}

void Projector::Begin(Power passing, Power target, int milliseconds) {
    if (passing == Power::WarmingUp) {
        m_lit.start();
    } else {
        m_litBefore += m_lit.elapsed();
        m_lit.invalidate();
    }
    m_power = passing;
    m_target = target;
    m_passage.start(milliseconds);
}

void Projector::Arrive(Power target) {
    m_power = target;
    if (target == Power::Off)
        m_pictureMuted = m_soundMuted = false;
}

int Projector::LampHours(int lamp) const {
    const qint64 lit = m_litBefore + (m_lit.isValid() ? m_lit.elapsed() : 0);
    return m_description.lampHours.at(lamp) + static_cast<int>(lit / kHour);
}

} // namespace projector
