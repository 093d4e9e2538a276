#include <QtGlobal>

#include "MCalverinScript_Module.h"

extern "C" Q_DECL_EXPORT KXPCode GetKXPEntryPoint(IKXPModule** out) {
    return MCalverinScript_Module::GetEntryPoint(out);
}
