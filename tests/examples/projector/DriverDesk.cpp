#include "DriverDesk.h"

#include <QFile>
#include <QTest>

#include "Waits.h"

DriverDesk::DriverDesk(const QString& file, const QMap<QString, QVariant>& settings) {
    QFile script(file);
    script.open(QIODevice::ReadOnly);
    m_engine.globalObject().setProperty(
        Text("QCalverin"),
        m_engine.newQObject(this, QScriptEngine::QtOwnership, QScriptEngine::ExcludeSuperClassContents));
    m_driver = m_engine.evaluate(QString::fromUtf8(script.readAll()), file);
    for (auto setting = settings.begin(); setting != settings.end(); ++setting)
        m_driver.property(Text("Setup")).setProperty(setting.key(), m_engine.toScriptValue(setting.value()));
}

DriverDesk::~DriverDesk() {
    CallDriver("_mStop", QStringList{QStringLiteral("false")});
}

QScriptValue DriverDesk::CallDriver(const char* function, const QStringList& arguments) {
    QScriptValueList values;
    for (const QString& argument : arguments)
        values += QScriptValue(argument);
    const QScriptValue result = m_driver.property(Text(function)).call(m_driver, values);
    if (m_engine.hasUncaughtException())
        m_uncaught = m_engine.uncaughtException().toString();
    return result;
}

void DriverDesk::Call(QScriptValue function, const QScriptValueList& arguments) {
    function.call(m_driver, arguments);
    if (m_engine.hasUncaughtException())
        m_uncaught = m_engine.uncaughtException().toString();
}

int DriverDesk::Run(const char* command, const QString& parameter) {
    const int id = ++m_lastCommand;
    m_postponed = false;
    const QScriptValue result = CallDriver(command, QStringList{parameter});
    if (!m_postponed)
        m_results[id] = result.toString();
    return id;
}

QString DriverDesk::Result(int command) {
    const bool came = QTest::qWaitFor([&] { return m_results.contains(command); }, kLongest);
    return came ? m_results.value(command) : Text("none within a minute");
}

QString DriverDesk::Variable(const char* name) const {
    return m_driver.property(Text("Device")).property(Text(name)).toString();
}

bool DriverDesk::WaitFor(const char* variable, const QString& value) const {
    return QTest::qWaitFor([&] { return Variable(variable) == value; }, kLongest);
}

int DriverDesk::SetTimeout(const QScriptValue& function, int milliseconds) {
    const int id = ++m_lastTimer;
    auto* timer = new QTimer(this);
    m_timers[id] = timer;
    timer->setSingleShot(true);
    connect(timer, &QTimer::timeout, this, [this, id, function] {
        ClearTimeout(id);
        Call(function, {});
    });
    timer->start(milliseconds);
    return id;
}

void DriverDesk::ClearTimeout(int id) {
    if (QTimer* timer = m_timers.take(id))
        timer->deleteLater();
}

int DriverDesk::PostponeResult() {
    if (m_postponed)
        return 0;
    m_postponed = true;
    return m_lastCommand;
}

void DriverDesk::SetResult(int id, const QString& text) {
    if (!m_results.contains(id))
        m_results[id] = text;
}

QScriptValue DriverDesk::CreateSocket() {
    auto* socket = new DeskSocket(*this);
    socket->setParent(this);
    return m_engine.newQObject(socket, QScriptEngine::QtOwnership, QScriptEngine::ExcludeSuperClassContents);
}

DeskSocket::DeskSocket(DriverDesk& desk)
    : m_desk(desk) {
    QObject::connect(
        &m_socket, &QTcpSocket::connected, this, [this] { Raise("connect", {}); }, Qt::QueuedConnection);
    QObject::connect(
        &m_socket, &QTcpSocket::disconnected, this, [this] { Raise("close", {QScriptValue(false)}); },
        Qt::QueuedConnection);
    QObject::connect(&m_socket, &QTcpSocket::readyRead, this, &DeskSocket::PassData, Qt::QueuedConnection);
    QObject::connect(
        &m_socket, &QTcpSocket::errorOccurred, this,
        [this](QAbstractSocket::SocketError error) {
            QScriptValue info = m_desk.Engine().newObject();
            info.setProperty(QStringLiteral("errorText"), m_socket.errorString());
            if (error != QAbstractSocket::RemoteHostClosedError)
                Raise("error", {info});
        },
        Qt::QueuedConnection);
}

void DeskSocket::connect(int port, const QString& host) {
    m_socket.connectToHost(host, static_cast<quint16>(port));
}

void DeskSocket::write(const QString& text) {
    m_socket.write(text.toLatin1());
    m_socket.flush();
}

void DeskSocket::end() {
    const bool stood = m_socket.state() == QAbstractSocket::ConnectedState;
    m_socket.abort();
    if (!stood)
        QMetaObject::invokeMethod(
            this, [this] { Raise("close", {QScriptValue(false)}); }, Qt::QueuedConnection);
}

void DeskSocket::PassData() {
    const QByteArray data = m_socket.readAll();
    QScriptValue bytes = m_desk.Engine().newArray(static_cast<uint>(data.size()));
    for (int i = 0; i < data.size(); ++i)
        bytes.setProperty(static_cast<quint32>(i), static_cast<int>(static_cast<unsigned char>(data[i])));
    if (!data.isEmpty())
        Raise("data", {bytes});
}

void DeskSocket::Raise(const char* event, const QScriptValueList& values) {
    const QScriptValue listener = m_listeners.value(QString::fromLatin1(event));
    if (listener.isFunction())
        m_desk.Call(listener, values);
}
