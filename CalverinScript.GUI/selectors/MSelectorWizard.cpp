#include "MSelectorWizard.h"

#include "FaceAnswer.h"

MSelectorWizard::~MSelectorWizard() = default;

KXPCode MSelectorWizard::QueryInterface(const char* name, void** out) {
    auto* self = static_cast<IObjectFactory*>(this);
    return AnswerFace(name, out, {{"IMInterface", self}, {"IObjectFactory", self}});
}

KXPCode MSelectorWizard::Release() {
    return KXP_OK;
}

IMInterface* MSelectorWizard::CreateObject(const char* /*name*/) {
    return nullptr;
}
