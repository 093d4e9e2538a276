#include "EventFixture.h"

#include <QScriptEngine>

#include "MScriptMngRemote.h"
#include "ScriptView.h"

namespace {

QScriptValue Collect(QScriptContext*, QScriptEngine* engine) {
    engine->collectGarbage();
    return QScriptValue();
}

} // namespace

void EventFixture::SetUp() {
    DeviceFixture::SetUp();
    OnScriptThread([this] {
        QScriptEngine* engine = device->GetEngine();
        engine->setProperty("fixture", QVariant::fromValue(static_cast<void*>(this)));
        QScriptValue global = engine->globalObject();
        global.setProperty(QStringLiteral("source"), engine->newFunction(&EventFixture::Make));
        global.setProperty(QStringLiteral("take"), engine->newFunction(&EventFixture::Take));
        global.setProperty(QStringLiteral("hear"), engine->newFunction(&EventFixture::Hear));
        global.setProperty(QStringLiteral("gc"), engine->newFunction(&Collect));
    });
}

void EventFixture::TearDown() {
    DeviceFixture::TearDown();
    EXPECT_EQ(EventSource::Alive(), 0);
}

EventFixture* EventFixture::Of(QScriptEngine* engine) {
    return static_cast<EventFixture*>(engine->property("fixture").value<void*>());
}

QScriptValue EventFixture::Make(QScriptContext* context, QScriptEngine* engine) {
    EventFixture* self = Of(engine);
    MScriptMngRemote* remote = self->device->GetRemote();
    const auto kind = static_cast<ScriptObjectType>(context->argument(0).toInt32());
    auto source = std::make_unique<EventSource>(remote, kind);
    self->m_source = source.get();
    remote->GetEventSources().Own(std::move(source));
    return WrapOwnedByHost(*engine, self->m_source);
}

QScriptValue EventFixture::Take(QScriptContext* /*context*/, QScriptEngine* engine) {
    EventFixture* self = Of(engine);
    self->device->GetRemote()->GetEventSources().Borrow(*self->resource);
    return WrapOwnedByHost(*engine, self->resource);
}

QScriptValue EventFixture::Hear(QScriptContext* context, QScriptEngine* engine) {
    EventFixture* self = Of(engine);
    const std::lock_guard<std::mutex> guard(self->m_lock);
    self->m_heard.push_back(context->argument(0).toString().toStdString());
    self->m_changed.notify_all();
    return QScriptValue();
}

void EventFixture::GivenSource(const std::string& script, ScriptObjectType kind) {
    GivenScript("var s = source(" + std::to_string(static_cast<int>(kind)) + ");" + script);
    ASSERT_EQ(Error(), "");
}

std::string EventFixture::Joined() const {
    std::string joined;
    for (const std::string& text : m_heard)
        joined += (joined.empty() ? "" : " ") + text;
    return joined;
}

std::string EventFixture::Heard(std::size_t count) {
    std::unique_lock<std::mutex> guard(m_lock);
    m_changed.wait_for(guard, std::chrono::milliseconds(kDeadlineMs), [&] { return m_heard.size() >= count; });
    return Joined();
}

std::string EventFixture::HeardAfterAll() {
    OnScriptThread([] {});
    const std::lock_guard<std::mutex> guard(m_lock);
    return Joined();
}

std::size_t EventFixture::HeardCount() {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_heard.size();
}

void EventFixture::ForgetHeard() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_heard.clear();
}
