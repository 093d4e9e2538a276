#pragma once

#include "HardwareSpec.h"
#include "ISerialResource.h"
#include "ModuleHandlers.h"
#include "ResourceFace.h"
#include "ResourceObject.h"
#include "ResourceVoice.h"
#include "SerialPort.h"

namespace stagehost {

/// A serial port behind the contract. What the port hears is told on the port's thread.
class SerialResource final : public ResourceFace<ISerialResource>, private SerialNews {
public:
    SerialResource(std::int32_t id, const SerialPlan& plan, ResourceVoice voice);
    ~SerialResource() override = default;

    std::uint32_t GetState() override;
    KXPCode Open() override;
    KXPCode Close() override;
    KXPCode AddHandler(ISerialResourceHandler* handler, std::uint32_t mask) override;
    KXPCode RemoveHandler(ISerialResourceHandler* handler) override;
    KXPCode Write(const std::uint8_t* data, std::uint32_t length, std::uint32_t reserved) override;
    KXPCode SetBaudRate(std::uint32_t value) override { return Set(SerialSetting::BaudRate, value); }
    KXPCode SetParity(std::uint32_t value) override { return Set(SerialSetting::Parity, value); }
    KXPCode SetDataSize(std::uint32_t value) override { return Set(SerialSetting::DataSize, value); }
    KXPCode SetStopBits(std::uint32_t value) override { return Set(SerialSetting::StopBits, value); }
    KXPCode SetBreak(bool value) override { return Turn(SerialSetting::Break, value); }
    KXPCode SetDTR(bool value) override { return Turn(SerialSetting::Dtr, value); }
    KXPCode SetRTS(bool value) override { return Turn(SerialSetting::Rts, value); }
    KXPCode SetDTRControl(bool value) override { return Turn(SerialSetting::DtrControl, value); }
    KXPCode SetRTSControl(bool value) override { return Turn(SerialSetting::RtsControl, value); }
    KXPCode SetDTRHandshake(bool value) override { return Turn(SerialSetting::DtrHandshake, value); }
    KXPCode SetDSROutFlow(bool value) override { return Turn(SerialSetting::DsrOutFlow, value); }
    KXPCode SetRTSHandshake(bool value) override { return Turn(SerialSetting::RtsHandshake, value); }
    KXPCode SetCTSOutFlow(bool value) override { return Turn(SerialSetting::CtsOutFlow, value); }
    KXPCode Reserved19() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved20() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved21() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved23() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved24() override { return KXP_NOT_IMPLEMENTED; }

    /// The port for people: state, bytes that came and went, why it is not open.
    ShowObjectPtr MakeObject();

private:
    KXPCode Set(SerialSetting setting, std::uint32_t value);
    KXPCode Turn(SerialSetting setting, bool on) { return Set(setting, on ? 1 : 0); }
    void StateChanged() override;
    void DataCame(const std::uint8_t* data, std::size_t size) override;
    void Happened(SerialEvent event, bool state) override;
    void Told(const std::string& text) override;

    const ResourceVoice m_voice;
    const QString m_path;
    ModuleHandlers<ISerialResourceHandler> m_handlers;
    SerialPort m_port;
};

} // namespace stagehost
