#pragma once

#include <memory>
#include <utility>

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
    MScriptParamList(MScriptParamList&&) noexcept = default;
    MScriptParamList& operator=(MScriptParamList&&) noexcept = default;
    virtual ~MScriptParamList() = default;

    /// Appends a value.
    void Add(QVariant value) { m_values.append(std::move(value)); }
    int Count() const { return m_values.size(); }
    /// The value at that index from 0, which lives as long as the list; an invalid one past the ends.
    const QVariant& At(int index) const {
        static const QVariant none;
        return index >= 0 && index < m_values.size() ? m_values.at(index) : none;
    }

    /// The object that raised the event, which comes to the listener behind the values. Not owned, and not to be
    /// touched before it is known to live still.
    void SetSource(MScriptCommonEvent* source) { m_source = source; }
    MScriptCommonEvent* GetSource() const { return m_source; }

    /// Something that lives until the last copy of this event is gone; see ScriptBacklog.
    void Carry(std::shared_ptr<const void> ticket) { m_ticket = std::move(ticket); }

private:
    QVector<QVariant> m_values;
    MScriptCommonEvent* m_source = nullptr;
    std::shared_ptr<const void> m_ticket;
};
Q_DECLARE_METATYPE(MScriptParamList)
