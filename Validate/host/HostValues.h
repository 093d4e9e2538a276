#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "GuardedPages.h"
#include "IHostServices.h"
#include "IKXPDevice.h"
#include "IObjectParams.h"
#include "Lent.h"

/// @file
/// What the host gives out: values, parameters and contexts. Each stands in guarded memory and goes as soon as the
/// contract lets it. Whatever is asked of it may be heard, so that a case calls the module back from inside.

/// Hears the module's calls on the host, before they do anything. Empty for nobody.
using Hearing = std::function<void(const char* call)>;

/// A value of any type; text at heart.
class HostValue final : public IObjectParam, public Guarded {
public:
    HostValue(const char* kind, std::string name, std::string text, const Hearing& hearing);

    std::string Text() const;
    std::size_t Changes() const;
    /// From now on its text is null, as the contract allows.
    void LoseText() { m_hasText = false; }
    /// Texts given out and not back yet.
    static int TextsOut() { return s_textsOut; }

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override { return NoteRelease("IData"); }
    const char* GetName() override { return m_name.c_str(); }
    KXPCode SetProperty(const char* name, const char* value, std::uint32_t, std::uint32_t) override;
    const char* GetProperty(const char* name) override;
    void ReleaseString(char** text) override;
    std::uint32_t GetInstanceID() override { return 1; }
    std::int32_t GetIntValue() override;
    void SetIntValue(std::int32_t value, std::uint32_t, std::uint32_t) override;
    double GetRealValue() override;
    void SetRealValue(double value, std::uint32_t, std::uint32_t) override;
    char* GetValueAsString() override;
    void SetValueFromString(const char* text, std::uint32_t, std::uint32_t) override;
    std::uint32_t GetDataType() override { return KXP_STRING_DATA; }
    IData* GetValue(std::uint32_t) override { return nullptr; }

private:
    void Hear(const char* call) const;

    mutable std::mutex m_lock;
    const std::string m_name;
    std::string m_text;
    bool m_hasText = true; ///< set before the value is given out
    std::size_t m_changes = 0;
    std::map<std::string, std::string> m_properties;
    const Hearing& m_hearing;
    static std::atomic<int> s_textsOut;
};

/// The variables of one device. A new definition deletes all of them before it returns.
class HostVariables final : public IDeviceVariables, public Guarded {
public:
    explicit HostVariables(const Hearing& hearing)
        : m_hearing(hearing) {}

    std::string Text(const std::string& name);
    std::size_t Changes(const std::string& name);
    /// Deletes all values, as the device's end does.
    void Drop();

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override { return NoteRelease("IDeviceVariables"); }
    IData* GetVariable(const char* name) override;
    std::uint32_t SetDefinition(const char* xml) override;

private:
    std::mutex m_lock;
    std::map<std::string, std::unique_ptr<HostValue>> m_values; ///< behind the lock
    const Hearing& m_hearing;
};

/// The parameters of one command.
class HostParams final : public IObjectParams, public Guarded {
public:
    HostParams(const std::vector<std::string>& texts, const Hearing& hearing);
    /// From now on the texts of all values are null.
    void LoseTexts();

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override { return NoteRelease("IObjectParams"); }
    KXPCode SetProperty(const char* name, const char*, std::uint32_t, std::uint32_t) override;
    const char* GetProperty(const char*) override { return nullptr; }
    IObjectParam* GetParam(std::uint32_t index) override;
    std::uint32_t GetParamCount() override { return static_cast<std::uint32_t>(m_values.size()); }

private:
    std::vector<std::unique_ptr<HostValue>> m_values;
};

/// What became of the contexts of a case, which themselves are gone by then.
struct ContextTally {
    std::mutex lock;
    std::condition_variable changed;
    int begun = 0;
    int ended = 0;
    int wrong = 0; ///< second Begins and Ends, and Ends before a Begin
    /// @return false when not all that were begun have ended by the deadline.
    bool WaitUntilEnded(std::chrono::milliseconds limit);
};

/// The ticket of one command. With its End the parameters of the command go, and so does the host's reference: unless
/// the module has taken one of its own, the context goes as well.
class HostContext final : public IExecContext2, public Guarded {
public:
    HostContext(ContextTally& tally, std::unique_ptr<HostParams> params, const Hearing& hearing);

    /// Becomes true with Begin; outlives this object.
    std::shared_ptr<const std::atomic<bool>> IsBegun() const { return m_isBegun; }
    /// The command was refused.
    void Abandon();
    /// References that the module has taken and not given back, of all contexts: they may outlive the tally.
    static int ReferencesOut() { return s_referencesOut; }

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override;
    KXPCode SetErrorCode(KXPCode) override { return KXP_OK; }
    KXPCode Begin() override;
    KXPCode End() override;
    KXPCode Reserved4(void*) override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved5(void*) override { return KXP_NOT_IMPLEMENTED; }
    KXPCode AddRef() override;
    KXPCode Reserved7(void*) override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved8(void*, void*, void*) override { return KXP_NOT_IMPLEMENTED; }
    KXPCode SetResultText(const char*) override { return KXP_OK; }
    std::uint32_t GetState() override { return m_isEnded ? 2 : (*m_isBegun ? 1 : 0); }

private:
    void Drop();

    ContextTally& m_tally;
    std::unique_ptr<HostParams> m_params;
    const Hearing& m_hearing;
    const std::shared_ptr<std::atomic<bool>> m_isBegun = std::make_shared<std::atomic<bool>>(false);
    std::atomic<bool> m_isEnded{false};
    std::atomic<int> m_references{1}; ///< the host's, which goes with End, and those of the module
    static std::atomic<int> s_referencesOut;
};
