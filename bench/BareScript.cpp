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

void BareRelay::CallOnEngineThread() {
    m_result = m_object.property(QStringLiteral("F")).call(m_object, QScriptValueList{QStringLiteral("a")}).toString();
    QMetaObject::invokeMethod(
        &m_relay, [this] { Done(); }, Qt::QueuedConnection);
}

void BareRelay::Done() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_done = true;
    m_changed.notify_all();
}
