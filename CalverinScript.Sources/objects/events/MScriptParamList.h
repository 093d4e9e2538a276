#pragma once

#include <QMetaType>
#include <QVariant>
#include <QVector>

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

private:
    QVector<QVariant> m_values;
};
Q_DECLARE_METATYPE(MScriptParamList)
