#include "Projector.h"

namespace projector {

namespace {

constexpr qint64 kHour = 3600 * 1000; // ms

} // namespace

Projector::Projector(Description description)
    : description_(std::move(description))
    , input_(description_.inputs.value(0)) {
    passage_.setSingleShot(true);
    passage_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&passage_, &QTimer::timeout, [this] { Arrive(target_); });
}

bool Projector::TurnOn() {
    if (power_ == Power::Cooling)
        return false;
    if (power_ == Power::Off)
        Begin(Power::WarmingUp, Power::On, description_.warmUp);
    return true;
}

bool Projector::TurnOff() {
    if (power_ == Power::WarmingUp)
        return false;
    if (power_ == Power::On)
        Begin(Power::Cooling, Power::Off, description_.coolDown);
    return true;
}

void Projector::Begin(Power passing, Power target, int milliseconds) {
    if (passing == Power::WarmingUp) {
        lit_.start();
    } else {
        litBefore_ += lit_.elapsed();
        lit_.invalidate();
    }
    power_ = passing;
    target_ = target;
    passage_.start(milliseconds);
}

void Projector::Arrive(Power target) {
    power_ = target;
    if (target == Power::Off)
        pictureMuted_ = soundMuted_ = false;
}

int Projector::LampHours(int lamp) const {
    const qint64 lit = litBefore_ + (lit_.isValid() ? lit_.elapsed() : 0);
    return description_.lampHours.at(lamp) + static_cast<int>(lit / kHour);
}

} // namespace projector
