#include "PerformParameters.h"

#include <tinyxml.h>

#include "GuardedXml.h"
#include "HostText.h"

std::string PerformParameters(const QString& type, const QStringList& parameters) {
    if (type.toUpper() == QLatin1String("XML"))
        return ToHostText(parameters.value(0)).toStdString();
    TiXmlElement list("parameters");
    for (const QString& parameter : parameters) {
        const int equals = parameter.indexOf(QLatin1Char('='));
        if (equals <= 0 || equals == parameter.size() - 1)
            continue;
        TiXmlElement element("parameter");
        element.SetAttribute("name", ToHostText(parameter.left(equals)).constData());
        element.SetAttribute("value", ToHostText(parameter.mid(equals + 1)).constData());
        list.InsertEndChild(element);
    }
    return PrintXml(list);
}
