#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "ICommandObjectHandler.h"
#include "MCommandObjectParam.h"

/// One unit of work of a command thread: a number, parameters, and a tie to whoever asked for it. What the number means
/// is the business of whoever executes it.
///
/// A command has one owner at a time: its creator, then the queue, then the command manager. Only the owner's thread
/// uses it. Names and texts passed in are copied, those returned are borrowed from the command.
class MCommandObject {
public:
    static constexpr std::int32_t kDefaultCapacity = 8;

    /// Tells handler, when there is one, that the command exists. owner, handler and userData are borrowed for the life
    /// of the command; the destructor tells the handler the end.
    MCommandObject(void* owner, std::int32_t id, std::int32_t subId = 0, ICommandObjectHandler* handler = nullptr,
                   void* userData = nullptr);

    /// A copy as operator= makes it: no handler, no user data, no time-out of its own.
    MCommandObject(const MCommandObject& other);

    /// Room for count parameters, in steps of eight; nothing when
    /// there is that much already. Adding makes room by itself.
    virtual void ReserveParams(std::int32_t count);

    /// Sets everything anew, without parameters and with time-out and retries 0. Calls no handler.
    virtual void Init(void* owner, std::int32_t id, std::int32_t subId, const char* name, std::int32_t capacity,
                      ICommandObjectHandler* handler, void* userData);

    /// Deletes parameters and name.
    virtual void Clear();

    /// Appends a copy of param, see CloneParam. @return its index, -1 when it cannot be copied.
    virtual std::int32_t AddParamCopy(const MCommandObjectParam* param);

    /// Appends param and owns it from now on. @return its index, -1 for null.
    virtual std::int32_t AddParam(MCommandObjectParam* param);

    /// Null for an index outside.
    virtual MCommandObjectParam* GetParam(std::int32_t index) const;

    /// Tells the handler, when there is one, then deletes the parameters.
    virtual ~MCommandObject();

    virtual void SetName(const char* name);
    virtual const char* GetName() const; ///< "" when it has none
    virtual void* GetOwner() const;
    virtual std::int32_t GetId() const;
    virtual std::int32_t GetSubId() const;

    /// How long the command may stay current, in milliseconds; 0 lets the manager fill in its default.
    virtual std::uint32_t GetTimeout() const;
    virtual void SetTimeout(std::uint32_t milliseconds);

    /// Counts one more look of the watchdog. @return the new count.
    virtual std::int32_t IncrementRetries();

    virtual std::int32_t GetParamCount() const;

    // Each appends one parameter and returns its index.
    virtual std::int32_t AddVoidParam(void* pointer, std::uint32_t size, const char* name = nullptr);
    virtual std::int32_t AddBYTEBufferParam(const void* data, std::uint32_t size, const char* name = nullptr);
    virtual std::int32_t AddCharBufferParam(const char* text, const char* name = nullptr);
    virtual std::int32_t AddFloatParam(double value, const char* name = nullptr);
    virtual std::int32_t AddDWORDParam(std::uint32_t value, const char* name = nullptr);
    virtual std::int32_t AddWORDParam(std::uint16_t value, const char* name = nullptr);
    virtual std::int32_t AddIntParam(std::int32_t value, const char* name = nullptr);
    virtual std::int32_t AddCharParam(std::int8_t value, const char* name = nullptr);
    virtual std::int32_t AddBYTEParam(std::uint8_t value, const char* name = nullptr);

    // 0 or null for an index outside.
    virtual std::int32_t GetParamType(std::int32_t index) const;
    virtual void* GetParamData(std::int32_t index) const;
    virtual std::uint32_t GetParamSize(std::int32_t index) const;

    /// Writes size and type where asked for, 0 for an index outside. @return the data, or null.
    virtual void* GetParamRaw(std::int32_t index, std::uint32_t* outSize, std::int32_t* outType) const;

    // The value, or 0 when the index is outside, the data is null or the type is another one: nothing is converted.
    virtual std::uint8_t GetBYTEParam(std::int32_t index) const;
    virtual std::int8_t GetCharParam(std::int32_t index) const;
    virtual std::int32_t GetIntParam(std::int32_t index) const;
    virtual std::uint16_t GetWORDParam(std::int32_t index) const;
    virtual std::uint32_t GetDWORDParam(std::int32_t index) const;
    virtual double GetFloatParam(std::int32_t index) const;

    /// Null when the index is outside or the type is another one.
    virtual const char* GetCharBufferParam(std::int32_t index) const;

    // The pointer and, where asked for, its size; null and 0 when the index is outside or the type is another one.
    virtual void* GetBYTEBufferParam(std::int32_t index, std::uint32_t* outSize) const;
    virtual void* GetVoidParam(std::int32_t index, std::uint32_t* outSize) const;

    /// True for the same object alone, whatever the content.
    virtual bool operator==(const MCommandObject& other) const;

    /// Takes over owner, numbers, name and copies of the parameters. User data and handler become null, and the handler
    /// that this command had is not told: do not assign over a command that has one.
    virtual MCommandObject& operator=(const MCommandObject& other);

    /// Parameters that fit without a new allocation.
    std::int32_t GetCapacity() const { return m_capacity; }

private:
    friend class CommandQueue;

    const MCommandObjectParam* Typed(std::int32_t index, ParamType type) const;
    template <class Param>
    typename Param::Value Scalar(std::int32_t index) const;
    void* Pointer(std::int32_t index, ParamType type, std::uint32_t* outSize) const;
    void Reset(void* owner, std::int32_t id, std::int32_t subId, const char* name, std::int32_t capacity,
               ICommandObjectHandler* handler, void* userData);
    void CopyFrom(const MCommandObject& other);

    std::int32_t m_id = 0;
    std::int32_t m_subId = 0;
    std::uint32_t m_timeoutMs = 0;
    void* m_userData = nullptr;
    ICommandObjectHandler* m_handler = nullptr;
    std::string m_name;
    void* m_owner = nullptr;
    std::vector<std::unique_ptr<MCommandObjectParam>> m_params;
    std::int32_t m_capacity = 0;
    std::int32_t m_retries = 0;
    MCommandObject* m_nextQueued = nullptr; // belongs to the queue that holds the command
};
