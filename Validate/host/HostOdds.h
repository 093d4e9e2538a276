#pragma once

#include <string>
#include <utility>

#include "FaceAnswer.h"
#include "IData.h"
#include "IKXPDevicePanel.h"
#include "Lent.h"

/// @file
/// What a host gives for the time of one call.

/// A time as a transport event has it.
class HostTime final : public ITimeData {
public:
    HostTime(std::string name, std::int32_t frames)
        : m_name(std::move(name))
        , m_frames(frames) {}

    KXPCode QueryInterface(const char* name, void** out) override {
        return AnswerFace(name, out, {{"ITimeData", static_cast<ITimeData*>(this)}});
    }
    KXPCode Release() override { return NoteRelease("ITimeData"); }
    const char* GetName() override { return m_name.c_str(); }
    KXPCode SetProperty(const char*, const char*, std::uint32_t, std::uint32_t) override { return KXP_OK; }
    const char* GetProperty(const char*) override { return nullptr; }
    void ReleaseString(char**) override {}
    std::uint32_t GetInstanceID() override { return 0; }
    std::int32_t GetIntValue() override { return m_frames; }
    void SetIntValue(std::int32_t, std::uint32_t, std::uint32_t) override {}
    double GetRealValue() override { return m_frames; }
    void SetRealValue(double, std::uint32_t, std::uint32_t) override {}
    char* GetValueAsString() override { return nullptr; }
    void SetValueFromString(const char*, std::uint32_t, std::uint32_t) override {}
    std::uint32_t GetDataType() override { return KXP_TIME_DATA; }
    std::int32_t GetTimeCodeType() override { return m_frames; }
    KXPCode Reserved2() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved3() override { return KXP_NOT_IMPLEMENTED; }
    std::int32_t GetFrameCount() override { return m_frames; }

private:
    const std::string m_name;
    const std::int32_t m_frames;
};

/// A rectangle that is thrown away.
class HostRect final : public IPanelRect {
public:
    void SetLeft(std::int32_t) override {}
    void SetTop(std::int32_t) override {}
    void SetWidth(std::int32_t) override {}
    void SetHeight(std::int32_t) override {}
};
