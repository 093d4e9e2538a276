#pragma once

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <stdexcept>
#include <string>

#include <strings.h>

#include "FaceAnswer.h"
#include "IData.h"
#include "IExecContext.h"
#include "IKXPDevicePanel.h"

/// @file
/// What the devices of the faulty module are made of, see FaultyModule.cpp.

inline bool Has(const char* fault) {
    static const char* const chosen = std::getenv("KXP_FAULT");
    return chosen != nullptr && std::strcmp(chosen, fault) == 0;
}

/// Thrown across the border, which it must not be.
struct Stumble final : std::runtime_error {
    Stumble()
        : std::runtime_error("over a cable") {}
};

inline void Leak(std::size_t bytes) {
    static std::atomic<void*> last{nullptr}; // so that it is not left out
    last = std::malloc(bytes);
}

/// A name as a device compares it: for some faults also where it is not quite the one of a face.
inline const char* FaceNamed(const char* name) {
    for (const char* face : {"IMInterface", "IKXPDevice"})
        if (name != nullptr &&
            ((Has("faces:shorter") && *name != '\0' && std::strncmp(face, name, std::strlen(name)) == 0) ||
             (Has("faces:longer") && std::strncmp(face, name, std::strlen(face)) == 0) ||
             (Has("faces:letter-case") && strcasecmp(face, name) == 0)))
            return face;
    return name;
}

/// What a device whose module is gone answers.
inline KXPCode Refusal(KXPCode code) {
    return Has("allowed:code-19") ? KXPCode{KXP_NOT_IMPLEMENTED} : code;
}

constexpr const char* kDefinition = "<Device><Commands><Command ID=\"1\" Name=\"Load From Text\"/><Command ID=\"3\" "
                                    "Name=\"Execute Function With Params\"/>"
                                    "</Commands></Device>";

constexpr const char* kOtherSpelling = "<Device><Commands><Command\tStatus='Active' Name='Load From Text' ID='1' />"
                                       "<Command Name = 'Execute Function With Params'\n ID = '3'></Command>"
                                       "</Commands></Device>";

inline const char* Definition() {
    if (Has("allowed:other-spelling"))
        return kOtherSpelling;
    return Has("allowed:no-definition") ? nullptr : kDefinition;
}

inline char* Copy(const std::string& text) {
    auto* copy = static_cast<char*>(std::malloc(text.size() + 1));
    std::memcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

/// A request to the host, which both may hold.
class Question final : public IExecContext2 {
public:
    bool IsBegun() const { return m_state != 0; }
    bool IsEnded() const { return m_state == 2; }
    std::string Text() {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_text;
    }

    KXPCode QueryInterface(const char* name, void** out) override {
        return AnswerFace(
            name, out,
            {{"IExecContext", static_cast<IExecContext*>(this)}, {"IExecContext2", static_cast<IExecContext2*>(this)}});
    }
    KXPCode Release() override {
        if (--m_references == 0)
            delete this;
        return KXP_OK;
    }
    KXPCode SetErrorCode(KXPCode) override { return KXP_OK; }
    KXPCode Begin() override {
        m_state = 1;
        return KXP_OK;
    }
    KXPCode End() override {
        m_state = 2;
        return KXP_OK;
    }
    KXPCode Reserved4(void*) override { return KXP_OK; }
    KXPCode Reserved5(void*) override { return KXP_OK; }
    KXPCode AddRef() override {
        ++m_references;
        return KXP_OK;
    }
    KXPCode Reserved7(void*) override { return KXP_OK; }
    KXPCode Reserved8(void*, void*, void*) override { return KXP_OK; }
    KXPCode SetResultText(const char* text) override {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_text = text != nullptr && !(Has("requests-answered") && IsBegun()) ? text : "";
        return KXP_OK;
    }
    std::uint32_t GetState() override { return m_state; }

private:
    ~Question() = default;

    std::mutex m_lock;
    std::string m_text; ///< behind the lock
    std::atomic<std::uint32_t> m_state{0};
    std::atomic<int> m_references{1};
};

inline std::string TextOf(IData& value) {
    char* text = value.GetValueAsString();
    std::string copy = text != nullptr ? text : "";
    value.ReleaseString(&text);
    return copy;
}

/// A command that waits for the device's thread.
struct Request {
    std::string function;
    IData* result;
    std::string argument;
    IExecContext* context;
    IData* argumentValue;   ///< for the fault alone
    IExecContext2* counted; ///< with a reference of the device's; null where the host counts none

    void End() const {
        if (context != nullptr)
            context->End();
        if (counted != nullptr && (argument != "x" || !Has("contexts-end-once:reference")))
            counted->Release();
    }
};

/// A panel that shows nothing.
class Panel final : public IKXPDevicePanel {
public:
    KXPCode QueryInterface(const char* name, void** out) override { return AnswerFace(name, out, {}); }
    KXPCode Release() override {
        delete this;
        return KXP_OK;
    }
    KXPWindow GetWindow() override { return 0; }
    std::uint32_t Reserved4(void*) override { return 0; }
    const char* GetName() override { return "panel"; }
    std::uint32_t Reserved6(void*) override { return 1; }
    bool GetBounds(IPanelRect*) override { return false; }
    std::uint32_t GetState() override { return m_state; }
    void SetState(std::uint32_t what, std::uint32_t value) override {
        if (what == KXP_PANEL_STATE || (Has("panels") && what == KXP_PANEL_VISIBLE && value == 0))
            m_state = value;
        if (Has("panels") && m_state == 0)
            std::abort();
    }

private:
    ~Panel() = default;

    std::uint32_t m_state = 1;
};
