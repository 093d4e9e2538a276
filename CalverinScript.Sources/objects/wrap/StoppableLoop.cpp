#include "StoppableLoop.h"

#include <QScriptEngine>
#include <QVariant>

namespace {

constexpr const char* kFlagProperty = "calverinStopFlag";

} // namespace

void StoppableLoop::SetStopFlag(QScriptEngine& engine, const std::atomic<bool>* stop) {
    engine.setProperty(kFlagProperty, QVariant::fromValue(const_cast<void*>(static_cast<const void*>(stop))));
}

bool StoppableLoop::IsStopped() {
    if (m_engine == nullptr)
        return false;
    const auto* stop = static_cast<const std::atomic<bool>*>(m_engine->property(kFlagProperty).value<void*>());
    if (stop == nullptr || !*stop)
        return false;
    m_engine->abortEvaluation();
    return true;
}
