#include "ByteArrayClassPropertyIterator.h"

#include <QScriptEngine>

#include "ByteArrayClass.h"

int ByteArrayClassPropertyIterator::Size() const {
    const QByteArray* bytes = ByteArrayClass::BytesOf(object());
    return bytes != nullptr ? bytes->size() : 0;
}

void ByteArrayClassPropertyIterator::toFront() {
    m_index = 0;
    m_last = -1;
}

void ByteArrayClassPropertyIterator::toBack() {
    m_index = Size();
    m_last = -1;
}

QScriptString ByteArrayClassPropertyIterator::name() const {
    return object().engine()->toStringHandle(QString::number(m_last));
}
