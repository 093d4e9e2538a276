#pragma once

#include <QScriptClassPropertyIterator>

/// Walks the indices of a Buffer, "0" and on; `length` is not among
/// them. The bytes may change while it walks.   [the engine's thread]
class ByteArrayClassPropertyIterator : public QScriptClassPropertyIterator {
public:
    explicit ByteArrayClassPropertyIterator(const QScriptValue& object)
        : QScriptClassPropertyIterator(object) {}

    bool hasNext() const override { return m_index < Size(); }
    void next() override { m_last = m_index++; }
    bool hasPrevious() const override { return m_index > 0; }
    void previous() override { m_last = --m_index; }
    void toFront() override;
    void toBack() override;
    /// The index that was passed last, as a decimal text.
    QScriptString name() const override;
    uint id() const override { return static_cast<uint>(m_last); }

private:
    int Size() const;

    int m_index = 0; ///< the next position
    int m_last = -1; ///< the position passed last, -1 for none
};
