#include "ToolkitMessages.h"

#include <QtGlobal>

#include "Output.h"

namespace stagehost {

namespace {

void ShowErrorsOnly(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtCriticalMsg || type == QtFatalMsg)
        PrintProblem(message);
}

} // namespace

void ShowToolkitMessages(bool all) {
    qInstallMessageHandler(all ? nullptr : &ShowErrorsOnly);
}

} // namespace stagehost
