#include "BareScript.h"

#include <QMetaObject>

BareEngineThread::BareEngineThread()
    : engine(new QScriptEngine) {
    engine->moveToThread(&thread);
    thread.start();
}

BareEngineThread::~BareEngineThread() {
    thread.quit();
    thread.wait();
    delete engine;
}

BareRelay::BareRelay(const QString& script) {
    m_relay.moveToThread(&m_relayThread);
    m_relayThread.start();
    QMetaObject::invokeMethod(
        m_script.engine, [this, script] { m_object = m_script.engine->evaluate(script); },
        Qt::BlockingQueuedConnection);
    m_target.moveToThread(&m_script.thread);
}

BareRelay::~BareRelay() {
    m_relayThread.quit();
    m_relayThread.wait();
    QMetaObject::invokeMethod(
        m_script.engine, [this] { m_object = QScriptValue(); }, Qt::BlockingQueuedConnection);
}

void BareRelay::Offer(const QString& name, QObject& object) {
    QMetaObject::invokeMethod(
        m_script.engine,
        [&] { m_script.engine->globalObject().setProperty(name, m_script.engine->newQObject(&object)); },
        Qt::BlockingQueuedConnection);
}

void BareRelay::StartTimer(int periodMs) {
    QMetaObject::invokeMethod(
        m_script.engine,
        [&] {
            m_timer = new QTimer;
            m_timer->setTimerType(Qt::PreciseTimer);
            QObject::connect(m_timer, &QTimer::timeout, m_timer, [this] { CallFunction(); });
            m_timer->start(periodMs);
        },
        Qt::BlockingQueuedConnection);
}

void BareRelay::StopTimer() {
    QMetaObject::invokeMethod(
        m_script.engine, [&] { delete m_timer; }, Qt::BlockingQueuedConnection);
}

QString BareRelay::RoundTrip() {
    m_done = false;
    QMetaObject::invokeMethod(
        &m_relay,
        [this] {
            QMetaObject::invokeMethod(
                &m_target, [this] { CallOnEngineThread(); }, Qt::QueuedConnection);
        },
        Qt::QueuedConnection);
    std::unique_lock<std::mutex> guard(m_lock);
    m_changed.wait(guard, [this] { return m_done; });
    return m_result;
}

QScriptValue BareRelay::CallFunction() {
    return m_object.property(QStringLiteral("F")).call(m_object, QScriptValueList{QStringLiteral("a")});
}

void BareRelay::CallOnEngineThread() {
    m_result = CallFunction().toString();
    QMetaObject::invokeMethod(
        &m_relay, [this] { Done(); }, Qt::QueuedConnection);
}

void BareRelay::Done() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_done = true;
    m_changed.notify_all();
}
