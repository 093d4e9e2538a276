#include "DriverDesk.h"

#include <QFile>
#include <QTest>

#include "Waits.h"

DriverDesk::DriverDesk(const QString& file, const QMap<QString, QVariant>& settings) {
    QFile script(file);
    script.open(QIODevice::ReadOnly);
    engine_.globalObject().setProperty(Text("QCalverin"), engine_.newQObject(this, QScriptEngine::QtOwnership,
                                                                             QScriptEngine::ExcludeSuperClassContents));
    driver_ = engine_.evaluate(QString::fromUtf8(script.readAll()), file);
    for (auto setting = settings.begin(); setting != settings.end(); ++setting)
        driver_.property(Text("Setup")).setProperty(setting.key(), engine_.toScriptValue(setting.value()));
}

DriverDesk::~DriverDesk() {
    CallDriver("_mStop", QStringList{QStringLiteral("false")});
}

QScriptValue DriverDesk::CallDriver(const char* function, const QStringList& arguments) {
    QScriptValueList values;
    for (const QString& argument : arguments)
        values += QScriptValue(argument);
    const QScriptValue result = driver_.property(Text(function)).call(driver_, values);
    if (engine_.hasUncaughtException())
        uncaught_ = engine_.uncaughtException().toString();
    return result;
}

void DriverDesk::Call(QScriptValue function, const QScriptValueList& arguments) {
    function.call(driver_, arguments);
    if (engine_.hasUncaughtException())
        uncaught_ = engine_.uncaughtException().toString();
}

int DriverDesk::Run(const char* command, const QString& parameter) {
    const int id = ++lastCommand_;
    postponed_ = false;
    const QScriptValue result = CallDriver(command, QStringList{parameter});
    if (!postponed_)
        results_[id] = result.toString();
    return id;
}

QString DriverDesk::Result(int command) {
    const bool came = QTest::qWaitFor([&] { return results_.contains(command); }, kLongest);
    return came ? results_.value(command) : Text("none within a minute");
}

QString DriverDesk::Variable(const char* name) const {
    return driver_.property(Text("Device")).property(Text(name)).toString();
}

bool DriverDesk::WaitFor(const char* variable, const QString& value) const {
    return QTest::qWaitFor([&] { return Variable(variable) == value; }, kLongest);
}

int DriverDesk::SetTimeout(const QScriptValue& function, int milliseconds) {
    const int id = ++lastTimer_;
    auto* timer = new QTimer(this);
    timers_[id] = timer;
    timer->setSingleShot(true);
    connect(timer, &QTimer::timeout, this, [this, id, function] {
        ClearTimeout(id);
        Call(function, {});
    });
    timer->start(milliseconds);
    return id;
}

void DriverDesk::ClearTimeout(int id) {
    if (QTimer* timer = timers_.take(id))
        timer->deleteLater();
}

int DriverDesk::PostponeResult() {
    if (postponed_)
        return 0;
    postponed_ = true;
    return lastCommand_;
}

void DriverDesk::SetResult(int id, const QString& text) {
    if (!results_.contains(id))
        results_[id] = text;
}

QScriptValue DriverDesk::CreateSocket() {
    auto* socket = new DeskSocket(*this);
    socket->setParent(this);
    return engine_.newQObject(socket, QScriptEngine::QtOwnership, QScriptEngine::ExcludeSuperClassContents);
}

DeskSocket::DeskSocket(DriverDesk& desk)
    : desk_(desk) {
    QObject::connect(
        &socket_, &QTcpSocket::connected, this, [this] { Raise("connect", {}); }, Qt::QueuedConnection);
    QObject::connect(
        &socket_, &QTcpSocket::disconnected, this, [this] { Raise("close", {QScriptValue(false)}); },
        Qt::QueuedConnection);
    QObject::connect(&socket_, &QTcpSocket::readyRead, this, &DeskSocket::PassData, Qt::QueuedConnection);
    QObject::connect(
        &socket_, &QTcpSocket::errorOccurred, this,
        [this](QAbstractSocket::SocketError error) {
            QScriptValue info = desk_.Engine().newObject();
            info.setProperty(QStringLiteral("errorText"), socket_.errorString());
            if (error != QAbstractSocket::RemoteHostClosedError)
                Raise("error", {info});
        },
        Qt::QueuedConnection);
}

void DeskSocket::connect(int port, const QString& host) {
    socket_.connectToHost(host, static_cast<quint16>(port));
}

void DeskSocket::write(const QString& text) {
    socket_.write(text.toLatin1());
    socket_.flush();
}

void DeskSocket::end() {
    const bool stood = socket_.state() == QAbstractSocket::ConnectedState;
    socket_.abort();
    if (!stood)
        QMetaObject::invokeMethod(
            this, [this] { Raise("close", {QScriptValue(false)}); }, Qt::QueuedConnection);
}

void DeskSocket::PassData() {
    const QByteArray data = socket_.readAll();
    QScriptValue bytes = desk_.Engine().newArray(static_cast<uint>(data.size()));
    for (int i = 0; i < data.size(); ++i)
        bytes.setProperty(static_cast<quint32>(i), static_cast<int>(static_cast<unsigned char>(data[i])));
    if (!data.isEmpty())
        Raise("data", {bytes});
}

void DeskSocket::Raise(const char* event, const QScriptValueList& values) {
    const QScriptValue listener = listeners_.value(QString::fromLatin1(event));
    if (listener.isFunction())
        desk_.Call(listener, values);
}
