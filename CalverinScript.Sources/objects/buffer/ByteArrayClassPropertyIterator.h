#pragma once

#include <QScriptClassPropertyIterator>

/// Walks the indices of a Buffer, "0" and on; `length` is not among
/// them. The bytes may change while it walks.   [the engine's thread]
class ByteArrayClassPropertyIterator : public QScriptClassPropertyIterator {
public:
    explicit ByteArrayClassPropertyIterator(const QScriptValue& object)
        : QScriptClassPropertyIterator(object) {}

    bool hasNext() const override { return index < Size(); }
    void next() override { last = index++; }
    bool hasPrevious() const override { return index > 0; }
    void previous() override { last = --index; }
    void toFront() override;
    void toBack() override;
    /// The index that was passed last, as a decimal text.
    QScriptString name() const override;
    uint id() const override { return static_cast<uint>(last); }

private:
    int Size() const;

    int index = 0; ///< the next position
    int last = -1; ///< the position passed last, -1 for none
};
