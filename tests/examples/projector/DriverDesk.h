#pragma once

#include <QMap>
#include <QScriptEngine>
#include <QTcpSocket>
#include <QTimer>

/// What a script calls "QCalverin", as far as a driver with a socket needs it: timers, results that come later,
/// sockets. Everything is done by the event loop of the test's thread, never inside a script function.
class DriverDesk : public QObject {
    Q_OBJECT

public:
    /// Evaluates a driver and gives its settings these values.
    DriverDesk(const QString& file, const QMap<QString, QVariant>& settings);
    /// Stops the driver as a device does.
    ~DriverDesk() override;

    void Start() { CallDriver("_mStart", QStringList{QStringLiteral("false")}); }

    /// Runs a command. @return the name under which Result gives its result; it has none yet while the driver keeps it.
    int Run(const char* command, const QString& parameter = {});
    /// @return the result of a command; waits for it.
    QString Result(int command);
    /// Runs a command and waits for its result.
    QString Ask(const char* command, const QString& parameter = {}) { return Result(Run(command, parameter)); }

    /// @return a variable of the driver as text.
    QString Variable(const char* name) const;
    /// @return false when the variable does not get this value within a minute.
    bool WaitFor(const char* variable, const QString& value) const;
    /// What the driver's script throws from a function that nobody in it called; empty: nothing.
    QString Uncaught() const { return m_uncaught; }
    QScriptEngine& Engine() { return m_engine; }

    Q_INVOKABLE int SetTimeout(const QScriptValue& function, int milliseconds);
    Q_INVOKABLE void ClearTimeout(int id);
    Q_INVOKABLE int PostponeResult();
    Q_INVOKABLE void SetResult(int id, const QString& text);
    Q_INVOKABLE QScriptValue CreateSocket();

    void Call(QScriptValue function, const QScriptValueList& arguments);

private:
    QScriptValue CallDriver(const char* function, const QStringList& arguments);

    QScriptEngine m_engine;
    QScriptValue m_driver;
    QMap<int, QTimer*> m_timers;
    QMap<int, QString> m_results;
    int m_lastTimer = 0;
    int m_lastCommand = 0;
    bool m_postponed = false;
    QString m_uncaught;
};

/// A TCP client as scripts see it. Its events come from the event loop, the "close" of its own end() too.
class DeskSocket : public QObject {
    Q_OBJECT

public:
    explicit DeskSocket(DriverDesk& desk);

    Q_INVOKABLE void connect(int port, const QString& host);
    Q_INVOKABLE void write(const QString& text);
    Q_INVOKABLE void end();
    Q_INVOKABLE void on(const QString& event, const QScriptValue& listener) { m_listeners[event] = listener; }

private:
    void Raise(const char* event, const QScriptValueList& values);
    void PassData();

    DriverDesk& m_desk;
    QTcpSocket m_socket;
    QMap<QString, QScriptValue> m_listeners;
};
