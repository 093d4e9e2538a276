#include "NameCheck.h"

#include "BorderText.h"
#include "NameTools.h"

namespace stagehost {

void CheckName(const JsonNode& node, const std::string& name, const char* what) {
    const std::string reason = WhyNoObjectName(name);
    if (reason.empty())
        return;
    const QString complaint = QStringLiteral("expected a name of ") + QLatin1String(what);
    node.Complain(
        name.empty() ? complaint
                     : complaint + QStringLiteral(": %1 %2").arg(Quoted(FromBorderText(name)), FromBorderText(reason)));
}

} // namespace stagehost
