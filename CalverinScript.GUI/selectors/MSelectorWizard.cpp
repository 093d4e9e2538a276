#include "MSelectorWizard.h"

#include <cstring>

#include "FaceAnswer.h"
#include "HostScreen.h"
#include "HostText.h"
#include "QMfcApp.h"
#include "QWinWidget.h"
#include "ThreadPromise.h"

namespace {

constexpr const char* kDeviceIdProperty = "ObjectParamDescriptor::DeviceID";

IObjectParam* FindParam(IObjectParams* params, const char* name) {
    const std::uint32_t count = params != nullptr && name != nullptr ? params->GetParamCount() : 0;
    for (std::uint32_t index = 0; index < count; ++index) {
        IObjectParam* param = params->GetParam(index);
        const char* own = param != nullptr ? param->GetName() : nullptr;
        if (own != nullptr && std::strcmp(own, name) == 0)
            return param;
    }
    return nullptr;
}

QString TakeText(IData& data) {
    char* text = data.GetValueAsString();
    QString copy = FromHostText(text);
    data.ReleaseString(&text);
    return copy;
}

} // namespace

MSelectorWizard::MSelectorWizard(const Kind& kind, bool endsWithRelease)
    : m_kind(kind)
    , m_endsWithRelease(endsWithRelease) {}

MSelectorWizard::~MSelectorWizard() = default;

MSelectorWizard::Place& MSelectorWizard::ThePlace() {
    static Place place;
    return place;
}

void MSelectorWizard::SetPlace(IMInterface* host, IModuleServices* module) {
    ThePlace() = {host, module};
}

KXPCode MSelectorWizard::QueryInterface(const char* name, void** out) {
    auto* self = static_cast<IPropertySelector*>(this);
    return AnswerFace(
        name, out,
        {{"IMInterface", self}, {"IPropertySelector", self}, {"IObjectFactory", static_cast<IObjectFactory*>(this)}});
}

KXPCode MSelectorWizard::Release() {
    m_isReleased = m_endsWithRelease;
    EndUnlessUsed();
    return KXP_OK;
}

void MSelectorWizard::EndUnlessUsed() {
    if (m_isReleased && m_inside == 0)
        delete this;
}

std::uint32_t MSelectorWizard::Reserved3(void* /*argument*/) {
    return 1;
}

const char* MSelectorWizard::GetName() {
    m_name = m_kind.name;
    return m_name.c_str();
}

IMInterface* MSelectorWizard::CreateObject(const char* name) {
    if (name == nullptr || std::strcmp(name, m_kind.registeredName) != 0)
        return nullptr;
    return static_cast<IPropertySelector*>(m_kind.make());
}

/// The host may release this object whenever it is asked, and while the dialog is open; it ends with the last use of it.
std::uint32_t MSelectorWizard::Select(void* /*reserved1*/, IObjectParams* params, const char* name,
                                      void* /*reserved2*/) {
    ExpectThread(ThreadWord::HostMain, "IPropertySelector::Select");
    ++m_inside;
    const std::uint32_t answer = AskFor(params, name);
    --m_inside;
    EndUnlessUsed();
    return answer;
}

std::uint32_t MSelectorWizard::AskFor(IObjectParams* params, const char* name) const {
    IObjectParam* param = FindParam(params, name);
    if (param == nullptr || !CanShowDialogs())
        return 0;
    const Place place = ThePlace();
    const char* id = params->GetProperty(kDeviceIdProperty);
    const Subject subject{TakeText(*param), id != nullptr ? id : ""};
    if (ThePlace().module != place.module) // the host has released the module meanwhile
        return 0;
    const ModalLoop loop;
    QWinWidget parent(MainWindowOf(place.host));
    const std::optional<QString> chosen = Ask(parent, place, subject);
    if (chosen)
        param->SetValueFromString(ToHostText(*chosen).constData(), 0, 0);
    return 1;
}
