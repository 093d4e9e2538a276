#include "HostData.h"

#include "HostText.h"

QString TextOf(IData& data) {
    char* text = data.GetValueAsString();
    QString copy = FromHostText(text);
    if (text != nullptr)
        data.ReleaseString(&text);
    return copy;
}

void SetText(IData& data, const QString& text) {
    data.SetValueFromString(ToHostText(text).constData(), 0, 0);
}

IData* EffectiveData(IObjectParam* param) {
    if (param == nullptr)
        return nullptr;
    IData* bound = param->GetValue(0);
    return bound != nullptr ? bound : param;
}
