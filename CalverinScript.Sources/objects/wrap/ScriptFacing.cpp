#include "ScriptFacing.h"

#include <QScriptContext>

void RefuseForWantOfMemory(QScriptContext* context) {
    if (context != nullptr)
        context->throwError(QScriptContext::RangeError, QStringLiteral("not enough memory"));
}
