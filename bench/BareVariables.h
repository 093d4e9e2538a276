#pragma once

#include <QObject>

#include "IData.h"
#include "IHostServices.h"

/// The least that reads and writes host variables from a script: an object with two invokable methods. Their defaults
/// are those of the script interface, since each costs the engine another candidate to choose from.
class BareVariables : public QObject {
    Q_OBJECT
public:
    explicit BareVariables(IVariableManager& manager)
        : m_manager(manager) {}
    ~BareVariables() override = default;
    Q_INVOKABLE unsigned int SetValueAsInteger(const QString& name = QString(), const QString& value = QString()) {
        m_manager.FindVariable(name.toLatin1().constData())->SetIntValue(value.toInt(), 0, 0);
        return 0;
    }
    Q_INVOKABLE int GetValueAsInteger(const QString& name = QString()) {
        return m_manager.FindVariable(name.toLatin1().constData())->GetIntValue();
    }

private:
    IVariableManager& m_manager;
};

/// Methods that nobody calls. Each default argument makes one entry more that the engine can call.
class BareCrowd : public QObject {
    Q_OBJECT
public:
    ~BareCrowd() override = default;
    Q_INVOKABLE void First(int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0,
                           int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0,
                           int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0) {}
    Q_INVOKABLE void Second(int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0,
                            int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0,
                            int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0) {}
    Q_INVOKABLE void Third(int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0,
                           int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0,
                           int = 0, int = 0, int = 0, int = 0, int = 0, int = 0, int = 0) {}
};

/// The same two methods behind as many entries as they have in front of them in the script interface, since the engine
/// looks through all of them at each call.
class CrowdedVariables : public BareCrowd {
    Q_OBJECT
public:
    explicit CrowdedVariables(IVariableManager& manager)
        : m_bare(manager) {}
    ~CrowdedVariables() override = default;
    Q_INVOKABLE unsigned int SetValueAsInteger(const QString& name = QString(), const QString& value = QString()) {
        return m_bare.SetValueAsInteger(name, value);
    }
    Q_INVOKABLE int GetValueAsInteger(const QString& name = QString()) { return m_bare.GetValueAsInteger(name); }

private:
    BareVariables m_bare;
};
