#pragma once

#include "IKXPDevice.h"

/// A device of another module.
class ForeignDevice : public IKXPDevice {
public:
    virtual ~ForeignDevice() = default;
    KXPCode QueryInterface(const char*, void**) override { return KXP_NO_INTERFACE; }
    KXPCode Release() override { return KXP_OK; }
    void SetDeviceVariables(IDeviceVariables*) override {}
    KXPCode QueryCapability(std::uint32_t) override { return KXP_NO; }
    void SetName(const char*) override {}
    const char* GetName() override { return "foreign"; }
    KXPCode ShowSetup(void*) override { return KXP_OK; }
    KXPCode IsRunning() override { return KXP_NO; }
    KXPCode Start() override { return KXP_OK; }
    KXPCode Stop() override { return KXP_OK; }
    KXPCode OnTimerailEvent(ITimeData*, std::int32_t) override { return KXP_OK; }
    KXPBitmap GetBitmap() override { return nullptr; }
    KXPCode GetSetup(char**) override { return KXP_OK; }
    KXPCode SetSetup(const char*) override { return KXP_OK; }
    KXPCode UpdateCommand(const char*, char**) override { return KXP_OK; }
    KXPCode Reserved14(void*) override { return KXP_OK; }
    KXPCode Reserved15(void*) override { return KXP_OK; }
    KXPCode Reserved16(void*) override { return KXP_OK; }
    KXPCode ExecuteCommand(std::int32_t, IObjectParams*, IExecContext*) override { return KXP_OK; }
    KXPCode ReleaseString(char**) override { return KXP_OK; }
    const char* GetDefinition() override { return ""; }
    KXPCode Reserved20() override { return KXP_OK; }
    KXPCode CreatePanel(std::uint32_t, IKXPDevicePanel**) override { return KXP_OK; }
};
