#include "ByteArrayClassPropertyIterator.h"

#include <QScriptEngine>

#include "ByteArrayClass.h"

int ByteArrayClassPropertyIterator::Size() const {
    const QByteArray* bytes = ByteArrayClass::BytesOf(object());
    return bytes != nullptr ? bytes->size() : 0;
}

void ByteArrayClassPropertyIterator::toFront() {
    index = 0;
    last = -1;
}

void ByteArrayClassPropertyIterator::toBack() {
    index = Size();
    last = -1;
}

QScriptString ByteArrayClassPropertyIterator::name() const {
    return object().engine()->toStringHandle(QString::number(last));
}
