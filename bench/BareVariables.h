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
    virtual ~BareVariables() = default;
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
