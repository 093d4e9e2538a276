#pragma once

#include <cstdint>
#include <memory>

#include "IMapObject.h"
#include "InterlockedCounter.h"
#include "MCommandObject.h"

/// Keeps a command alive after its execution, until its answer is known. Destroying the object destroys the command,
/// which ends the request behind it.   [thread: any; the command itself only by whoever answers]
class MyPostponedObject : public IMapObject {
public:
    /// Owns command from now on (null is allowed). The count is 1.
    explicit MyPostponedObject(MCommandObject* command);
    ~MyPostponedObject() override = default;
    MyPostponedObject(const MyPostponedObject&) = delete;
    MyPostponedObject& operator=(const MyPostponedObject&) = delete;

    std::int32_t AddRef() override;
    std::int32_t Release() override;

    /// Unique in the process until the counter has gone through
    /// all 2^32 - 1 values. Never 0, which means "not postponed".
    std::uint32_t GetId() const override { return m_id; }

    MCommandObject* GetCommand() const { return m_command.get(); }

    /// The next id of a counter, leaving out 0.
    static std::uint32_t NextId(InterlockedCounter& counter);

private:
    const std::uint32_t m_id;
    std::unique_ptr<MCommandObject> m_command;
    InterlockedCounter m_refCount;
};
