#pragma once

#include <cstdint>
#include <functional>
#include <mutex>

#include <QString>

class IScriptObjectOwner;

/// Says in the log what a bound of one object has dropped: how many, once a second at most.   [any]
class DropLog {
public:
    /// What is dropped and where, in the plural, such as "datagrams at port 9000".
    using Describe = std::function<QString()>;

    /// @param owner borrowed; null writes nothing.
    DropLog(IScriptObjectOwner* owner, Describe describe);
    /// @param clock another one, in milliseconds, than the system's.
    DropLog(IScriptObjectOwner* owner, Describe describe, std::uint32_t (*clock)());

    /// Counts what was dropped, and tells it if a second has passed since the last line.
    void Note(std::uint64_t count);
    /// Tells what has been counted since the last line, if there is any: the flood is over.
    void TellRest();

private:
    void TellLocked();

    IScriptObjectOwner* const m_owner;
    const Describe m_describe;
    std::uint32_t (*const m_clock)();
    std::mutex m_lock;            ///< held while a line is written, so that lines keep their order
    std::uint64_t m_untold = 0;   ///< under m_lock
    std::uint32_t m_lastTold = 0; ///< under m_lock
    bool m_hasTold = false;       ///< under m_lock
};
