#pragma once

#include <QMetaType>
#include <QVariant>
#include <QVector>

class MScriptCommonEvent;

/// The values of one event in the order of the listener's arguments. Built by one thread, then only copied.
class MScriptParamList {
public:
    MScriptParamList() = default;
    MScriptParamList(const MScriptParamList&) = default;
    MScriptParamList& operator=(const MScriptParamList&) = default;
    virtual ~MScriptParamList() = default;

    /// Appends a copy.
    void Add(const QVariant& value) { m_values.append(value); }
    int Count() const { return m_values.size(); }
    /// The value at that index from 0; an invalid one past the ends.
    QVariant At(int index) const { return m_values.value(index); }

    /// The object that raised the event, which comes to the listener behind the values. Not owned, and not to be touched before
    /// it is known to live still.
    void SetSource(MScriptCommonEvent* source) { m_source = source; }
    MScriptCommonEvent* GetSource() const { return m_source; }

private:
    QVector<QVariant> m_values;
    MScriptCommonEvent* m_source = nullptr;
};
Q_DECLARE_METATYPE(MScriptParamList)
