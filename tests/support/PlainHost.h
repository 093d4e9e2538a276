#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "Deadline.h"
#include "IDialogManager2.h"
#include "IHostServices.h"
#include "IKXPModule.h"
#include "IManagerRemote.h"
#include "IManagerRuntimeInfo.h"
#include "IObjectFactory.h"
#include "IObjectFactoryManager.h"
#include "IResourceProvider.h"

/// @file
/// A host in plain C++, without Qt: the least that the contract asks for, with switches for everything that a host may
/// lack. Waits always have a deadline.

namespace plain {

/// A value of one type behind a lock; anybody may wait for its next text.
class Value : public IObjectParam {
public:
    explicit Value(std::string name, std::uint32_t type = KXP_STRING_DATA, std::string text = "");
    virtual ~Value() = default;

    void SetBound(IData* data) { m_bound = data; }
    std::string Text() const;
    /// Every text that was set, in order.
    std::vector<std::string> History() const;
    /// @return false when the value does not become that text before the deadline.
    bool WaitFor(const std::string& text, int deadlineMs = kDeadlineMs) const;
    bool WaitForHistory(std::size_t count, int deadlineMs = kDeadlineMs) const;
    /// Texts given out and not released.
    static int OutstandingTexts() { return s_outstanding; }

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override { return KXP_OK; }
    const char* GetName() override { return m_name.c_str(); }
    KXPCode SetProperty(const char* name, const char* value, std::uint32_t, std::uint32_t) override;
    const char* GetProperty(const char* name) override;
    void ReleaseString(char** text) override;
    std::uint32_t GetInstanceID() override { return m_instanceId; }
    std::int32_t GetIntValue() override;
    void SetIntValue(std::int32_t value, std::uint32_t, std::uint32_t) override;
    double GetRealValue() override;
    void SetRealValue(double value, std::uint32_t, std::uint32_t) override;
    char* GetValueAsString() override;
    void SetValueFromString(const char* text, std::uint32_t, std::uint32_t) override;
    std::uint32_t GetDataType() override { return m_type; }
    IData* GetValue(std::uint32_t) override { return m_bound; }

    std::uint32_t m_instanceId = 0;
    bool m_givesNullText = false;
    bool m_keepsHistory = true; ///< off for what runs so long that it would only grow

protected:
    mutable std::mutex m_lock;
    mutable std::condition_variable m_changed;

private:
    const std::string m_name;
    const std::uint32_t m_type;
    std::string m_text;
    std::vector<std::string> m_history;
    std::map<std::string, std::string> m_properties;
    IData* m_bound = nullptr;
    static std::atomic<int> s_outstanding;
};

/// The enumeration that "Status" is: its text form is the index.
class EnumValue : public IEnumData {
public:
    explicit EnumValue(std::string name)
        : m_value(std::move(name), KXP_ENUM_DATA, "0") {}
    virtual ~EnumValue() = default;
    Value& Plain() { return m_value; }

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override { return KXP_OK; }
    const char* GetName() override { return m_value.GetName(); }
    KXPCode SetProperty(const char* n, const char* v, std::uint32_t a, std::uint32_t b) override {
        return m_value.SetProperty(n, v, a, b);
    }
    const char* GetProperty(const char* n) override { return m_value.GetProperty(n); }
    void ReleaseString(char** t) override { m_value.ReleaseString(t); }
    std::uint32_t GetInstanceID() override { return m_value.GetInstanceID(); }
    std::int32_t GetIntValue() override { return m_value.GetIntValue(); }
    void SetIntValue(std::int32_t v, std::uint32_t a, std::uint32_t b) override { m_value.SetIntValue(v, a, b); }
    double GetRealValue() override { return m_value.GetRealValue(); }
    void SetRealValue(double v, std::uint32_t a, std::uint32_t b) override { m_value.SetRealValue(v, a, b); }
    char* GetValueAsString() override { return m_value.GetValueAsString(); }
    void SetValueFromString(const char* t, std::uint32_t a, std::uint32_t b) override {
        m_value.SetValueFromString(t, a, b);
    }
    std::uint32_t GetDataType() override { return KXP_ENUM_DATA; }
    void SetCurrent(std::int32_t index, std::uint32_t, std::uint32_t) override { m_value.SetIntValue(index, 0, 0); }
    void AddItem(const char*) override {}
    void ClearItems(std::uint32_t, std::uint32_t) override {}

private:
    Value m_value;
};

/// The five default variables of a device, and whatever a test adds.
class Variables : public IDeviceVariables {
public:
    Variables();
    virtual ~Variables() = default;

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override { return KXP_OK; }
    IData* GetVariable(const char* name) override;
    std::uint32_t SetDefinition(const char* xml) override;

    EnumValue status{"Status"};
    Value error{"Error"};
    Value fileName{"CurrentScriptFileName"};
    Value scriptText{"CurrentScriptText"};
    Value functions{"ScriptFunctions"};
    std::string definition;
};

/// The parameters of one command, strings all.
class Params : public IObjectParams {
public:
    /// One parameter for each text. @param count fills up with empty ones.
    explicit Params(const std::vector<std::string>& texts = {}, std::size_t count = 0);
    /// Function name, result and the eight arguments of command 3; missing arguments are null texts.
    static std::unique_ptr<Params> ForFunction(const std::string& function, const std::vector<std::string>& arguments);
    virtual ~Params() = default;

    Value& At(std::size_t index) { return *m_params.at(index); }

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override { return KXP_OK; }
    KXPCode SetProperty(const char* name, const char* value, std::uint32_t, std::uint32_t) override;
    const char* GetProperty(const char* name) override;
    IObjectParam* GetParam(std::uint32_t index) override;
    std::uint32_t GetParamCount() override { return static_cast<std::uint32_t>(m_params.size()); }

private:
    std::vector<std::unique_ptr<Value>> m_params;
    std::map<std::string, std::string> m_properties;
};

/// A request that counts its Begin and End and lets a test wait for the end.
class Context : public IExecContext {
public:
    virtual ~Context() = default;
    bool WaitForEnd(int deadlineMs = kDeadlineMs) const;
    int Begun() const;
    int Ended() const;

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override { return KXP_OK; }
    KXPCode SetErrorCode(KXPCode) override { return KXP_OK; }
    KXPCode Begin() override;
    KXPCode End() override;
    KXPCode Reserved4(void*) override { return KXP_OK; }
    KXPCode Reserved5(void*) override { return KXP_OK; }

private:
    mutable std::mutex m_lock;
    mutable std::condition_variable m_changed;
    int m_begun = 0;
    int m_ended = 0;
};

/// The root object. Each service is offered unless it is switched off.
///
/// The services that reach into the show are not offered unless a test gives something to offer.
class Host : public IManagerRuntimeInfo, public IFolderManager, public IObjectFactoryManager {
public:
    virtual ~Host() = default;

    bool offerRuntimeInfo = true;
    bool offerFolders = true;
    bool offerFactories = true;
    /// Faces that are answered with success and a null pointer, as a careless host might.
    std::set<std::string> nullFaces;
    bool offerRemoteManager = false;
    bool offerRemoteManager2 = false;
    IManagerRemote* remote = nullptr;   ///< what the older manager hands out
    IManagerRemote2* remote2 = nullptr; ///< what the newer manager hands out
    IVariableManager* variableManager = nullptr;
    IObjectNameTools* nameTools = nullptr;
    IResourceProvider* resourceProvider = nullptr;
    IDialogManager2* dialogs = nullptr;
    std::uint32_t runtimeInfoResult = 1;
    std::string appName = "plainhost";
    std::string version = "6.7.2";
    std::map<std::uint32_t, std::string> folders;
    std::map<std::string, IObjectFactory*> factories;
    std::vector<std::string> asked; ///< names asked for, in order

    bool givesLog = false;
    std::uint32_t logEnabled = 0;
    std::uint32_t logWriter = 0;
    std::uint32_t logLevelBits = 0;
    std::uint32_t logOption = 0;
    std::string logPath;

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override { return KXP_OK; }
    std::uint32_t GetLogSettings(std::uint32_t* enabled, std::uint32_t* writerId, char* path, std::uint32_t* levelBits,
                                 std::uint32_t* option) override;
    KXPWindow GetMainWindow() override { return 0; }
    std::uint32_t GetRuntimeInfo(KXPRuntimeInfo* out) override;
    std::uint32_t GetUserMode() override { return 2; }
    const char* GetFolder(std::uint32_t folderId) override;
    KXPCode RegisterFactory(const char* name, IObjectFactory* factory) override;
    KXPCode UnregisterFactory(const char* name) override;

    IMInterface* Root() { return static_cast<IManagerRuntimeInfo*>(this); }

private:
    class RemoteManager : public IManagerRemoteManager {
    public:
        explicit RemoteManager(Host& host)
            : m_host(host) {}
        virtual ~RemoteManager() = default;
        KXPCode QueryInterface(const char* name, void** out) override { return m_host.QueryInterface(name, out); }
        KXPCode Release() override { return KXP_OK; }
        IManagerRemote* GetRemote() override { return m_host.remote; }

    private:
        Host& m_host;
    };
    class RemoteManager2 : public IManagerRemoteManager2 {
    public:
        explicit RemoteManager2(Host& host)
            : m_host(host) {}
        virtual ~RemoteManager2() = default;
        KXPCode QueryInterface(const char* name, void** out) override { return m_host.QueryInterface(name, out); }
        KXPCode Release() override { return KXP_OK; }
        KXPCode Reserved1(void*) override { return KXP_OK; }
        IManagerRemote2* GetRemote(IKXPDevice*) override { return m_host.remote2; }

    private:
        Host& m_host;
    };

    void* FaceOf(const std::string& name);

    RemoteManager m_remoteManager{*this};
    RemoteManager2 m_remoteManager2{*this};
};

} // namespace plain
